#include "CurlRecorder.h"
#include "Doubles.h"
#include "Thrown.h"

#include "vantra/NetRequest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace vantra::test {

namespace {

using kel::P;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string url = "http://example.org/";

class AsyncHooks : public testing::Test {
protected:
    AsyncHooks() { request_->setURL("http://example.org/"); }

    void start() { request_->setAsyncInfo(false, CURLE_OK); }

    void finish(CURLcode result, int responseCode = 200) {
        curl_.answerInfo(CURLINFO_RESPONSE_CODE, responseCode);
        request_->setAsyncInfo(true, result);
    }

    Thrown check() {
        return thrownBy([&] { request_->checkAsyncResult(); });
    }

    const LibcurlSide& side() const { return curl_.sideOf(request_->getHandle()); }

    static Thrown statusError(const std::string& code) {
        return curlError(CURLE_HTTP_RETURNED_ERROR, "",
                         {{"responseCodeDomain", "http"}, {"responseCode", code}, {"url", url}});
    }

    CurlRecorder curl_;
    P<CTestRequest> request_ = new CTestRequest();
};

TEST_F(AsyncHooks, NothingIsDoneAtTheStart) {
    EXPECT_FALSE(request_->isAsyncDone());
    EXPECT_FALSE(request_->waitAsyncDone(0));
    EXPECT_FALSE(request_->getAsyncDoneSignal()->isSet());
    EXPECT_EQ(check(), nothingThrown);
}

TEST_F(AsyncHooks, NothingIsDoneWhileATransferRuns) {
    start();
    EXPECT_FALSE(request_->isAsyncDone());
    EXPECT_FALSE(request_->waitAsyncDone(0));
    EXPECT_EQ(check(), nothingThrown);
}

TEST_F(AsyncHooks, CheckingBeforeTheEndReturnsSilentlyEvenWithAPendingError) {
    start();
    const P<CRecordingSink> sink = new CRecordingSink();
    sink->writes.failAt(1, getFaults().front().raise);
    request_->setReceiveDataSink(sink);
    side().headers({"HTTP/1.1 200 OK\r\n", "\r\n"});
    side().write("body");
    EXPECT_EQ(check(), nothingThrown);
}

TEST_F(AsyncHooks, SuccessSetsTheSignalAndRaisesNothing) {
    start();
    finish(CURLE_OK);
    EXPECT_TRUE(request_->isAsyncDone());
    EXPECT_TRUE(request_->waitAsyncDone(0));
    EXPECT_TRUE(request_->waitAsyncDone(-1));
    EXPECT_TRUE(request_->getAsyncDoneSignal()->isSet());
    EXPECT_EQ(check(), nothingThrown);
}

TEST_F(AsyncHooks, Status500IsDoneAndRaisedAsCode22EachTime) {
    start();
    finish(CURLE_OK, 500);
    EXPECT_TRUE(request_->isAsyncDone());
    EXPECT_EQ(check(), statusError("500"));
    EXPECT_EQ(check(), statusError("500"));
}

TEST_F(AsyncHooks, StatusesOutside200To299Fail) {
    for (const int code : {199, 300, 404}) {
        start();
        finish(CURLE_OK, code);
        EXPECT_EQ(check(), statusError(std::to_string(code)));
    }
    for (const int code : {200, 204, 299}) {
        start();
        finish(CURLE_OK, code);
        EXPECT_EQ(check(), nothingThrown) << code;
    }
}

TEST_F(AsyncHooks, AnErrorStatusIsRaisedWithServerMessageStatusLineAndMethod) {
    request_->setHTTPMethod("DELETE");
    start();
    side().headers({"HTTP/1.1 404 Not Found\r\n", "\r\n"});
    side().write("There is no such key.");
    finish(CURLE_OK, 404);
    EXPECT_EQ(check(), curlError(CURLE_HTTP_RETURNED_ERROR, "",
                                 {{"responseCodeDomain", "http"},
                                  {"responseCode", "404"},
                                  {"serverMessage", "There is no such key."},
                                  {"httpStatusLine", "HTTP/1.1 404 Not Found"},
                                  {"url", url},
                                  {"httpMethod", "DELETE"}}));
}

TEST_F(AsyncHooks, AnUpperCaseSchemeHasNoStatusCheck) {
    request_->setURL("HTTP://example.org/");
    start();
    finish(CURLE_OK, 500);
    EXPECT_TRUE(request_->isAsyncDone());
    EXPECT_EQ(check(), nothingThrown);
}

TEST_F(AsyncHooks, TheStatusCheckOnlyLooksAtTheFirstFourLettersOfTheURL) {
    request_->setURL("httpx:example");
    start();
    finish(CURLE_OK, 500);
    Thrown expected =
        curlError(CURLE_HTTP_RETURNED_ERROR, "", {{"responseCode", "500"}, {"url", "httpx:example"}});
    EXPECT_EQ(check(), expected);
    request_->setURL("https://example.org/");
    start();
    finish(CURLE_OK, 500);
    EXPECT_EQ(check().code, 22);
}

TEST_F(AsyncHooks, OtherProtocolsHaveNoStatusCheck) {
    request_->setURL("ftp://example.org/");
    start();
    finish(CURLE_OK, 550);
    EXPECT_EQ(check(), nothingThrown);
}

TEST_F(AsyncHooks, AFailureOfLibcurlIsRaisedWithTheErrorTextOfItsEnd) {
    start();
    side().setErrorText("Connection refüsed");
    finish(CURLE_COULDNT_CONNECT, 0);
    side().setErrorText("something else by now");
    const Thrown expected = curlError(CURLE_COULDNT_CONNECT, "Connection refüsed",
                                      {{"responseCodeDomain", "http"}, {"url", url}});
    EXPECT_EQ(check(), expected);
    EXPECT_EQ(check(), expected);
}

TEST_F(AsyncHooks, AFailureOfLibcurlKeepsItsCodeDespiteAnErrorStatus) {
    start();
    finish(CURLE_PARTIAL_FILE, 404);
    EXPECT_EQ(check(), curlError(CURLE_PARTIAL_FILE, "",
                                 {{"responseCodeDomain", "http"}, {"responseCode", "404"}, {"url", url}}));
}

TEST_F(AsyncHooks, AnErrorTextThatIsNotUTF8IsLoggedAndLeftOut) {
    const LogCapture log;
    start();
    side().setErrorText("nicht m\xF6glich");
    finish(CURLE_COULDNT_CONNECT, 0);
    const std::vector<std::string> entries = log.getEntries();
    ASSERT_FALSE(entries.empty());
    EXPECT_EQ(entries.front(),
              "error: A CURL function has failed, but the CURL error buffer does not contain valid "
              "UTF8 data.");
    EXPECT_EQ(check(), curlError(CURLE_COULDNT_CONNECT, "", {{"responseCodeDomain", "http"}, {"url", url}}));
}

TEST_F(AsyncHooks, TheSinksErrorIsRaisedEachTimeWhateverLibcurlReported) {
    for (const Fault& fault : getFaults()) {
        for (const CURLcode result : {CURLE_OK, CURLE_WRITE_ERROR}) {
            for (const int code : {200, 500}) {
                start();
                const P<CRecordingSink> sink = new CRecordingSink();
                sink->writes.failAt(1, fault.raise);
                request_->setReceiveDataSink(sink);
                side().headers({"HTTP/1.1 200 OK\r\n", "\r\n"});
                side().write("body");
                finish(result, code);
                EXPECT_EQ(check(), fault.asTransferred) << fault.name << ' ' << result << ' ' << code;
                EXPECT_EQ(check(), fault.asTransferred) << fault.name << ' ' << result << ' ' << code;
            }
        }
    }
}

TEST_F(AsyncHooks, TheNextStartForgetsTheFailure) {
    start();
    finish(CURLE_OK, 500);
    start();
    EXPECT_FALSE(request_->isAsyncDone());
    EXPECT_EQ(check(), nothingThrown);
    finish(CURLE_OK, 200);
    EXPECT_EQ(check(), nothingThrown);
}

TEST_F(AsyncHooks, TheNextStartForgetsTheErrorText) {
    start();
    side().setErrorText("first");
    finish(CURLE_COULDNT_CONNECT, 0);
    start();
    side().setErrorText("");
    finish(CURLE_COULDNT_CONNECT, 0);
    EXPECT_EQ(check(), curlError(CURLE_COULDNT_CONNECT, "", {{"responseCodeDomain", "http"}, {"url", url}}));
}

TEST_F(AsyncHooks, StartingClearsWhatIsKnownOfTheLastResponse) {
    start();
    side().headers({"HTTP/1.1 200 OK\r\n", "A: b\r\n", "\r\n"});
    side().write("body");
    finish(CURLE_OK);
    start();
    EXPECT_EQ(request_->getHTTPStatusLine(), "");
    EXPECT_THAT(plain(request_->getResponseHeaderMap()), IsEmpty());
    EXPECT_THAT(getResponseInfo(*request_), IsEmpty());
    EXPECT_EQ(getBody(*request_), "");
}

TEST_F(AsyncHooks, TheEndLeavesTheResponseInPlace) {
    start();
    side().headers({"HTTP/1.1 200 OK\r\n", "A: b\r\n", "\r\n"});
    side().write("body");
    finish(CURLE_OK);
    EXPECT_EQ(request_->getHTTPStatusLine(), "HTTP/1.1 200 OK");
    EXPECT_EQ(plain(request_->getResponseHeaderMap()), (std::map<std::string, std::string>{{"a", "b"}}));
    EXPECT_EQ(getBody(*request_), "body");
}

TEST_F(AsyncHooks, StartingPassesTheHeadersAgainAndRewindsTheSource) {
    const P<CNetHeaders> headers = new CNetHeaders();
    request_->setCustomHTTPHeaders(headers);
    headers->add("A", "b");
    const P<CRecordingSource> source = new CRecordingSource("data");
    source->position = 3;
    request_->setSendDataSource(source);
    curl_.takeCalls();
    start();
    EXPECT_THAT(curl_.takeCalls(), ElementsAre("HTTPHEADER = [\"A: b\"]"));
    EXPECT_THAT(source->takeCalls(), ElementsAre("position", "seek 0"));
}

TEST_F(AsyncHooks, StartingRaisesWhatRewindingTheSourceThrows) {
    for (const Fault& fault : getFaults()) {
        const P<CRecordingSource> source = new CRecordingSource("data");
        source->position = 3;
        source->seeks.failAt(1, fault.raise);
        request_->setSendDataSource(source);
        EXPECT_EQ(thrownBy([&] { start(); }), fault.asThrown) << fault.name;
    }
}

TEST_F(AsyncHooks, TheSignalStaysTheSameObject) {
    const P<kel::CSignal> signal = request_->getAsyncDoneSignal();
    start();
    finish(CURLE_OK);
    EXPECT_EQ(request_->getAsyncDoneSignal(), signal);
    request_->reset();
    EXPECT_EQ(request_->getAsyncDoneSignal(), signal);
    EXPECT_FALSE(signal->isSet());
}

TEST_F(AsyncHooks, WaitingIsEndedByTheEndOfTheTransfer) {
    start();
    bool wasDone = false;
    Thrown seen;
    std::thread waiter([&] {
        wasDone = request_->waitAsyncDone(-1);
        seen = check();
    });
    finish(CURLE_OK, 500);
    waiter.join();
    EXPECT_TRUE(wasDone);
    EXPECT_EQ(seen, statusError("500"));
}

// The done listener

class AsyncDoneListener : public AsyncHooks {
protected:
    AsyncDoneListener() { request_->setDoneListener(listener_); }

    P<CRecordingListener> listener_ = new CRecordingListener();
};

TEST_F(AsyncDoneListener, IsCalledOnceWithNullAfterASuccess) {
    start();
    EXPECT_THAT(listener_->outcomes, IsEmpty());
    finish(CURLE_OK);
    EXPECT_THAT(listener_->outcomes, ElementsAre(nothingThrown));
    EXPECT_THAT(listener_->requests, ElementsAre(request_.get()));
    EXPECT_EQ(check(), nothingThrown);
    EXPECT_EQ(listener_->outcomes.size(), 1U);
}

TEST_F(AsyncDoneListener, IsCalledOnceWithTheErrorThatCheckingRaises) {
    start();
    finish(CURLE_OK, 500);
    EXPECT_EQ(check(), statusError("500"));
    EXPECT_THAT(listener_->outcomes, ElementsAre(statusError("500")));
}

TEST_F(AsyncDoneListener, IsCalledWithWhatTheSinkThrew) {
    start();
    const P<CRecordingSink> sink = new CRecordingSink();
    sink->writes.failAt(1, getFaults().front().raise);
    request_->setReceiveDataSink(sink);
    side().headers({"HTTP/1.1 200 OK\r\n", "\r\n"});
    side().write("body");
    finish(CURLE_WRITE_ERROR);
    EXPECT_THAT(listener_->outcomes, ElementsAre(getFaults().front().asTransferred));
}

TEST_F(AsyncDoneListener, FindsTheTransferDone) {
    bool wasDone = false;
    listener_->onDone = [&] { wasDone = request_->isAsyncDone(); };
    start();
    finish(CURLE_OK);
    EXPECT_TRUE(wasDone);
}

TEST_F(AsyncDoneListener, IsCalledOutsideTheRequestsMutex) {
    // Another thread that asks while the listener runs would otherwise wait for ever.
    Thrown seen;
    listener_->onDone = [&] { std::thread([&] { seen = check(); }).join(); };
    start();
    finish(CURLE_OK, 500);
    EXPECT_EQ(seen, statusError("500"));
}

TEST_F(AsyncDoneListener, ThatThrowsIsLoggedAndDoesNotHarmTheManager) {
    for (const Fault& fault : getFaults()) {
        const LogCapture log;
        listener_->onDone = fault.raise;
        listener_->outcomes.clear();
        start();
        EXPECT_EQ(thrownBy([&] { finish(CURLE_OK, 500); }), nothingThrown) << fault.name;
        EXPECT_THAT(listener_->outcomes, ElementsAre(statusError("500")));
        EXPECT_EQ(check(), statusError("500"));
        const std::string cause = fault.name == "int" ? "" : " [" + fault.asThrown.message + "]";
        EXPECT_THAT(log.getEntries(), ElementsAre("error: Exception in a done listener (ignored)." + cause));
    }
}

TEST_F(AsyncDoneListener, ThatReplacesItselfStaysAliveUntilItReturns) {
    static std::atomic<int> alive; // outlives the request
    alive = 0;
    P<CRecordingListener> first = new CRecordingListener(&alive);
    int aliveInside = 0;
    first->onDone = [&] {
        request_->setDoneListener(listener_);
        aliveInside = alive;
    };
    request_->setDoneListener(first);
    first = nullptr;
    start();
    finish(CURLE_OK);
    EXPECT_EQ(aliveInside, 1);
    EXPECT_EQ(alive, 0);
    EXPECT_THAT(listener_->outcomes, IsEmpty());
}

TEST_F(AsyncDoneListener, MayStartTheNextTransfer) {
    listener_->onDone = [&] { start(); };
    start();
    finish(CURLE_OK, 500);
    EXPECT_FALSE(request_->isAsyncDone());
    EXPECT_THAT(listener_->outcomes, ElementsAre(statusError("500")));
}

TEST_F(AsyncDoneListener, IsToldWhenLibcurlCannotGiveTheResponseCode) {
    const LogCapture log;
    start();
    curl_.failInfo(CURLINFO_RESPONSE_CODE, CURLE_UNKNOWN_OPTION);
    EXPECT_EQ(thrownBy([&] { request_->setAsyncInfo(true, CURLE_OK); }), nothingThrown);
    EXPECT_TRUE(request_->isAsyncDone());
    const Thrown expected = curlError(CURLE_UNKNOWN_OPTION, "", {{"url", url}});
    EXPECT_THAT(listener_->outcomes, ElementsAre(expected));
    EXPECT_EQ(check(), expected);
}

} // namespace

} // namespace vantra::test
