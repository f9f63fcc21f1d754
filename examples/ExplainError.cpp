// Fetches a URL and says what kind of failure it was, if it failed.
//
//     explain_error https://example.org/missing
#include "Environment.h"

#include <vantra/vantra.h>

#include <iostream>

namespace {

using kel::CError;

const char* classify(const CError& error) {
    const int status = vantra::getHTTPStatusCodeFromError(error);
    if (vantra::isNetworkOrServiceDownError(error)) return "try later";
    if (status == 401 || status == 407) return "log in";
    if (status == 404 || status == 410) return "not there";
    if (status >= 400) return "the server refuses";
    if (error.getCodeDomain() == "curl") {
        if (error.getCode() == CURLE_OPERATION_TIMEDOUT) return "too slow";
        if (error.getCode() == CURLE_PEER_FAILED_VERIFICATION) return "not to be trusted";
    }
    return "something else";
}

void print(const CError& error) {
    std::cout << classify(error) << "\n" << error.getMessage() << "\n";
    std::cout << error.getCodeDomain() << " " << error.getCode() << "\n";
    for (const auto& [name, value] : error.getParams().getMap()) std::cout << name << ": " << value << "\n";
}

} // namespace

int main(int argc, char** argv) try {
    if (argc != 2) {
        std::cerr << "usage: explain_error URL\n";
        return 2;
    }
    const kel::P<vantra::CNetRequest> request = new vantra::CNetRequest();
    request->setURL(argv[1]);
    applyTrustedRoots(*request);
    request->perform();
    return 0;
} catch (const CError& error) {
    print(error);
    return 1;
}
