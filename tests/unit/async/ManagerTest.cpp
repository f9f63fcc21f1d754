#include "ManagerFixture.h"

#include "vantra/AsyncNetRequestManager.h"

#include <memory>

namespace vantra::test {
namespace {

using kel::P;
using testing::ElementsAre;
using testing::IsEmpty;

class Manager : public testing::Test {
protected:
    MultiDouble multi_;
    P<CTestRequest> first_ = multi_.make("first");
    P<CTestRequest> second_ = multi_.make("second");
    P<CTestRequest> third_ = multi_.make("third");
    std::unique_ptr<CAsyncNetRequestManager> manager_ = std::make_unique<CAsyncNetRequestManager>();

    void addAll() {
        for (CNetRequest* request : {first_.get(), second_.get(), third_.get()})
            manager_->addRequest(request);
        multi_.takeCalls();
    }
};

TEST_F(Manager, HasOneMultiHandleForItsLife) {
    EXPECT_EQ(manager_->getRequestCount(), 0);
    manager_.reset();
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("init", "cleanup"));
}

TEST_F(Manager, SaysThatThereIsNoMultiHandle) {
    multi_.failNext("init", CURLM_OUT_OF_MEMORY);
    multi_.takeCalls();
    EXPECT_EQ(thrownBy([] { const CAsyncNetRequestManager manager; }),
              plainError("Error creating curl multi handle."));
    EXPECT_THAT(multi_.takeCalls(), IsEmpty());
}

TEST_F(Manager, AttachesRequestsInTheOrderInWhichTheyAreAdded) {
    multi_.takeCalls();
    manager_->addRequest(first_);
    manager_->addRequest(second_);
    EXPECT_EQ(manager_->getRequestCount(), 2);
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("add first", "add second"));
}

TEST_F(Manager, MarksAnAddedRequestAsRunning) {
    first_->setAsyncInfo(true, CURLE_COULDNT_CONNECT);
    ASSERT_TRUE(first_->isAsyncDone());
    manager_->addRequest(first_);
    EXPECT_FALSE(first_->isAsyncDone());
    EXPECT_EQ(thrownBy([&] { first_->checkAsyncResult(); }), nothingThrown);
}

TEST_F(Manager, KeepsARequestAsLongAsItIsAttached) {
    std::atomic<int> alive{0};
    P<CCountedRequest> request = new CCountedRequest(alive);
    multi_.name(*request, "counted");
    CNetRequest* const plainPointer = request;
    manager_->addRequest(request);
    request = nullptr;
    EXPECT_EQ(alive, 1);
    EXPECT_TRUE(manager_->removeRequest(plainPointer));
    EXPECT_EQ(alive, 0);
}

TEST_F(Manager, RefusesARequestThatIsAttachedAlready) {
    manager_->addRequest(first_);
    EXPECT_EQ(thrownBy([&] { manager_->addRequest(first_); }), multiError(CURLM_ADDED_ALREADY));
    EXPECT_EQ(manager_->getRequestCount(), 1);
    EXPECT_TRUE(manager_->removeRequest(first_));
    EXPECT_FALSE(manager_->removeRequest(first_));
}

TEST_F(Manager, RefusesARequestThatIsAttachedToAnotherManager) {
    manager_->addRequest(first_);
    CAsyncNetRequestManager other;
    EXPECT_EQ(thrownBy([&] { other.addRequest(first_); }), multiError(CURLM_ADDED_ALREADY));
    EXPECT_EQ(other.getRequestCount(), 0);
    EXPECT_FALSE(other.removeRequest(first_));
}

TEST_F(Manager, DoesNotHoldARequestThatCouldNotBeAttached) {
    multi_.failNext("add first", CURLM_OUT_OF_MEMORY);
    EXPECT_EQ(thrownBy([&] { manager_->addRequest(first_); }), multiError(CURLM_OUT_OF_MEMORY));
    EXPECT_EQ(manager_->getRequestCount(), 0);
    EXPECT_FALSE(manager_->removeRequest(first_));
    manager_->addRequest(first_);
    EXPECT_EQ(manager_->getRequestCount(), 1);
}

TEST_F(Manager, TakesNoNullRequest) {
    multi_.takeCalls();
    EXPECT_EQ(thrownBy([&] { manager_->addRequest(nullptr); }),
              invalidArgError("CAsyncNetRequestManager::addRequest", "request must not be null"));
    EXPECT_EQ(manager_->getRequestCount(), 0);
    EXPECT_THAT(multi_.takeCalls(), IsEmpty());
}

TEST_F(Manager, DoesNotAttachARequestWhoseSourceCannotBeRewound) {
    const P<CRecordingSource> source = new CRecordingSource("hello");
    source->position = 3;
    source->seeks.failAt(1, [] { throw kel::CError("no way back"); });
    first_->setSendDataSource(source);
    multi_.takeCalls();
    EXPECT_EQ(thrownBy([&] { manager_->addRequest(first_); }), plainError("no way back"));
    EXPECT_EQ(manager_->getRequestCount(), 0);
    EXPECT_THAT(multi_.takeCalls(), IsEmpty());
    manager_->addRequest(first_);
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("add first"));
}

TEST_F(Manager, SaysThatARequestWasNotAttached) {
    manager_->addRequest(first_);
    multi_.takeCalls();
    EXPECT_FALSE(manager_->removeRequest(second_));
    EXPECT_FALSE(manager_->removeRequest(nullptr));
    EXPECT_THAT(multi_.takeCalls(), IsEmpty());
    EXPECT_EQ(manager_->getRequestCount(), 1);
}

TEST_F(Manager, LeavesARemovedRequestNotDone) {
    P<CRecordingListener> listener = new CRecordingListener();
    first_->setDoneListener(listener);
    manager_->addRequest(first_);
    EXPECT_TRUE(manager_->removeRequest(first_));
    manager_->handleEvents(nullptr);
    EXPECT_FALSE(first_->waitAsyncDone(0));
    EXPECT_THAT(listener->requests, IsEmpty());
}

TEST_F(Manager, AttachesARequestAgainAfterItsRemoval) {
    manager_->addRequest(first_);
    manager_->removeRequest(first_);
    multi_.takeCalls();
    manager_->addRequest(first_);
    EXPECT_EQ(manager_->getRequestCount(), 1);
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("add first"));
}

TEST_F(Manager, KeepsARequestThatCouldNotBeDetached) {
    addAll();
    multi_.failNext("remove second", CURLM_INTERNAL_ERROR);
    EXPECT_EQ(thrownBy([&] { manager_->removeRequest(second_); }), multiError(CURLM_INTERNAL_ERROR));
    EXPECT_EQ(manager_->getRequestCount(), 3);
    EXPECT_TRUE(manager_->removeRequest(second_));
    EXPECT_EQ(manager_->getRequestCount(), 2);
}

TEST_F(Manager, RemovesAllRequestsFromTheLastToTheFirst) {
    addAll();
    manager_->removeAllRequests();
    EXPECT_EQ(manager_->getRequestCount(), 0);
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("remove third", "remove second", "remove first"));
    EXPECT_FALSE(first_->isAsyncDone());
}

TEST_F(Manager, KeepsTheOrderOfTheOthersWhenOneIsRemoved) {
    addAll();
    manager_->removeRequest(second_);
    manager_->addRequest(second_);
    multi_.takeCalls();
    manager_->removeAllRequests();
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("remove second", "remove third", "remove first"));
}

TEST_F(Manager, StopsRemovingAllAtTheFirstThatFails) {
    addAll();
    multi_.failNext("remove second", CURLM_INTERNAL_ERROR);
    EXPECT_EQ(thrownBy([&] { manager_->removeAllRequests(); }), multiError(CURLM_INTERNAL_ERROR));
    EXPECT_EQ(manager_->getRequestCount(), 2);
    manager_->removeAllRequests();
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("remove third", "remove second", "remove first"));
}

TEST_F(Manager, DetachesFromTheLastToTheFirstWhenItGoes) {
    addAll();
    manager_.reset();
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("remove third", "remove second", "remove first", "cleanup"));
    for (const CTestRequest* request : {first_.get(), second_.get(), third_.get()})
        EXPECT_FALSE(request->isAsyncDone());
}

TEST_F(Manager, GoesAlthoughARequestCannotBeDetached) {
    const LogCapture log;
    addAll();
    multi_.failNext("remove third", CURLM_INTERNAL_ERROR);
    manager_.reset();
    EXPECT_EQ(multi_.takeCalls().back(), "cleanup");
    EXPECT_THAT(log.getEntries(),
                ElementsAre("error: Exception in destructor of vantra::CAsyncNetRequestManager (ignored). [" +
                            multiError(CURLM_INTERNAL_ERROR).message + "]"));
}

TEST_F(Manager, LetsGoOfARequestThatCannotBeDetachedOnceLibcurlHas) {
    const LogCapture log;
    P<CNotingRequest> request = new CNotingRequest(multi_);
    multi_.name(*request, "noting");
    manager_->addRequest(request);
    request = nullptr;
    multi_.failNext("remove noting", CURLM_INTERNAL_ERROR);
    multi_.takeCalls();
    manager_.reset();
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("cleanup", "gone"));
}

} // namespace
} // namespace vantra::test
