#include "AsyncFixture.h"

#include <future>
#include <mutex>
#include <vector>

using kel::P;
using testsupport::NginxServer;
using vantra::CAsyncNetRequestThread;
using vantra::CNetRequest;

namespace {

/// Calls a function once, on the worker's next turn.
class COnceHandler : public kel::CBase, public CAsyncNetRequestThread::IProgressHandler {
public:
    void handleProgress() override {
        std::function<void()> function;
        {
            const std::lock_guard lock(mutex_);
            function.swap(function_);
        }
        if (function) function();
    }
    void set(std::function<void()> function) {
        const std::lock_guard lock(mutex_);
        function_ = std::move(function);
    }

private:
    std::mutex mutex_;
    std::function<void()> function_;
};

TEST_F(Async, RemovesRunningRequestsForSeveralThreads) {
    std::vector<std::future<void>> removers;
    for (int remover = 0; remover < 4; ++remover) {
        removers.push_back(std::async(std::launch::async, [&] {
            for (int round = 0; round < 5; ++round) {
                const P<CNetRequest> request = makeEndless();
                thread_->addRequest(request);
                // The first order may come between the additions and the removals of one turn.
                EXPECT_TRUE(thread_->removeRequest(request) || thread_->removeRequest(request));
                EXPECT_FALSE(thread_->removeRequest(request));
                EXPECT_FALSE(request->isAsyncDone());
            }
        }));
    }
    const P<CNetRequest> bystander = makeRequest(webServer().url("/delay/0.5"));
    transfer(*bystander);
    EXPECT_EQ(Mixture::outcome(*bystander), "ok late\n");
    for (std::future<void>& remover : removers) remover.get();
}

TEST_F(Async, ClosesTheConnectionOfARemovedRequest) {
    testsupport::ScriptedServer server;
    server.play(testsupport::Script().expectRequest().send("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nha"));
    const P<CNetRequest> request = makeRequest(server.url());
    thread_->addRequest(request);
    ASSERT_TRUE(server.waitForRequests(1));
    EXPECT_TRUE(thread_->removeRequest(request));
    EXPECT_THAT(server.finish(), testing::IsEmpty());
    EXPECT_FALSE(request->isAsyncDone());
}

TEST_F(Async, RemovesAllRunningRequests) {
    std::vector<P<CNetRequest>> requests;
    for (std::size_t i = 0; i < 10; ++i) {
        requests.push_back(makeEndless());
        thread_->addRequest(requests.back());
    }
    waitForEndless(10);
    thread_->removeAllRequests();
    for (const P<CNetRequest>& request : requests) {
        EXPECT_FALSE(request->isAsyncDone());
        EXPECT_FALSE(thread_->removeRequest(request));
    }
}

TEST_F(Async, RemovesARequestForADoneListener) {
    const P<CNetRequest> endless = makeEndless();
    thread_->addRequest(endless);
    waitForEndless(1);
    std::promise<bool> removed;
    const P<CNetRequest> request = makeRequest(webServer().url("/hello.txt"));
    request->setDoneListener(P<CCallingListener>(new CCallingListener(
        [&](CNetRequest&, const kel::CError*) { removed.set_value(thread_->removeRequest(endless)); })));
    thread_->addRequest(request);
    EXPECT_FALSE(removed.get_future().get());
    // Another transfer takes more than the turn in which the order is carried out.
    const P<CNetRequest> next = makeRequest(webServer().url("/hello.txt"));
    transfer(*next);
    EXPECT_FALSE(thread_->removeRequest(endless));
    EXPECT_FALSE(endless->isAsyncDone());
}

TEST_F(Async, RemovesARequestForTheProgressHandler) {
    const P<COnceHandler> handler = new COnceHandler();
    const P<CAsyncNetRequestThread> worker = new CAsyncNetRequestThread(handler);
    worker->start();
    const P<CNetRequest> endless = makeEndless();
    worker->addRequest(endless);
    waitForEndless(1);
    std::promise<bool> removed;
    handler->set([&] { removed.set_value(worker->removeRequest(endless)); });
    EXPECT_FALSE(removed.get_future().get());
    std::promise<void> nextTurn;
    handler->set([&] { nextTurn.set_value(); });
    nextTurn.get_future().get();
    EXPECT_FALSE(worker->removeRequest(endless));
    EXPECT_FALSE(endless->isAsyncDone());
}

TEST_F(Async, SaysThatAFinishedRequestIsNotThere) {
    const P<CNetRequest> request = makeRequest(webServer().url("/hello.txt"));
    transfer(*request);
    EXPECT_FALSE(thread_->removeRequest(request));
    EXPECT_EQ(Mixture::outcome(*request), "ok " + NginxServer::helloContent());
}

} // namespace
