#include "AsyncFixture.h"

#include <vector>

using kel::P;
using vantra::CNetRequest;

namespace {

TEST_F(Async, LeavesRunningRequestsNotDoneWhenItGoes) {
    constexpr std::size_t count = 20;
    std::atomic<int> ends{0};
    const P<CCallingListener> listener =
        new CCallingListener([&](CNetRequest&, const kel::CError*) { ++ends; });
    std::vector<P<CNetRequest>> requests;
    for (std::size_t i = 0; i < count; ++i) {
        requests.push_back(makeEndless());
        requests.back()->setDoneListener(listener);
        thread_->addRequest(requests.back());
    }
    waitForEndless(count);
    thread_ = nullptr;
    for (const P<CNetRequest>& request : requests) {
        EXPECT_FALSE(request->waitAsyncDone(0));
        EXPECT_NO_THROW(request->checkAsyncResult());
    }
    EXPECT_EQ(ends, 0);
}

TEST_F(Async, LeavesRequestsUsableWhenItGoes) {
    const P<CNetRequest> request = makeEndless();
    thread_->addRequest(request);
    waitForEndless(1);
    thread_ = nullptr;
    request->setURL(kel::String::fromUTF8(webServer().url("/hello.txt")));
    EXPECT_EQ(performForBody(*request), testsupport::NginxServer::helloContent());
    thread_ = new vantra::CAsyncNetRequestThread(nullptr);
    thread_->start();
    transfer(*request);
    EXPECT_EQ(Mixture::outcome(*request), "ok " + testsupport::NginxServer::helloContent());
}

TEST_F(Async, OutlivesTheCallersReferencesToARequest) {
    kel::CSignal done;
    std::string body;
    P<CNetRequest> request = makeRequest(webServer().url("/page.html"));
    request->setDoneListener(
        P<CCallingListener>(new CCallingListener([&](CNetRequest& finished, const kel::CError*) {
            body = getBody(finished);
            done.set();
        })));
    thread_->addRequest(request);
    request = nullptr;
    ASSERT_TRUE(done.wait(patienceMs));
    EXPECT_EQ(body, testsupport::NginxServer::pageContent());
}

} // namespace
