// Fetches a URL and prints the log of the conversation, whether it succeeds or fails.
//
//     HTTP_USER=jane HTTP_PASSWORD=... transfer_log https://example.org/private/
#include "Environment.h"

#include <vantra/vantra.h>

#include <iostream>

int main(int argc, char** argv) try {
    if (argc != 2) {
        std::cerr << "usage: transfer_log URL\n";
        return 2;
    }
    const kel::P<vantra::CNetRequest> request = new vantra::CNetRequest();
    request->setURL(argv[1]);
    request->setUserName(getSetting("HTTP_USER"));
    request->setUserPassword(getSetting("HTTP_PASSWORD"));
    applyTrustedRoots(*request);
    request->setVerbose(true);
    try {
        request->perform();
    } catch (const kel::CError&) {
        std::cout << request->getVerboseOutput(10000)->toDocumentUTF8();
        throw;
    }
    std::cout << request->getVerboseOutput(10000)->toDocumentUTF8();
    return 0;
} catch (const kel::CError& error) {
    std::cerr << error.getMessage() << "\n";
    return 1;
}
