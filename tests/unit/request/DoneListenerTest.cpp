#include "CurlRecorder.h"
#include "Doubles.h"
#include "Thrown.h"

#include "vantra/NetRequest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantra::test {

namespace {

using kel::P;
using testing::ElementsAre;
using testing::IsEmpty;

class DoneListener : public testing::Test {
protected:
    DoneListener() {
        request_->setURL("http://example.org/");
        request_->setDoneListener(listener_);
        play(CURLE_OK, 200);
    }

    void play(CURLcode result, int responseCode) {
        curl_.answerInfo(CURLINFO_RESPONSE_CODE, responseCode);
        curl_.playTransfer([result](const LibcurlSide&) { return result; });
    }

    /// What a response code outside the 200s is reported as.
    static Thrown statusError(const std::string& code) {
        return curlError(
            CURLE_HTTP_RETURNED_ERROR, "",
            {{"responseCodeDomain", "http"}, {"responseCode", code}, {"url", "http://example.org/"}});
    }

    CurlRecorder curl_;
    P<CTestRequest> request_ = new CTestRequest();
    P<CRecordingListener> listener_ = new CRecordingListener();
};

TEST_F(DoneListener, IsCalledOnceWithNullAfterASuccess) {
    request_->perform();
    EXPECT_THAT(listener_->outcomes, ElementsAre(nothingThrown));
    EXPECT_THAT(listener_->requests, ElementsAre(request_.get()));
}

TEST_F(DoneListener, IsCalledOnceWithLibcurlsFailure) {
    play(CURLE_COULDNT_RESOLVE_HOST, 0);
    const Thrown thrown = thrownBy([&] { request_->perform(); });
    EXPECT_EQ(thrown, curlError(CURLE_COULDNT_RESOLVE_HOST, "",
                                {{"responseCodeDomain", "http"}, {"url", "http://example.org/"}}));
    EXPECT_THAT(listener_->outcomes, ElementsAre(thrown));
    EXPECT_THAT(listener_->requests, ElementsAre(request_.get()));
}

TEST_F(DoneListener, IsCalledOnceWithAnErrorStatus) {
    play(CURLE_OK, 500);
    EXPECT_EQ(thrownBy([&] { request_->perform(); }), statusError("500"));
    EXPECT_THAT(listener_->outcomes, ElementsAre(statusError("500")));
}

TEST_F(DoneListener, IsCalledOnceWithWhatACallbackStored) {
    for (const Fault& fault : getFaults()) {
        const P<CRecordingSink> sink = new CRecordingSink();
        sink->writes.failAt(1, fault.raise);
        request_->setReceiveDataSink(sink);
        listener_->outcomes.clear();
        curl_.playTransfer([](const LibcurlSide& curl) {
            curl.headers({"HTTP/1.1 200 OK\r\n", "\r\n"});
            curl.write("body");
            return CURLE_WRITE_ERROR;
        });
        EXPECT_EQ(thrownBy([&] { request_->perform(); }), fault.asTransferred) << fault.name;
        EXPECT_THAT(listener_->outcomes, ElementsAre(fault.asTransferred)) << fault.name;
    }
}

TEST_F(DoneListener, IsCalledOnceForEachTransfer) {
    request_->perform();
    play(CURLE_OK, 404);
    EXPECT_EQ(thrownBy([&] { request_->perform(); }), statusError("404"));
    play(CURLE_OK, 200);
    request_->perform();
    EXPECT_THAT(listener_->outcomes, ElementsAre(nothingThrown, statusError("404"), nothingThrown));
}

TEST_F(DoneListener, IsNotCalledWhenNoTransferBegan) {
    const P<CRecordingSource> source = new CRecordingSource("data");
    source->position = 1;
    source->seeks.failAt(1, getFaults().front().raise);
    request_->setSendDataSource(source);
    EXPECT_EQ(thrownBy([&] { request_->perform(); }), getFaults().front().asThrown);
    EXPECT_THAT(listener_->outcomes, IsEmpty());
}

TEST_F(DoneListener, IsNotCalledOnceItWasTakenBack) {
    request_->setDoneListener(nullptr);
    request_->perform();
    EXPECT_THAT(listener_->outcomes, IsEmpty());
}

TEST_F(DoneListener, FindsTheResponseAndTheBodyInPlace) {
    curl_.playTransfer([](const LibcurlSide& curl) {
        curl.headers({"HTTP/1.1 200 OK\r\n", "\r\n"});
        curl.write("body");
        return CURLE_OK;
    });
    std::string seen;
    listener_->onDone = [&] { seen = request_->getHTTPStatusLine().toUTF8() + ": " + getBody(*request_); };
    request_->perform();
    EXPECT_EQ(seen, "HTTP/1.1 200 OK: body");
}

TEST_F(DoneListener, ThatThrowsAfterASuccessIsCalledOnceAndItsOwnErrorLeavesPerform) {
    for (const Fault& fault : getFaults()) {
        listener_->outcomes.clear();
        listener_->onDone = fault.raise;
        EXPECT_EQ(thrownBy([&] { request_->perform(); }), fault.asThrown) << fault.name;
        EXPECT_THAT(listener_->outcomes, ElementsAre(nothingThrown)) << fault.name;
    }
}

TEST_F(DoneListener, ThatThrowsAfterAFailureIsCalledOnceAndItsOwnErrorLeavesPerform) {
    play(CURLE_OK, 500);
    for (const Fault& fault : getFaults()) {
        listener_->outcomes.clear();
        listener_->onDone = fault.raise;
        EXPECT_EQ(thrownBy([&] { request_->perform(); }), fault.asThrown) << fault.name;
        EXPECT_THAT(listener_->outcomes, ElementsAre(statusError("500"))) << fault.name;
    }
}

TEST_F(DoneListener, ThatReplacesItselfStaysAliveUntilItReturns) {
    static std::atomic<int> alive; // outlives the request
    alive = 0;
    P<CRecordingListener> first = new CRecordingListener(&alive);
    std::vector<int> aliveInside;
    first->onDone = [&] {
        request_->setDoneListener(listener_);
        aliveInside.push_back(alive);
    };
    request_->setDoneListener(first);
    first = nullptr;
    request_->perform();
    EXPECT_THAT(aliveInside, ElementsAre(1));
    EXPECT_EQ(alive, 0);
    EXPECT_THAT(listener_->outcomes, IsEmpty());
    request_->perform();
    EXPECT_THAT(listener_->outcomes, ElementsAre(nothingThrown));
}

TEST_F(DoneListener, ThatReplacesItselfAfterAFailureLeavesTheErrorIntact) {
    play(CURLE_OK, 500);
    listener_->onDone = [&] { request_->setDoneListener(nullptr); };
    EXPECT_EQ(thrownBy([&] { request_->perform(); }), statusError("500"));
    EXPECT_THAT(listener_->outcomes, ElementsAre(statusError("500")));
}

TEST_F(DoneListener, MayResetTheRequest) {
    play(CURLE_OK, 500);
    listener_->onDone = [&] { request_->reset(); };
    EXPECT_EQ(thrownBy([&] { request_->perform(); }), statusError("500"));
    EXPECT_EQ(request_->getURL(), "");
}

TEST_F(DoneListener, MayPerformTheRequestAgain) {
    listener_->onDone = [&] {
        if (listener_->outcomes.size() < 3) request_->perform();
    };
    request_->perform();
    EXPECT_THAT(listener_->outcomes, ElementsAre(nothingThrown, nothingThrown, nothingThrown));
}

TEST_F(DoneListener, IsHeldUntilItIsReplaced) {
    static std::atomic<int> alive; // outlives the request
    alive = 0;
    request_->setDoneListener(new CRecordingListener(&alive));
    EXPECT_EQ(alive, 1);
    request_->setDoneListener(listener_);
    EXPECT_EQ(alive, 0);
}

} // namespace

} // namespace vantra::test
