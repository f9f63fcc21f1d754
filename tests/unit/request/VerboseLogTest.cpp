#include "CurlRecorder.h"
#include "Doubles.h"
#include "Thrown.h"
#include "VerboseLogFixture.h"

#include "vantra/NetRequest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

namespace vantra::test {

namespace {

using kel::CTime;
using kel::CXMLElement;
using kel::P;
using testing::ElementsAre;
using testing::IsEmpty;

// Recording

TEST_F(VerboseLog, IsNullAndEmptyWhileRecordingIsOff) {
    request_->setVerbose(false);
    EXPECT_FALSE(request_->isVerboseEnabled());
    EXPECT_EQ(request_->getVerboseOutput(all), nullptr);
    debug(CURLINFO_TEXT, "unheard");
    EXPECT_EQ(request_->getVerboseOutput(all), nullptr);
    request_->setVerbose(true);
    EXPECT_TRUE(request_->isVerboseEnabled());
    EXPECT_THAT(getLog(), IsEmpty());
}

TEST_F(VerboseLog, IsOffByDefault) {
    const P<CNetRequest> request = new CNetRequest();
    EXPECT_FALSE(request->isVerboseEnabled());
    EXPECT_EQ(request->getVerboseOutput(all), nullptr);
}

TEST_F(VerboseLog, KeepsTheMessagesInTheOrderOfTheirArrivalWithTheirTimes) {
    debug(CURLINFO_TEXT, "first");
    currentTime = CTime::fromMicroseconds(1554109508000000);
    debug(CURLINFO_HEADER_OUT, "second");
    EXPECT_THAT(getLog(), ElementsAre("info [logTime=2019-04-01T09:05:07.250] first",
                                      "send [type=header logTime=2019-04-01T09:05:08.000] second"));
}

TEST_F(VerboseLog, IgnoresTheMessagesOfOtherHandles) {
    CURL* other = curl_easy_init();
    char text[] = "not mine";
    request_->onLogDebugMessage(other, CURLINFO_TEXT, text, sizeof text - 1);
    request_->onLogDebugMessage(nullptr, CURLINFO_TEXT, text, sizeof text - 1);
    EXPECT_THAT(getLog(), IsEmpty());
    request_->onLogDebugMessage(request_->getHandle(), CURLINFO_TEXT, text, sizeof text - 1);
    EXPECT_THAT(getLog(), ElementsAre("info [logTime=2019-04-01T09:05:07.250] not mine"));
    curl_easy_cleanup(other);
}

TEST_F(VerboseLog, CopiesTheBytes) {
    char text[] = "before";
    request_->onLogDebugMessage(request_->getHandle(), CURLINFO_TEXT, text, sizeof text - 1);
    text[0] = 'B';
    EXPECT_THAT(getLog(), ElementsAre("info [logTime=2019-04-01T09:05:07.250] before"));
}

TEST_F(VerboseLog, TakesAMessageWithoutBytes) {
    request_->onLogDebugMessage(request_->getHandle(), CURLINFO_TEXT, nullptr, 0);
    request_->onLogDebugMessage(request_->getHandle(), CURLINFO_DATA_IN, nullptr, 0);
    EXPECT_THAT(getLog(), ElementsAre("info [logTime=2019-04-01T09:05:07.250] ",
                                      "receive [type=data logTime=2019-04-01T09:05:07.250 bytes=0] "));
}

TEST_F(VerboseLog, DebugCallbackAlwaysGivesZero) {
    char text[] = "hello";
    CURL* handle = request_->getHandle();
    EXPECT_EQ(CNetRequest::_curlDebugFunctionCallback(handle, CURLINFO_TEXT, text, 5, request_), 0);
    EXPECT_EQ(CNetRequest::_curlDebugFunctionCallback(handle, CURLINFO_TEXT, text, 5, nullptr), 0);
    EXPECT_EQ(CNetRequest::_curlDebugFunctionCallback(nullptr, CURLINFO_TEXT, text, 5, request_), 0);
    EXPECT_THAT(getLog(), ElementsAre("info [logTime=2019-04-01T09:05:07.250] hello"));
}

TEST_F(VerboseLog, DebugCallbackLetsNoFailureToRecordThroughToLibcurl) {
    static const Fault* fault = nullptr;
    char text[] = "hello";
    for (const Fault& each : getFaults()) {
        fault = &each;
        const LogCapture log;
        CTime::setNowFunction([]() -> CTime {
            // Once: the entry in the process's log has a time as well.
            if (const Fault* raised = std::exchange(fault, nullptr)) raised->raise();
            return getCurrentTime();
        });
        int result = -1;
        const Thrown thrown = thrownBy([&] {
            result = CNetRequest::_curlDebugFunctionCallback(request_->getHandle(), CURLINFO_TEXT, text, 5,
                                                             request_);
        });
        CTime::setNowFunction(&getCurrentTime);
        EXPECT_EQ(thrown, nothingThrown) << each.name;
        EXPECT_EQ(result, 0) << each.name;
        const std::string cause = each.name == "int" ? "" : " [" + each.asThrown.message + "]";
        EXPECT_THAT(
            log.getEntries(),
            ElementsAre("warning: Exception during CNetRequest transfer recording (ignored)." + cause));
    }
    EXPECT_THAT(getLog(), IsEmpty());
}

TEST_F(VerboseLog, IsNotConsumed) {
    debug(CURLINFO_TEXT, "hello");
    EXPECT_EQ(request_->getVerboseOutput(all)->toXML(), request_->getVerboseOutput(all)->toXML());
    EXPECT_EQ(getLog().size(), 1U);
}

TEST_F(VerboseLog, StartsAnewWithEachPerform) {
    EXPECT_EQ(performAndLogBodies("GET").size(), 2U);
    EXPECT_EQ(performAndLogBodies("GET").size(), 2U);
}

// The whole record

TEST_F(VerboseLog, HasMethodAndURLAndAChildForEachMessage) {
    request_->setHTTPMethod("GET");
    debug(CURLINFO_TEXT, "Connected\n");
    debug(CURLINFO_HEADER_OUT, "GET / HTTP/1.1\r\nHost: <example>\r\n\r\n");
    debug(CURLINFO_DATA_IN, "a b");
    EXPECT_EQ(request_->getVerboseOutput(all)->toXML(),
              "<NetRequest httpMethod=\"GET\" url=\"http://example.org/?a=b&amp;c\">\n"
              "  <info logTime=\"2019-04-01T09:05:07.250\">Connected</info>\n"
              "  <send type=\"header\" logTime=\"2019-04-01T09:05:07.250\">GET / HTTP/1.1&#13;\n"
              "Host: &lt;example&gt;</send>\n"
              "  <receive type=\"data\" logTime=\"2019-04-01T09:05:07.250\" bytes=\"3\">a%20b</receive>\n"
              "</NetRequest>");
}

TEST_F(VerboseLog, HasEmptyAttributesWithoutMethodAndURL) {
    request_->reset();
    const P<CXMLElement> root = request_->getVerboseOutput(all);
    EXPECT_EQ(textOf(*root), "NetRequest [httpMethod= url=] ");
    EXPECT_THAT(getLog(), IsEmpty());
}

// The setting that is decided for each transfer

TEST_F(VerboseLog, ByMethodShowsSizesOfAPut) {
    setSettings(4, 2);
    EXPECT_THAT(performAndLogBodies("PUT"), ElementsAre("~stripped~", "~stripped~"));
    EXPECT_THAT(getLog(),
                ElementsAre("send [type=data logTime=2019-04-01T09:05:07.250 bytes=10] ~stripped~",
                            "receive [type=data logTime=2019-04-01T09:05:07.250 bytes=10] ~stripped~"));
}

TEST_F(VerboseLog, ByMethodShowsContentOfOtherMethods) {
    setSettings(4, 2);
    for (const char* method : {"GET", "POST", "HEAD", "DELETE", "", "put"}) {
        EXPECT_THAT(performAndLogBodies(method), ElementsAre("0123456789", "abcdefghij")) << method;
    }
}

TEST_F(VerboseLog, ByMethodShowsSizesOfAnUpload) {
    setSettings(4, 2);
    request_->setHTTPMethod("");
    request_->setUpload(true);
    curl_.playTransfer([this](const LibcurlSide&) {
        debug(CURLINFO_DATA_OUT, "0123456789");
        return CURLE_OK;
    });
    curl_.answerInfo(CURLINFO_RESPONSE_CODE, 200);
    request_->perform();
    EXPECT_THAT(getLog(),
                ElementsAre("send [type=data logTime=2019-04-01T09:05:07.250 bytes=10] ~stripped~"));
}

TEST_F(VerboseLog, ByMethodIsDecidedAnewForEachTransfer) {
    setSettings(4, 2);
    EXPECT_THAT(performAndLogBodies("PUT"), ElementsAre("~stripped~", "~stripped~"));
    EXPECT_THAT(performAndLogBodies("GET"), ElementsAre("0123456789", "abcdefghij"));
    EXPECT_THAT(performAndLogBodies("PUT"), ElementsAre("~stripped~", "~stripped~"));
}

TEST_F(VerboseLog, ByMethodStaysDecidedWhenTheMethodChangesAfterTheTransfer) {
    setSettings(4, 2);
    performAndLogBodies("PUT");
    request_->setHTTPMethod("GET");
    EXPECT_THAT(getLog(),
                ElementsAre("send [type=data logTime=2019-04-01T09:05:07.250 bytes=10] ~stripped~",
                            "receive [type=data logTime=2019-04-01T09:05:07.250 bytes=10] ~stripped~"));
}

TEST_F(VerboseLog, FixedSettingsDoNotDependOnTheMethod) {
    setSettings(3, 2);
    EXPECT_THAT(performAndLogBodies("PUT"), ElementsAre("0123456789", "abcdefghij"));
    setSettings(2, 2);
    EXPECT_THAT(performAndLogBodies("GET"), ElementsAre("~stripped~", "~stripped~"));
}

TEST_F(VerboseLog, IsByMethodForBodiesAndShowsSizesOfTLSByDefault) {
    EXPECT_THAT(performAndLogBodies("PUT"), ElementsAre("~stripped~", "~stripped~"));
    EXPECT_THAT(performAndLogBodies("GET"), ElementsAre("0123456789", "abcdefghij"));
    EXPECT_EQ(render(CURLINFO_SSL_DATA_IN, "ab"), "receive [type=ssl_data T bytes=2] ~stripped~");
}

TEST_F(VerboseLog, ByMethodIsDecidedBeforeAnAsynchronousTransferToo) {
    setSettings(4, 2);
    request_->setHTTPMethod("PUT");
    request_->setAsyncInfo(false, CURLE_OK);
    debug(CURLINFO_DATA_OUT, "0123456789");
    EXPECT_THAT(getLog(),
                ElementsAre("send [type=data logTime=2019-04-01T09:05:07.250 bytes=10] ~stripped~"));
}

} // namespace

} // namespace vantra::test
