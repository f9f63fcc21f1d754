#include "ManagerFixture.h"

#include "vantra/AsyncNetRequestManager.h"

namespace vantra::test {
namespace {

using kel::P;
using kel::TArray;
using testing::ElementsAre;
using testing::IsEmpty;

class ManagerEvents : public testing::Test {
protected:
    ManagerEvents() {
        for (CNetRequest* request : {first_.get(), second_.get(), third_.get()}) manager_.addRequest(request);
        multi_.takeCalls();
    }

    /// Notes the request's end among the calls.
    P<CRecordingListener> listenTo(CNetRequest& request, const std::string& name) {
        P<CRecordingListener> listener = new CRecordingListener();
        listener->onDone = [this, name] { multi_.note("done " + name); };
        request.setDoneListener(listener);
        return listener;
    }

    MultiDouble multi_;
    P<CTestRequest> first_ = multi_.make("first");
    P<CTestRequest> second_ = multi_.make("second");
    P<CTestRequest> third_ = multi_.make("third");
    CAsyncNetRequestManager manager_;
    TArray<P<CNetRequest>> finished_;
};

TEST_F(ManagerEvents, AsksForNoMessagesWhileAllRequestsRun) {
    EXPECT_EQ(manager_.handleEvents(&finished_), 0);
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("perform"));
    EXPECT_THAT(finished_, IsEmpty());
}

TEST_F(ManagerEvents, DetachesARequestBeforeItIsMarkedDone) {
    const P<CRecordingListener> listener = listenTo(*second_, "second");
    listener->onDone = [&] {
        multi_.note("done second");
        EXPECT_TRUE(second_->isAsyncDone());
        EXPECT_EQ(manager_.getRequestCount(), 2);
    };
    multi_.finish("second", CURLE_OK);
    EXPECT_EQ(manager_.handleEvents(nullptr), 1);
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("perform", "info", "remove second", "done second", "info"));
    EXPECT_THAT(listener->outcomes, ElementsAre(nothingThrown));
    EXPECT_FALSE(manager_.removeRequest(second_));
    EXPECT_FALSE(first_->isAsyncDone());
}

TEST_F(ManagerEvents, SettlesTwoInTheOrderOfTheirMessages) {
    const P<CRecordingListener> listeners[] = {listenTo(*first_, "first"), listenTo(*third_, "third")};
    multi_.finish("third", CURLE_OK);
    multi_.finish("first", CURLE_COULDNT_CONNECT);
    EXPECT_EQ(manager_.handleEvents(&finished_), 2);
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("perform", "info", "remove third", "done third", "info",
                                                "remove first", "done first", "info"));
    EXPECT_THAT(finished_, ElementsAre(third_, first_));
    EXPECT_EQ(manager_.getRequestCount(), 1);
    EXPECT_TRUE(first_->isAsyncDone());
    EXPECT_TRUE(third_->isAsyncDone());
}

TEST_F(ManagerEvents, AppendsToWhatHadFinishedBefore) {
    finished_.push_back(third_);
    multi_.finish("first", CURLE_OK);
    EXPECT_EQ(manager_.handleEvents(&finished_), 1);
    EXPECT_THAT(finished_, ElementsAre(third_, first_));
}

TEST_F(ManagerEvents, HandsTheResultOfTheTransferToTheRequest) {
    multi_.finish("first", CURLE_COULDNT_CONNECT);
    multi_.finish("second", CURLE_OK);
    EXPECT_EQ(manager_.handleEvents(nullptr), 2);
    const Thrown failure = thrownBy([&] { first_->checkAsyncResult(); });
    EXPECT_EQ(failure.codeDomain, "curl");
    EXPECT_EQ(failure.code, CURLE_COULDNT_CONNECT);
    EXPECT_EQ(thrownBy([&] { second_->checkAsyncResult(); }), nothingThrown);
}

TEST_F(ManagerEvents, KeepsAFinishedRequestUntilItsListenerHasReturned) {
    std::atomic<int> alive{0};
    P<CCountedRequest> request = new CCountedRequest(alive);
    multi_.name(*request, "counted");
    manager_.addRequest(request);
    const P<CRecordingListener> listener = listenTo(*request, "counted");
    request = nullptr;
    int aliveInListener = 0;
    listener->onDone = [&] { aliveInListener = alive; };
    multi_.finish("counted", CURLE_OK);
    EXPECT_EQ(manager_.handleEvents(nullptr), 1);
    EXPECT_EQ(aliveInListener, 1);
    EXPECT_EQ(alive, 0);
}

TEST_F(ManagerEvents, LetsAListenerAddItsRequestAgain) {
    const P<CRecordingListener> listener = listenTo(*first_, "first");
    listener->onDone = [&] { manager_.addRequest(first_); };
    multi_.finish("first", CURLE_OK);
    EXPECT_EQ(manager_.handleEvents(&finished_), 1);
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("perform", "info", "remove first", "add first", "info"));
    EXPECT_EQ(manager_.getRequestCount(), 3);
    EXPECT_FALSE(first_->isAsyncDone());
}

TEST_F(ManagerEvents, SkipsAMessageAboutARequestThatIsNotAttached) {
    const P<CRecordingListener> listener = listenTo(*first_, "first");
    listener->onDone = [&] { manager_.removeRequest(second_); };
    multi_.finish("first", CURLE_OK);
    multi_.finish("second", CURLE_OK);
    multi_.finish("third", CURLE_OK);
    EXPECT_EQ(manager_.handleEvents(&finished_), 2);
    EXPECT_THAT(finished_, ElementsAre(first_, third_));
    EXPECT_FALSE(second_->isAsyncDone());
    EXPECT_EQ(manager_.getRequestCount(), 0);
}

TEST_F(ManagerEvents, SkipsMessagesThatTellOfNoEnd) {
    multi_.postMessage("first", CURLMSG_NONE);
    multi_.finish("second", CURLE_OK);
    EXPECT_EQ(manager_.handleEvents(&finished_), 1);
    EXPECT_THAT(finished_, ElementsAre(second_));
    EXPECT_FALSE(first_->isAsyncDone());
}

TEST_F(ManagerEvents, LooksForMessagesWhenLibcurlRunsFewerThanAreAttached) {
    multi_.finish("first", CURLE_OK);
    multi_.failNext("perform", CURLM_CALL_MULTI_PERFORM);
    EXPECT_EQ(manager_.handleEvents(&finished_), 1);
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("info", "remove first", "info"));
}

TEST_F(ManagerEvents, ReportsAFailureToPerform) {
    multi_.finish("first", CURLE_OK);
    multi_.failNext("perform", CURLM_INTERNAL_ERROR);
    EXPECT_EQ(thrownBy([&] { manager_.handleEvents(&finished_); }), multiError(CURLM_INTERNAL_ERROR));
    EXPECT_THAT(multi_.takeCalls(), IsEmpty());
    EXPECT_FALSE(first_->isAsyncDone());
    EXPECT_EQ(manager_.getRequestCount(), 3);
}

TEST_F(ManagerEvents, LeavesARequestNotDoneThatCouldNotBeDetached) {
    multi_.finish("first", CURLE_OK);
    multi_.failNext("remove first", CURLM_INTERNAL_ERROR);
    EXPECT_EQ(thrownBy([&] { manager_.handleEvents(&finished_); }), multiError(CURLM_INTERNAL_ERROR));
    EXPECT_FALSE(first_->isAsyncDone());
    EXPECT_EQ(manager_.getRequestCount(), 3);
    EXPECT_THAT(finished_, IsEmpty());
}

} // namespace
} // namespace vantra::test
