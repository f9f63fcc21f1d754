#include "ThreadFixture.h"

namespace vantra::test {
namespace {

using kel::P;
using testing::ElementsAre;
using testing::IsEmpty;

class WorkerEnd : public Worker {
protected:
    /// Lets the worker go on until it ends by itself, and gives what it ended with.
    Thrown waitForFailure() {
        turns_->open();
        thread_->join();
        const kel::PC<kel::CError> error = thread_->getRunError();
        return error ? describe(*error) : nothingThrown;
    }

    const LogCapture log_;
};

TEST_F(WorkerEnd, EndsTheLoopThenDetachesTheRequestsWithoutMarkingThemDone) {
    startWithFirst();
    thread_->addRequest(second_);
    turns_->step();
    multi_.takeCalls();
    end();
    EXPECT_FALSE(thread_->isAlive());
    EXPECT_EQ(thread_->getRunError(), nullptr);
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("exit", "remove second", "remove first", "cleanup"));
    EXPECT_FALSE(first_->isAsyncDone());
    EXPECT_FALSE(second_->isAsyncDone());
}

TEST_F(WorkerEnd, DoesNoTurnWhenItWasStoppedBeforeItsStart) {
    thread_->addRequest(first_);
    thread_->signalStop();
    thread_->start();
    thread_->join();
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("init", "exit", "cleanup"));
}

TEST_F(WorkerEnd, StopsWhenTheObjectGoes) {
    startWithFirst();
    turns_->open();
    thread_ = nullptr;
    EXPECT_FALSE(first_->isAsyncDone());
    std::vector<std::string> calls = multi_.takeCalls();
    ASSERT_GE(calls.size(), 3U);
    calls.erase(calls.begin(), calls.end() - 3);
    EXPECT_THAT(calls, ElementsAre("exit", "remove first", "cleanup"));
}

TEST_F(WorkerEnd, StopsWhenItsLastReferenceGoesInADoneListener) {
    class CMortalThread : public CNotingThread {
    public:
        CMortalThread(IProgressHandler* handler, MultiDouble& multi, kel::CSignal& gone)
            : CNotingThread(handler, multi), gone_(gone) {}
        CMortalThread(const CMortalThread&) = delete;
        CMortalThread& operator=(const CMortalThread&) = delete;
        ~CMortalThread() override {
            stop(true);
            gone_.set();
        }

    private:
        kel::CSignal& gone_;
    };
    kel::CSignal gone;
    thread_ = new CMortalThread(turns_, multi_, gone);
    startWithFirst();
    thread_->addRequest(second_);
    turns_->step();
    const P<CRecordingListener> listener = new CRecordingListener();
    listener->onDone = [&] { thread_ = nullptr; };
    first_->setDoneListener(listener);
    multi_.finish("first", CURLE_OK);
    multi_.takeCalls();
    turns_->open();
    ASSERT_TRUE(gone.wait(10000));
    std::vector<std::string> calls = multi_.takeCalls();
    ASSERT_GE(calls.size(), 3U);
    calls.erase(calls.begin(), calls.end() - 3);
    EXPECT_THAT(calls, ElementsAre("exit", "remove second", "cleanup"));
    EXPECT_TRUE(first_->isAsyncDone());
    EXPECT_FALSE(second_->isAsyncDone());
}

TEST_F(WorkerEnd, LetsGoOfRequestsThatWereNeverAttached) {
    std::atomic<int> alive{0};
    P<CCountedRequest> request = new CCountedRequest(alive);
    multi_.name(*request, "counted");
    thread_->addRequest(request);
    request = nullptr;
    EXPECT_EQ(alive, 1);
    thread_ = nullptr;
    EXPECT_EQ(alive, 0);
    EXPECT_THAT(multi_.takeCalls(), IsEmpty());
}

TEST_F(WorkerEnd, EndsWhenLibcurlHasNoMultiHandle) {
    multi_.failNext("init", CURLM_OUT_OF_MEMORY);
    thread_->start();
    EXPECT_EQ(waitForFailure(), plainError("Error creating curl multi handle."));
    EXPECT_THAT(multi_.takeCalls(), IsEmpty());
}

TEST_F(WorkerEnd, EndsWhenLibcurlCannotPerform) {
    startWithFirst();
    multi_.failNext("perform", CURLM_INTERNAL_ERROR);
    EXPECT_EQ(waitForFailure(), multiError(CURLM_INTERNAL_ERROR));
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("fdset", "timeout", "sleep 100", "remove first", "cleanup"));
    EXPECT_FALSE(first_->isAsyncDone());
    EXPECT_THAT(log_.getEntries(), ElementsAre("error: Exception in thread vantra.asyncNetRequest. [" +
                                               multiError(CURLM_INTERNAL_ERROR).message + "]"));
}

TEST_F(WorkerEnd, EndsWhenLibcurlCannotTellWhatToWaitFor) {
    startWithFirst();
    multi_.failNext("timeout", CURLM_BAD_HANDLE);
    EXPECT_EQ(waitForFailure(), multiError(CURLM_BAD_HANDLE));
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("fdset", "remove first", "cleanup"));
}

TEST_F(WorkerEnd, EndsWhenARequestCannotBeDetachedAndAnswersTheRemover) {
    startWithFirst();
    std::future<bool> removed = removeElsewhere(first_);
    multi_.failNext("remove first", CURLM_INTERNAL_ERROR);
    EXPECT_EQ(waitForFailure(), multiError(CURLM_INTERNAL_ERROR));
    EXPECT_FALSE(removed.get());
    EXPECT_FALSE(thread_->removeRequest(first_));
}

TEST_F(WorkerEnd, EndsWhenTheProgressHandlerThrows) {
    class CThrowingHandler : public kel::CBase, public CAsyncNetRequestThread::IProgressHandler {
    public:
        void handleProgress() override { throw kel::CError("out of patience"); }
    };
    thread_ = new CNotingThread(P<CThrowingHandler>(new CThrowingHandler()), multi_);
    thread_->addRequest(first_);
    thread_->start();
    EXPECT_EQ(waitForFailure(), plainError("out of patience"));
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("init", "add first", "fdset", "timeout", "sleep 100",
                                                "perform", "remove first", "cleanup"));
    EXPECT_FALSE(first_->isAsyncDone());
    EXPECT_THAT(log_.getEntries(),
                ElementsAre("error: Exception in thread vantra.asyncNetRequest. [out of patience]"));
}

TEST_F(WorkerEnd, DoesNotStartWhatIsAddedAfterItsEnd) {
    start();
    end();
    multi_.takeCalls();
    thread_->addRequest(first_);
    EXPECT_FALSE(thread_->removeRequest(first_));
    thread_ = nullptr;
    EXPECT_THAT(multi_.takeCalls(), IsEmpty());
    EXPECT_FALSE(first_->isAsyncDone());
}

TEST_F(WorkerEnd, EndsWhenARequestIsAddedTwice) {
    startWithFirst();
    thread_->addRequest(first_);
    EXPECT_EQ(waitForFailure(), multiError(CURLM_ADDED_ALREADY));
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("remove first", "cleanup"));
}

TEST_F(WorkerEnd, KeepsTheRequestThatCouldNotBeAttached) {
    std::atomic<int> alive{0};
    P<CCountedRequest> request = new CCountedRequest(alive);
    multi_.name(*request, "counted");
    multi_.failNext("add counted", CURLM_OUT_OF_MEMORY);
    start();
    thread_->addRequest(second_);
    thread_->addRequest(request);
    request = nullptr;
    EXPECT_EQ(waitForFailure(), multiError(CURLM_OUT_OF_MEMORY));
    EXPECT_EQ(alive, 1);
    EXPECT_THAT(multi_.takeHandleCalls(), IsEmpty());
    thread_ = nullptr;
    EXPECT_EQ(alive, 0);
}

} // namespace
} // namespace vantra::test
