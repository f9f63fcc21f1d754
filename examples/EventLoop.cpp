// Runs transfers in a loop of its own, on the calling thread, and tells of each as it ends.
//
//     event_loop https://example.org/ https://example.com/
#include "Environment.h"

#include <vantra/vantra.h>

#include <iostream>

namespace {

using kel::P;
using vantra::CNetRequest;

/// Called by the manager's handleEvents() at the end of each transfer.
class CReport : public kel::CBase, public CNetRequest::IDoneListener {
public:
    void onRequestDone(CNetRequest* request, const kel::CError* error) override {
        if (error) {
            std::cout << error->getMessage() << "\n";
            ++failures;
        } else {
            std::cout << request->getHTTPStatusLine() << "\n";
        }
    }

    int failures = 0;
};

} // namespace

int main(int argc, char** argv) try {
    const P<CReport> report = new CReport();
    vantra::CAsyncNetRequestManager manager;
    for (int i = 1; i < argc; ++i) {
        const P<CNetRequest> request = new CNetRequest();
        request->setURL(argv[i]);
        applyTrustedRoots(*request);
        request->setDoneListener(report);
        manager.addRequest(request);
    }
    while (manager.getRequestCount() > 0) {
        manager.waitForEvents(1000);
        manager.handleEvents(nullptr);
    }
    return report->failures == 0 ? 0 : 1;
} catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
}
