#include "ThreadFixture.h"

namespace vantra::test {
namespace {

using kel::P;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

class WorkerRemoval : public Worker {};

TEST_F(WorkerRemoval, DetachesARunningRequestWithoutMarkingItDone) {
    startWithFirst();
    std::future<bool> removed = removeElsewhere(first_);
    turns_->step();
    EXPECT_TRUE(removed.get());
    EXPECT_FALSE(first_->isAsyncDone());
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("remove first", "fdset", "timeout", "sleep 100", "perform"));
}

TEST_F(WorkerRemoval, DetachesInTheSameTurnARequestAddedJustBefore) {
    start();
    thread_->addRequest(first_);
    std::future<bool> removed = removeElsewhere(first_);
    EXPECT_THAT(multi_.takeCalls(), IsEmpty());
    turns_->step();
    EXPECT_TRUE(removed.get());
    EXPECT_THAT(multi_.takeCalls(),
                ElementsAre("add first", "remove first", "fdset", "timeout", "sleep 100", "perform"));
}

TEST_F(WorkerRemoval, SaysThatARequestHasFinished) {
    startWithFirst();
    multi_.finish("first", CURLE_OK);
    turns_->step();
    std::future<bool> removed = removeElsewhere(first_);
    turns_->step();
    EXPECT_FALSE(removed.get());
    EXPECT_TRUE(first_->isAsyncDone());
}

TEST_F(WorkerRemoval, SaysThatARequestWasNeverAdded) {
    startWithFirst();
    std::future<bool> removed = removeElsewhere(second_);
    turns_->step();
    EXPECT_FALSE(removed.get());
    EXPECT_THAT(multi_.takeHandleCalls(), IsEmpty());
}

TEST_F(WorkerRemoval, LooksEvery250MillisecondsWhetherTheWorkerLives) {
    startWithFirst();
    std::future<bool> removed = removeElsewhere(first_);
    multi_.takeSignalWaits();
    std::vector<int> waits;
    ASSERT_TRUE(testsupport::waitUntil(
        [&] {
            for (const int wait : multi_.takeSignalWaits()) waits.push_back(wait);
            return waits.size() >= 2;
        },
        std::chrono::seconds(10)));
    EXPECT_THAT(waits, Each(250));
    turns_->step();
    EXPECT_TRUE(removed.get());
}

TEST_F(WorkerRemoval, ReturnsFalseOnAThreadThatWasNotStartedAndLeavesTheOrder) {
    thread_->addRequest(first_);
    EXPECT_FALSE(thread_->removeRequest(first_));
    EXPECT_THAT(multi_.takeSignalWaits(), IsEmpty());
    thread_->start();
    turns_->waitUntilKept();
    EXPECT_THAT(multi_.takeHandleCalls(), ElementsAre("add first", "remove first"));
}

TEST_F(WorkerRemoval, ReturnsFalseWhenTheWorkerEndsBeforeItsNextTurn) {
    startWithFirst();
    std::future<bool> removed = removeElsewhere(first_);
    end();
    EXPECT_FALSE(removed.get());
    EXPECT_FALSE(first_->isAsyncDone());
}

TEST_F(WorkerRemoval, ReturnsFalseAfterTheWorkersEnd) {
    startWithFirst();
    end();
    multi_.takeSignalWaits();
    EXPECT_FALSE(thread_->removeRequest(first_));
    EXPECT_THAT(multi_.takeSignalWaits(), IsEmpty());
}

TEST_F(WorkerRemoval, ReturnsFalseAtOnceInTheProgressHandlerAndDetachesInTheNextTurn) {
    startWithFirst();
    multi_.takeSignalWaits();
    bool removed = true;
    turns_->runOnWorker([&] { removed = thread_->removeRequest(first_); });
    EXPECT_FALSE(removed);
    EXPECT_THAT(multi_.takeSignalWaits(), IsEmpty());
    EXPECT_THAT(multi_.takeCalls(), IsEmpty());
    turns_->step();
    EXPECT_THAT(multi_.takeHandleCalls(), ElementsAre("remove first"));
    EXPECT_FALSE(first_->isAsyncDone());
}

TEST_F(WorkerRemoval, ReturnsFalseAtOnceInADoneListenerAndDetachesInTheNextTurn) {
    startWithFirst();
    thread_->addRequest(second_);
    turns_->step();
    bool removed = true;
    const P<CRecordingListener> listener = new CRecordingListener();
    listener->onDone = [&] { removed = thread_->removeRequest(second_); };
    first_->setDoneListener(listener);
    multi_.takeCalls();
    multi_.finish("first", CURLE_OK);
    turns_->step();
    EXPECT_FALSE(removed);
    EXPECT_THAT(multi_.takeHandleCalls(), ElementsAre("remove first"));
    turns_->step();
    EXPECT_THAT(multi_.takeHandleCalls(), ElementsAre("remove second"));
}

TEST_F(WorkerRemoval, CarriesOutTheLastOrderFirst) {
    startWithFirst();
    thread_->addRequest(second_);
    turns_->step();
    multi_.takeCalls();
    turns_->runOnWorker([&] {
        thread_->removeRequest(first_);
        thread_->removeRequest(second_);
    });
    turns_->step();
    EXPECT_THAT(multi_.takeHandleCalls(), ElementsAre("remove second", "remove first"));
}

TEST_F(WorkerRemoval, DetachesAllRequestsFromTheLastToTheFirst) {
    startWithFirst();
    thread_->addRequest(second_);
    turns_->step();
    thread_->addRequest(third_);
    multi_.takeSignalWaits();
    std::future<void> removed = std::async(std::launch::async, [&] { thread_->removeAllRequests(); });
    ASSERT_TRUE(
        testsupport::waitUntil([&] { return !multi_.takeSignalWaits().empty(); }, std::chrono::seconds(10)));
    multi_.takeCalls();
    turns_->step();
    removed.get();
    EXPECT_THAT(multi_.takeHandleCalls(),
                ElementsAre("add third", "remove third", "remove second", "remove first"));
    for (const CTestRequest* request : {first_.get(), second_.get(), third_.get()})
        EXPECT_FALSE(request->isAsyncDone());
}

TEST_F(WorkerRemoval, SaysThatAllRequestsAreGoneEvenIfThereWereNone) {
    start();
    std::future<bool> removed = removeElsewhere(nullptr);
    turns_->step();
    EXPECT_TRUE(removed.get());
}

TEST_F(WorkerRemoval, DetachesAllRequestsOnTheWorkersNextTurn) {
    startWithFirst();
    turns_->runOnWorker([&] { thread_->removeAllRequests(); });
    EXPECT_THAT(multi_.takeCalls(), IsEmpty());
    turns_->step();
    EXPECT_THAT(multi_.takeHandleCalls(), ElementsAre("remove first"));
}

} // namespace
} // namespace vantra::test
