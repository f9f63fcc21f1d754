#include "ThreadFixture.h"

namespace vantra::test {
namespace {

using kel::P;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(Worker, HasAName) { EXPECT_EQ(thread_->getThreadName(), "vantra.asyncNetRequest"); }

TEST_F(Worker, IsStartedByItsOwner) {
    EXPECT_FALSE(thread_->isAlive());
    EXPECT_THAT(multi_.takeCalls(), IsEmpty());
    start();
    EXPECT_TRUE(thread_->isAlive());
}

TEST_F(Worker, NeedsNoProgressHandler) {
    const P<CAsyncNetRequestThread> thread = new CAsyncNetRequestThread(nullptr);
    thread->start();
    thread->addRequest(first_);
    ASSERT_TRUE(
        testsupport::waitUntil([&] { return !multi_.takeHandleCalls().empty(); }, std::chrono::seconds(10)));
    multi_.finish("first", CURLE_OK);
    EXPECT_TRUE(first_->waitAsyncDone(10000));
    thread->stop(true);
    EXPECT_EQ(thread->getRunError(), nullptr);
}

TEST_F(Worker, KeepsItsProgressHandler) {
    std::atomic<int> alive{0};
    class CHandler : public CCounted, public CAsyncNetRequestThread::IProgressHandler {
    public:
        using CCounted::CCounted;
        void handleProgress() override {}
    };
    P<CAsyncNetRequestThread> thread = new CAsyncNetRequestThread(P<CHandler>(new CHandler(&alive)));
    EXPECT_EQ(alive, 1);
    thread = nullptr;
    EXPECT_EQ(alive, 0);
}

TEST_F(Worker, AddsWaitsAtMostAHundredMillisecondsPerformsAndReportsProgressInEachTurn) {
    multi_.setSocket(4);
    start();
    const int turns = turns_->getTurns();
    thread_->addRequest(first_);
    turns_->step();
    turns_->step();
    EXPECT_EQ(turns_->getTurns(), turns + 2);
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("add first", "fdset", "timeout", "select 5 100", "perform",
                                                "fdset", "timeout", "select 5 100", "perform"));
}

TEST_F(Worker, DoesItsFirstTurnAtOnce) {
    thread_->addRequest(first_);
    thread_->start();
    turns_->waitUntilKept();
    EXPECT_THAT(multi_.takeCalls(),
                ElementsAre("init", "add first", "fdset", "timeout", "sleep 100", "perform"));
}

TEST_F(Worker, AttachesTheLastOfThoseAddedBetweenTwoTurnsFirst) {
    start();
    thread_->addRequest(first_);
    thread_->addRequest(second_);
    thread_->addRequest(third_);
    turns_->step();
    EXPECT_THAT(multi_.takeHandleCalls(), ElementsAre("add third", "add second", "add first"));
}

TEST_F(Worker, TakesNoNullRequest) {
    start();
    EXPECT_EQ(thrownBy([&] { thread_->addRequest(nullptr); }),
              invalidArgError("CAsyncNetRequestThread::addRequest", "request must not be null"));
    turns_->step();
    EXPECT_TRUE(thread_->isAlive());
    EXPECT_THAT(multi_.takeHandleCalls(), IsEmpty());
}

TEST_F(Worker, MarksARequestAsRunningWhenItAttachesIt) {
    first_->setAsyncInfo(true, CURLE_OK);
    start();
    thread_->addRequest(first_);
    EXPECT_TRUE(first_->isAsyncDone());
    turns_->step();
    EXPECT_FALSE(first_->isAsyncDone());
}

TEST_F(Worker, MarksAFinishedRequestDone) {
    startWithFirst();
    multi_.finish("first", CURLE_COULDNT_RESOLVE_HOST);
    turns_->step();
    EXPECT_TRUE(first_->isAsyncDone());
    EXPECT_EQ(thrownBy([&] { first_->checkAsyncResult(); }).code, CURLE_COULDNT_RESOLVE_HOST);
    EXPECT_THAT(multi_.takeHandleCalls(), ElementsAre("remove first"));
}

TEST_F(Worker, LetsASubclassCollectTheFinishedRequests) {
    startWithFirst();
    thread_->addRequest(second_);
    turns_->step();
    multi_.finish("second", CURLE_OK);
    multi_.finish("first", CURLE_OK);
    turns_->step();
    EXPECT_THAT(thread_->finished, ElementsAre(second_, first_));
}

TEST_F(Worker, TakesRequestsFromTheProgressHandler) {
    start();
    turns_->runOnWorker([&] { thread_->addRequest(first_); });
    turns_->step();
    EXPECT_THAT(multi_.takeHandleCalls(), ElementsAre("add first"));
}

TEST_F(Worker, TakesARequestFromItsOwnDoneListener) {
    startWithFirst();
    const P<CRecordingListener> listener = new CRecordingListener();
    listener->onDone = [&] { thread_->addRequest(first_); };
    first_->setDoneListener(listener);
    multi_.finish("first", CURLE_OK);
    turns_->step();
    EXPECT_TRUE(first_->isAsyncDone());
    turns_->step();
    EXPECT_FALSE(first_->isAsyncDone());
    EXPECT_THAT(multi_.takeHandleCalls(), ElementsAre("remove first", "add first"));
    first_->setDoneListener(nullptr);
}

} // namespace
} // namespace vantra::test
