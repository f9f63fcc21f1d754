// Fetches a URL through the proxy that the user's system settings give for it.
//
//     choose_proxy https://example.org/
#include "Environment.h"

#include <vantra/vantra.h>

#include <iostream>

int main(int argc, char** argv) try {
    if (argc != 2) {
        std::cerr << "usage: choose_proxy URL\n";
        return 2;
    }
    const kel::P<vantra::CProxySettings> settings = vantra::CProxySettings::getUserSettings();
    const kel::String proxy = settings->getProxyForURL(argv[1]);

    const kel::P<vantra::CNetRequest> request = new vantra::CNetRequest();
    request->setURL(argv[1]);
    request->setProxy(proxy); // empty: none, whatever the environment says
    applyTrustedRoots(*request);
    request->perform();
    std::cout << (proxy.isEmpty() ? kel::String("directly") : "through " + proxy) << ": "
              << request->getHTTPStatusLine() << "\n";
    return 0;
} catch (const kel::CError& error) {
    std::cerr << error.getMessage() << "\n";
    return 1;
}
