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
using testing::ElementsAreArray;
using testing::IsEmpty;

/// What libcurl is told for every new or reset request, once the request and its debug callback have their
/// names.
const std::vector<std::string> defaultOptions = {"ERRORBUFFER = object",
                                                 "WRITEFUNCTION = function",
                                                 "WRITEDATA = the request",
                                                 "READFUNCTION = function",
                                                 "READDATA = the request",
                                                 "SEEKFUNCTION = function",
                                                 "SEEKDATA = the request",
                                                 "HEADERFUNCTION = function",
                                                 "HEADERDATA = the request",
                                                 "FOLLOWLOCATION = 1",
                                                 "NOSIGNAL = 1",
                                                 "CONNECTTIMEOUT_MS = 30000",
                                                 "LOW_SPEED_LIMIT = 1",
                                                 "LOW_SPEED_TIME = 60",
                                                 "DEBUGFUNCTION = the debug callback",
                                                 "DEBUGDATA = the request"};

std::vector<std::string> withDefaultOptions(std::vector<std::string> before,
                                            const std::vector<std::string>& after) {
    before.insert(before.end(), defaultOptions.begin(), defaultOptions.end());
    before.insert(before.end(), after.begin(), after.end());
    return before;
}

class RequestConstruction : public testing::Test {
protected:
    RequestConstruction() {
        curl_.nameObject(reinterpret_cast<const void*>(&CNetRequest::_curlDebugFunctionCallback),
                         "the debug callback");
    }

    P<CTestRequest> makeRequest() {
        P<CTestRequest> request = new CTestRequest();
        curl_.nameObject(static_cast<CNetRequest*>(request), "the request");
        return request;
    }

    CurlRecorder curl_;
};

using RequestReset = RequestConstruction;

TEST_F(RequestConstruction, TellsLibcurlTheDefaultsInTheirOrder) {
    const P<CTestRequest> request = makeRequest();
    EXPECT_THAT(curl_.takeCalls(), ElementsAreArray(withDefaultOptions({"init"}, {})));
}

TEST_F(RequestConstruction, StartsWithoutURLMethodHeadersOrResponse) {
    const P<CTestRequest> request = makeRequest();
    EXPECT_EQ(request->getURL(), "");
    EXPECT_EQ(request->getHTTPMethod(), "");
    EXPECT_EQ(request->getHTTPStatusLine(), "");
    EXPECT_EQ(request->getResponseCode(), 0);
    EXPECT_EQ(request->getResponseCodeDomain(), "");
    EXPECT_THAT(plain(request->getResponseHeaderMap()), IsEmpty());
    EXPECT_THAT(getResponseInfo(*request), IsEmpty());
    EXPECT_EQ(request->getCustomHTTPHeaders(), nullptr);
    EXPECT_EQ(request->getSendDataStream(), nullptr);
    EXPECT_EQ(request->getUserData(), nullptr);
    EXPECT_FALSE(request->isVerboseEnabled());
    EXPECT_FALSE(request->isAsyncDone());
    EXPECT_NE(request->getHandle(), nullptr);
}

TEST_F(RequestConstruction, MakesAnEmptyDefaultReceiveBufferAndUsesIt) {
    const P<CTestRequest> request = makeRequest();
    EXPECT_TRUE(request->usesDefaultReceiveBuffer());
    ASSERT_NE(request->getDefaultReceiveBuffer(), nullptr);
    EXPECT_EQ(request->getDefaultReceiveBuffer()->getUsed(), 0U);
}

TEST_F(RequestConstruction, FailsWhenLibcurlHasNoHandleToGive) {
    curl_.failInit();
    EXPECT_EQ(thrownBy([] { const P<CNetRequest> request = new CNetRequest(); }),
              plainError("Error creating curl easy handle."));
    EXPECT_THAT(curl_.takeCalls(), ElementsAre("init"));
}

TEST_F(RequestConstruction, FailsWithLibcurlsErrorAndFreesTheHandleWhenADefaultIsRefused) {
    curl_.failOption(CURLOPT_NOSIGNAL, CURLE_UNKNOWN_OPTION, "no such thing");
    EXPECT_EQ(thrownBy([] { const P<CNetRequest> request = new CNetRequest(); }),
              curlError(CURLE_UNKNOWN_OPTION, "no such thing"));
    EXPECT_EQ(curl_.takeCalls().back(), "cleanup");
}

TEST_F(RequestConstruction, RegistersTheBufferThatErrorTextsAreReadFrom) {
    const P<CTestRequest> request = makeRequest();
    curl_.failOption(CURLOPT_FOLLOWLOCATION, CURLE_OUT_OF_MEMORY, "no room");
    EXPECT_EQ(thrownBy([&] { request->setFollowRedirects(true); }),
              curlError(CURLE_OUT_OF_MEMORY, "no room"));
}

TEST_F(RequestConstruction, DestructionCleansUpTheHandleOnce) {
    P<CTestRequest> request = makeRequest();
    curl_.takeCalls();
    request = nullptr;
    EXPECT_THAT(curl_.takeCalls(), ElementsAre("cleanup"));
}

TEST_F(RequestConstruction, DestructionWhileVerboseIgnoresWhatLibcurlSaysAtLast) {
    P<CTestRequest> request = makeRequest();
    request->setVerbose(true);
    request = nullptr;
    EXPECT_EQ(curl_.takeCalls().back(), "cleanup");
}

TEST_F(RequestReset, TellsLibcurlToResetAndThenTheDefaultsInTheirOrder) {
    const P<CTestRequest> request = makeRequest();
    curl_.takeCalls();
    request->reset();
    EXPECT_THAT(curl_.takeCalls(), ElementsAreArray(withDefaultOptions({"reset"}, {})));
}

TEST_F(RequestReset, ForgetsURLMethodAndHeaders) {
    const P<CTestRequest> request = makeRequest();
    request->setURL("http://example.org/");
    request->setHTTPMethod("PUT");
    const P<CNetHeaders> headers = new CNetHeaders();
    headers->add("Accept", "text/plain");
    request->setCustomHTTPHeaders(headers);

    request->reset();

    EXPECT_EQ(request->getURL(), "");
    EXPECT_EQ(request->getResponseCodeDomain(), "");
    EXPECT_EQ(request->getHTTPMethod(), "");
    EXPECT_EQ(request->getCustomHTTPHeaders(), nullptr);
}

TEST_F(RequestReset, ForgetsThatTheURLWasHTTP) {
    const P<CTestRequest> request = makeRequest();
    request->setURL("http://example.org/");
    request->reset();
    curl_.sideOf(request->getHandle()).headers({"HTTP/1.1 200 OK\r\n", "A: b\r\n"});
    EXPECT_EQ(request->getHTTPStatusLine(), "");
    EXPECT_THAT(plain(request->getResponseHeaderMap()), IsEmpty());
}

TEST_F(RequestReset, DoesNotPassTheHeadersOfBeforeToTheNextTransfer) {
    const P<CTestRequest> request = makeRequest();
    const P<CNetHeaders> headers = new CNetHeaders();
    headers->add("Accept", "text/plain");
    request->setCustomHTTPHeaders(headers);
    request->reset();
    curl_.takeCalls();
    curl_.playTransfer([](const LibcurlSide&) { return CURLE_OK; });
    request->perform();
    EXPECT_THAT(curl_.takeCalls(), ElementsAre("perform"));
}

TEST_F(RequestReset, ForgetsTheSendDataSize) {
    const P<CTestRequest> request = makeRequest();
    request->setSendDataSize(10);
    request->reset();
    curl_.takeCalls();
    request->setHTTPMethod("POST");
    EXPECT_EQ(curl_.takeCalls().back(), "POSTFIELDSIZE_LARGE = -1");
}

TEST_F(RequestReset, PutsTheDefaultReceiveSinkBackAndEmptiesItsBuffer) {
    const P<CTestRequest> request = makeRequest();
    curl_.sideOf(request->getHandle()).write("left over");
    request->setReceiveDataSink(new CRecordingSink());
    request->reset();
    EXPECT_TRUE(request->usesDefaultReceiveBuffer());
    EXPECT_EQ(getBody(*request), "");
}

TEST_F(RequestReset, ForgetsTheLastResponse) {
    const P<CTestRequest> request = makeRequest();
    request->setURL("http://example.org/");
    curl_.sideOf(request->getHandle()).headers({"HTTP/1.1 200 OK\r\n", "A: b\r\n", "\r\n"});
    ASSERT_EQ(request->getHTTPStatusLine(), "HTTP/1.1 200 OK");
    request->reset();
    EXPECT_EQ(request->getHTTPStatusLine(), "");
    EXPECT_THAT(plain(request->getResponseHeaderMap()), IsEmpty());
    EXPECT_THAT(getResponseInfo(*request), IsEmpty());
}

TEST_F(RequestReset, ReleasesSourceListenerSinkHeadersAndCommandListsOnce) {
    static std::atomic<int> alive; // outlives the request
    alive = 0;
    const P<CTestRequest> request = makeRequest();
    request->setSendDataSource(new CRecordingSource("data", &alive));
    request->setDoneListener(new CRecordingListener(&alive));
    request->setReceiveDataSink(new CRecordingSink(&alive));
    ASSERT_EQ(alive, 3);
    request->reset();
    EXPECT_EQ(alive, 0);
}

TEST_F(RequestReset, DoesNotTouchTheSourceThatItReleases) {
    const P<CRecordingSource> source = new CRecordingSource("data");
    source->position = 3;
    const P<CTestRequest> request = makeRequest();
    request->setSendDataSource(source);
    request->reset();
    EXPECT_THAT(source->takeCalls(), IsEmpty());
}

TEST_F(RequestReset, ForgetsTheServerRecord) {
    const P<CServerInfo> info = new CServerInfo();
    const P<CTestRequest> request = makeRequest();
    request->setServerInfoToUpdate(info);
    request->reset();
    request->setURL("http://example.org/");
    curl_.sideOf(request->getHandle()).headers({"HTTP/1.1 200 OK\r\n", "Server: first/1\r\n", "\r\n"});
    EXPECT_EQ(info->getServerHeader(), "");
}

TEST_F(RequestReset, ForgetsThePendingErrorOfAListenedTransfer) {
    const P<CTestRequest> request = makeRequest();
    const P<CRecordingSink> sink = new CRecordingSink();
    sink->writes.failAt(1, getFaults().front().raise);
    request->setReceiveDataSink(sink);
    curl_.sideOf(request->getHandle()).write("x");
    request->setAsyncInfo(true, CURLE_OK);
    ASSERT_EQ(thrownBy([&] { request->checkAsyncResult(); }), getFaults().front().asTransferred);

    request->reset();

    EXPECT_FALSE(request->isAsyncDone());
    EXPECT_EQ(thrownBy([&] { request->checkAsyncResult(); }), nothingThrown);
    request->setAsyncInfo(true, CURLE_OK);
    EXPECT_EQ(thrownBy([&] { request->checkAsyncResult(); }), nothingThrown);
}

TEST_F(RequestReset, ClearsTheErrorBuffer) {
    const P<CTestRequest> request = makeRequest();
    curl_.sideOf(request->getHandle()).setErrorText("old trouble");
    request->reset();
    EXPECT_EQ(curl_.sideOf(request->getHandle()).getErrorText(), "");
}

TEST_F(RequestReset, KeepsTheVerboseFlagAndTellsLibcurlAgainAfterTheDefaults) {
    const P<CTestRequest> request = makeRequest();
    request->setVerbose(true);
    curl_.takeCalls();
    request->reset();
    EXPECT_TRUE(request->isVerboseEnabled());
    EXPECT_THAT(curl_.takeCalls(), ElementsAreArray(withDefaultOptions({"reset"}, {"VERBOSE = 1"})));
}

TEST_F(RequestReset, KeepsTheVerboseSettings) {
    const P<CTestRequest> request = makeRequest();
    request->setVerbose(true);
    request->setVerboseSettings(CNetRequest::VerboseLogDataSize, CNetRequest::VerboseLogDataContent);
    request->reset();
    const LibcurlSide& curl = curl_.sideOf(request->getHandle());
    curl.debug(request->getHandle(), CURLINFO_DATA_IN, "body");
    curl.debug(request->getHandle(), CURLINFO_SSL_DATA_IN, "tls");
    const P<kel::CXMLElement> log = request->getVerboseOutput(100);
    EXPECT_EQ(log->getChildren()[0]->getText(), "~stripped~");
    EXPECT_EQ(log->getChildren()[1]->getText(), "tls");
}

TEST_F(RequestReset, ForgetsTheRecordedMessages) {
    const P<CTestRequest> request = makeRequest();
    request->setVerbose(true);
    curl_.sideOf(request->getHandle()).debug(request->getHandle(), CURLINFO_TEXT, "hello");
    ASSERT_EQ(request->getVerboseOutput(100)->getChildren().size(), 1U);
    request->reset();
    EXPECT_EQ(request->getVerboseOutput(100)->getChildren().size(), 0U);
}

TEST_F(RequestReset, KeepsUserDataAndDependencies) {
    static std::atomic<int> alive; // outlives the request
    alive = 0;
    int value = 0;
    P<CTestRequest> request = makeRequest();
    request->setUserData(&value);
    request->addDependencyObject(P<kel::IBase>(new CCounted(&alive)));
    request->reset();
    EXPECT_EQ(request->getUserData(), &value);
    EXPECT_EQ(alive, 1);
    request = nullptr;
    EXPECT_EQ(alive, 0);
}

TEST_F(RequestReset, CanBeRepeated) {
    const P<CTestRequest> request = makeRequest();
    request->reset();
    request->reset();
    curl_.takeCalls();
    request->reset();
    EXPECT_THAT(curl_.takeCalls(), ElementsAreArray(withDefaultOptions({"reset"}, {})));
}

} // namespace

} // namespace vantra::test
