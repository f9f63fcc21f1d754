#include "BareTransfer.h"
#include "Benchmarks.h"
#include "Comparison.h"

#include <vantra/vantra.h>

#include <sys/select.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace bench {

using kel::P;
using kel::String;
using kel::TArray;
using vantra::CAsyncNetRequestManager;
using vantra::CNetRequest;

namespace {

constexpr std::size_t bodySize = 256;
constexpr int turnWaitMs = 100; // of the library's worker thread

class LibrarySide {
public:
    LibrarySide(const std::string& url, std::size_t inFlight) {
        for (std::size_t i = 0; i < inFlight; ++i) {
            requests_.push_back(new CNetRequest());
            requests_.back()->setURL(String::fromUTF8(url));
        }
    }

    void run(std::size_t count) {
        std::size_t toStart = count;
        for (const P<CNetRequest>& request : requests_) {
            if (toStart == 0) break;
            --toStart;
            manager_.addRequest(request);
        }
        TArray<P<CNetRequest>> finished;
        for (std::size_t done = 0; done < count;) {
            manager_.waitForEvents(turnWaitMs);
            finished.clear();
            manager_.handleEvents(&finished);
            for (const P<CNetRequest>& request : finished) {
                request->checkAsyncResult();
                require(request->getDefaultReceiveBuffer()->getUsed() == bodySize, "short body");
                ++done;
                if (toStart == 0) continue;
                --toStart;
                manager_.addRequest(request);
            }
        }
    }

private:
    CAsyncNetRequestManager manager_;
    std::vector<P<CNetRequest>> requests_;
};

/// The same loop with as little around libcurl as it takes.
class BareSide {
public:
    BareSide(const std::string& url, std::size_t inFlight) : multi_(curl_multi_init()) {
        for (std::size_t i = 0; i < inFlight; ++i) {
            transfers_.push_back(std::make_unique<BareTransfer>(url));
            curl_easy_setopt(transfers_.back()->getHandle(), CURLOPT_PRIVATE, transfers_.back().get());
        }
    }

    void run(std::size_t count) {
        std::size_t toStart = count;
        for (const std::unique_ptr<BareTransfer>& transfer : transfers_) {
            if (toStart == 0) break;
            --toStart;
            add(*transfer);
        }
        for (std::size_t done = 0; done < count;) {
            waitForEvents();
            int running = 0;
            require(curl_multi_perform(multi_.get(), &running) == CURLM_OK, "curl_multi_perform failed");
            if (running == attached_) continue;
            int left = 0;
            while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
                if (message->msg != CURLMSG_DONE) continue;
                const CURLcode result = message->data.result;
                BareTransfer& transfer = transferOf(message->easy_handle);
                curl_multi_remove_handle(multi_.get(), transfer.getHandle());
                --attached_;
                transfer.check(result);
                require(transfer.getBodySize() == bodySize, "short body");
                ++done;
                if (toStart == 0) continue;
                --toStart;
                add(transfer);
            }
        }
    }

private:
    struct MultiDeleter {
        void operator()(CURLM* multi) const noexcept { curl_multi_cleanup(multi); }
    };

    static BareTransfer& transferOf(CURL* handle) {
        BareTransfer* transfer = nullptr;
        curl_easy_getinfo(handle, CURLINFO_PRIVATE, &transfer);
        return *transfer;
    }

    void add(BareTransfer& transfer) {
        transfer.prepare();
        require(curl_multi_add_handle(multi_.get(), transfer.getHandle()) == CURLM_OK, "no handle added");
        ++attached_;
    }

    void waitForEvents() {
        fd_set read;
        fd_set write;
        fd_set exception;
        FD_ZERO(&read);
        FD_ZERO(&write);
        FD_ZERO(&exception);
        int maxFd = 0;
        curl_multi_fdset(multi_.get(), &read, &write, &exception, &maxFd);
        long timeoutMs = 0;
        curl_multi_timeout(multi_.get(), &timeoutMs);
        if (timeoutMs == -1 || timeoutMs > turnWaitMs) timeoutMs = turnWaitMs;
        timeval timeout{};
        timeout.tv_usec = timeoutMs * 1000;
        select(maxFd + 1, &read, &write, &exception, &timeout);
    }

    std::vector<std::unique_ptr<BareTransfer>> transfers_; // outlive the multi handle
    std::unique_ptr<CURLM, MultiDeleter> multi_;
    int attached_ = 0;
};

} // namespace

void benchParallelGets(const std::string& url, int rounds, std::size_t requestsPerRound,
                       std::size_t inFlight) {
    LibrarySide library(url, inFlight);
    BareSide bare(url, inFlight);
    const ComparisonResult result = compare(
        rounds, [&] { library.run(requestsPerRound); }, [&] { bare.run(requestsPerRound); });
    printComparison("small GET, " + std::to_string(inFlight) + " in flight", result,
                    static_cast<double>(requestsPerRound), "us", 1e6);
}

} // namespace bench
