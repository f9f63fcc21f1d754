/// @file ThreadFixture.h
/// A worker whose turns the test controls.
#pragma once

#include "ManagerFixture.h"
#include "MultiDouble.h"

#include "vantra/AsyncNetRequestThread.h"

#include "support/Wait.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <future>
#include <mutex>

namespace vantra::test {

/// A progress handler that keeps the worker at the end of each turn until it is told to go on.
class CTurns : public kel::CBase, public CAsyncNetRequestThread::IProgressHandler {
public:
    void handleProgress() override {
        std::unique_lock lock(mutex_);
        ++turns_;
        while (isClosed_ && allowed_ == 0) {
            if (action_) runAction(lock);
            isAtGate_ = true;
            changed_.notify_all();
            changed_.wait(lock, [&] { return !isClosed_ || allowed_ > 0 || action_; });
            isAtGate_ = false;
        }
        if (isClosed_) --allowed_;
    }

    /// Waits until the worker is kept.
    void waitUntilKept() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return isAtGate_; });
    }
    /// Lets the kept worker do one turn, and waits for its end.
    void step() {
        std::unique_lock lock(mutex_);
        ++allowed_;
        const int before = turns_;
        changed_.notify_all();
        changed_.wait(lock, [&] { return turns_ > before && isAtGate_; });
    }
    /// Runs a function on the kept worker, inside the progress handler.
    void runOnWorker(std::function<void()> action) {
        std::unique_lock lock(mutex_);
        action_ = std::move(action);
        changed_.notify_all();
        changed_.wait(lock, [&] { return !action_ && isAtGate_; });
    }
    /// Lets the worker go on from now on.
    void open() {
        const std::lock_guard lock(mutex_);
        isClosed_ = false;
        changed_.notify_all();
    }
    int getTurns() const {
        const std::lock_guard lock(mutex_);
        return turns_;
    }

private:
    void runAction(std::unique_lock<std::mutex>& lock) {
        const std::function<void()> action = action_;
        lock.unlock();
        action();
        lock.lock();
        action_ = nullptr;
    }

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::function<void()> action_;
    int turns_ = 0;
    int allowed_ = 0;
    bool isClosed_ = true;
    bool isAtGate_ = false;
};

/// Notes the end of the loop among the calls.
class CNotingThread : public CAsyncNetRequestThread {
public:
    CNotingThread(IProgressHandler* handler, MultiDouble& multi)
        : CAsyncNetRequestThread(handler), multi_(multi) {}
    CNotingThread(const CNotingThread&) = delete;
    CNotingThread& operator=(const CNotingThread&) = delete;
    // The run uses the members of this class, which go first.
    ~CNotingThread() override { stop(true); }

    /// To be looked at while the worker is kept.
    kel::TArray<kel::P<CNetRequest>> finished;

protected:
    void onThreadExit() override { multi_.note("exit"); }
    void handleManagerEvents(CAsyncNetRequestManager& manager) override { manager.handleEvents(&finished); }

private:
    MultiDouble& multi_;
};

class Worker : public testing::Test {
protected:
    void TearDown() override { turns_->open(); }

    /// Starts the worker and keeps it at the end of its first turn.
    void start() {
        thread_->start();
        turns_->waitUntilKept();
        multi_.takeCalls();
    }
    /// Starts it with the first request attached.
    void startWithFirst() {
        start();
        thread_->addRequest(first_);
        turns_->step();
        multi_.takeCalls();
    }
    /// Lets a worker go on to its end.
    void end() {
        thread_->signalStop();
        turns_->open();
        thread_->join();
    }
    /// Has another thread remove a request, and returns when its order is queued and it waits.
    std::future<bool> removeElsewhere(CNetRequest* request) {
        multi_.takeSignalWaits();
        std::future<bool> result =
            std::async(std::launch::async, [this, request] { return thread_->removeRequest(request); });
        EXPECT_TRUE(testsupport::waitUntil([this] { return !multi_.takeSignalWaits().empty(); },
                                           std::chrono::seconds(10)));
        return result;
    }

    MultiDouble multi_;
    kel::P<CTestRequest> first_ = multi_.make("first");
    kel::P<CTestRequest> second_ = multi_.make("second");
    kel::P<CTestRequest> third_ = multi_.make("third");
    kel::P<CTurns> turns_ = new CTurns();
    kel::P<CNotingThread> thread_ = new CNotingThread(turns_, multi_);
};

} // namespace vantra::test
