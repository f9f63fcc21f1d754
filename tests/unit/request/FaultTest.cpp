#include "Doubles.h"
#include "Thrown.h"

#include "vantra/CURLError.h"
#include "vantra/NetRequest.h"

#include "support/Ports.h"
#include "support/ResetConnection.h"
#include "support/ScriptedServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantra::test {

namespace {

using kel::CTimeSpan;
using kel::P;
using kel::String;
using testing::ElementsAre;
using testing::IsEmpty;
using testsupport::okResponse;
using testsupport::Script;
using testsupport::ScriptedServer;

using Params = std::map<std::string, std::string>;

/// Servers that do what they should not, and the request that goes on afterwards.
class ServerFault : public testing::Test {
protected:
    ServerFault() { request_->setURL(String(url_)); }

    void TearDown() override {
        expectNextTransferToWork();
        request_ = nullptr;
        EXPECT_THAT(server_.finish(), IsEmpty());
    }

    /// Performs the request against a script.
    Thrown perform(Script script) {
        server_.play(std::move(script));
        return thrownBy([&] { request_->perform(); });
    }

    /// Performs the request against an answer, after which the server ends the connection.
    Thrown performAnswered(const std::string& answer) {
        return perform(Script().expectRequest().send(answer).close());
    }

    /// Expects libcurl's failure with a text of libcurl's own, which differs between its versions and may
    /// tell times.
    void expectFailure(Thrown thrown, CURLcode code, Params params) {
        params.merge(Params{{"responseCodeDomain", "http"}, {"url", url_}});
        const Thrown expected = curlError(code, "", params);
        const std::string start = std::string(curl_easy_strerror(code)) + ": ";
        const std::string end = expected.message.substr(start.size() - 2);
        EXPECT_THAT(thrown.message, testing::StartsWith(start));
        EXPECT_THAT(thrown.message, testing::EndsWith(end));
        EXPECT_GT(thrown.message.size(), start.size() + end.size()) << thrown.message;
        thrown.message = expected.message;
        EXPECT_EQ(thrown, expected);
    }

    /// What libcurl says of a reset; `end` is what it says of an orderly end at that point.
    static CURLcode resetCode(const Thrown& thrown, CURLcode end) {
        return thrown.code == end && testsupport::resetMayLookLikeAnEnd() ? end : CURLE_RECV_ERROR;
    }

    void expectNextTransferToWork() {
        server_.play(Script().expectRequest().send(okResponse("again", "X-Again: yes\r\n")));
        request_->setURL(String(server_.url("/again")));
        EXPECT_EQ(thrownBy([&] { request_->perform(); }), nothingThrown);
        EXPECT_EQ(request_->getHTTPStatusLine(), "HTTP/1.1 200 OK");
        EXPECT_EQ(request_->getResponseCode(), 200);
        EXPECT_EQ(plain(request_->getResponseHeaderMap()),
                  (Params{{"content-length", "5"}, {"x-again", "yes"}}));
        EXPECT_THAT(getResponseInfo(*request_),
                    ElementsAre("HTTP/1.1 200 OK\r\n", "Content-Length: 5\r\n", "X-Again: yes\r\n", "\r\n"));
        EXPECT_EQ(getBody(*request_), "again");
    }

    ScriptedServer server_;
    const std::string url_ = server_.url("/path");
    P<CTestRequest> request_ = new CTestRequest();
};

TEST_F(ServerFault, NothingButTheEndOfTheConnection) {
    expectFailure(perform(Script().expectRequest().close()), CURLE_GOT_NOTHING, {});
}

TEST_F(ServerFault, ResetBeforeAnyAnswer) {
    const Thrown thrown = perform(Script().expectRequest().reset());
    expectFailure(thrown, resetCode(thrown, CURLE_GOT_NOTHING), {});
}

TEST_F(ServerFault, GarbageInPlaceOfAStatusLine) {
    expectFailure(performAnswered("\x01\x02 garbage \xFF\xFE\r\n\r\n"), CURLE_UNSUPPORTED_PROTOCOL, {});
    EXPECT_EQ(request_->getHTTPStatusLine(), "");
    EXPECT_EQ(getBody(*request_), "");
}

TEST_F(ServerFault, HeaderWithoutColon) {
    expectFailure(performAnswered("HTTP/1.1 200 OK\r\nA: b\r\nno colon here\r\nContent-Length: 0\r\n\r\n"),
                  CURLE_WEIRD_SERVER_REPLY, {{"responseCode", "200"}, {"httpStatusLine", "HTTP/1.1 200 OK"}});
}

TEST_F(ServerFault, HeaderLineBeyondAllLimits) {
    const Thrown thrown =
        performAnswered(okResponse("body", "X-Huge: " + std::string(1U << 20U, 'v') + "\r\n"));
    EXPECT_EQ(thrown.type, "CCURLError");
    EXPECT_EQ(thrown.params.at("url"), url_);
}

TEST_F(ServerFault, BodyShorterThanItsLength) {
    expectFailure(
        performAnswered("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhalf"), CURLE_PARTIAL_FILE,
        {{"responseCode", "200"}, {"serverMessage", "half"}, {"httpStatusLine", "HTTP/1.1 200 OK"}});
    EXPECT_EQ(getBody(*request_), "half");
}

TEST_F(ServerFault, ChunksWithoutAnEnd) {
    expectFailure(
        performAnswered("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n4\r\nhalf\r\n"),
        CURLE_PARTIAL_FILE,
        {{"responseCode", "200"}, {"serverMessage", "half"}, {"httpStatusLine", "HTTP/1.1 200 OK"}});
}

TEST_F(ServerFault, ResetInTheMiddleOfTheBody) {
    const Thrown thrown =
        perform(Script().expectRequest().send("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhalf").reset());
    expectFailure(
        thrown, resetCode(thrown, CURLE_PARTIAL_FILE),
        {{"responseCode", "200"}, {"serverMessage", "half"}, {"httpStatusLine", "HTTP/1.1 200 OK"}});
}

TEST_F(ServerFault, ErrorStatusWithABodyCutShort) {
    expectFailure(
        performAnswered("HTTP/1.1 503 Busy\r\nContent-Length: 100\r\n\r\ntry later"), CURLE_PARTIAL_FILE,
        {{"responseCode", "503"}, {"serverMessage", "try later"}, {"httpStatusLine", "HTTP/1.1 503 Busy"}});
}

TEST_F(ServerFault, StallBelowTheLowSpeedLimit) {
    request_->setLowSpeedLimit(1, CTimeSpan::fromMilliseconds(1));
    const Thrown thrown =
        perform(Script().expectRequest().send("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n").stall());
    expectFailure(thrown, CURLE_OPERATION_TIMEDOUT,
                  {{"responseCode", "200"}, {"httpStatusLine", "HTTP/1.1 200 OK"}});
    EXPECT_THAT(thrown.message, testing::HasSubstr("Operation too slow"));
}

TEST_F(ServerFault, StallBeyondTheTimeoutOfTheFullRequest) {
    request_->setFullRequestTimeout(CTimeSpan::fromMilliseconds(500));
    expectFailure(perform(Script().stall()), CURLE_OPERATION_TIMEDOUT, {});
    request_->setFullRequestTimeout(CTimeSpan::infinite());
}

TEST_F(ServerFault, RefusedConnection) {
    const testsupport::RefusedPort refused;
    const std::string url = "http://127.0.0.1:" + std::to_string(refused.port()) + "/";
    request_->setURL(String(url));
    expectFailure(thrownBy([&] { request_->perform(); }), CURLE_COULDNT_CONNECT, {{"url", url}});
}

TEST_F(ServerFault, UnansweredConnection) {
    const testsupport::UnansweredPort unanswered;
    const std::string url = "http://127.0.0.1:" + std::to_string(unanswered.port()) + "/";
    request_->setURL(String(url));
    request_->setConnectTimeout(CTimeSpan::fromMilliseconds(200));
    expectFailure(thrownBy([&] { request_->perform(); }), CURLE_OPERATION_TIMEDOUT, {{"url", url}});
}

TEST_F(ServerFault, RedirectsWithoutEnd) {
    request_->setOptionInt(CURLOPT_MAXREDIRS, 2);
    const std::string redirect = "HTTP/1.1 302 Found\r\nLocation: /path\r\nContent-Length: 0\r\n\r\n";
    expectFailure(
        perform(Script().expectRequest().send(redirect).expectRequest().send(redirect).expectRequest().send(
            "HTTP/1.1 302 Found\r\nLocation: /path\r\nContent-Length: 0\r\n"
            "Connection: close\r\n\r\n")),
        CURLE_TOO_MANY_REDIRECTS, {{"responseCode", "302"}, {"httpStatusLine", "HTTP/1.1 302 Found"}});
}

TEST_F(ServerFault, ErrorStatusInTheMiddleOfAnUpload) {
    request_->setHTTPMethod("PUT");
    request_->setCustomHTTPHeaders(makeHeadersWithoutExpect());
    request_->setSendDataSource(new CRecordingSource(std::string(1U << 20U, 'u')));
    request_->setSendDataSize(1U << 20U);
    const Thrown thrown = perform(Script()
                                      .expectHead()
                                      .send("HTTP/1.1 403 Forbidden\r\nContent-Length: 2\r\n"
                                            "Connection: close\r\n\r\nno")
                                      .stall());
    EXPECT_EQ(thrown, curlError(CURLE_HTTP_RETURNED_ERROR, "",
                                {{"responseCodeDomain", "http"},
                                 {"responseCode", "403"},
                                 {"serverMessage", "no"},
                                 {"httpStatusLine", "HTTP/1.1 403 Forbidden"},
                                 {"url", url_},
                                 {"httpMethod", "PUT"}}));
    request_->setSendDataSource(nullptr);
    request_->setHTTPMethod("");
}

TEST_F(ServerFault, MalformedURL) {
    request_->setURL("http://[bad/");
    EXPECT_EQ(thrownBy([&] { request_->perform(); }),
              curlError(CURLE_URL_MALFORMAT, "", {{"responseCodeDomain", "http"}, {"url", "http://[bad/"}}));
}

TEST(RequestWithoutURL, FailsWithLibcurlsError) {
    const P<CNetRequest> request = new CNetRequest();
    const Thrown thrown = thrownBy([&] { request->perform(); });
    EXPECT_EQ(thrown.type, "CCURLError");
    EXPECT_EQ(thrown.code, CURLE_URL_MALFORMAT);
    EXPECT_EQ(thrown.params, Params());
}

TEST(RequestOfAnUnknownScheme, FailsWithLibcurlsError) {
    const P<CNetRequest> request = new CNetRequest();
    request->setURL("gibberish://127.0.0.1/");
    const Thrown thrown = thrownBy([&] { request->perform(); });
    EXPECT_EQ(thrown.type, "CCURLError");
    EXPECT_EQ(thrown.code, CURLE_UNSUPPORTED_PROTOCOL);
    EXPECT_EQ(thrown.params, (Params{{"url", "gibberish://127.0.0.1/"}}));
    EXPECT_EQ(thrown.message, std::string(curl_easy_strerror(CURLE_UNSUPPORTED_PROTOCOL)) +
                                  ": Protocol \"gibberish\" not supported or disabled in libcurl");
}

TEST(RequestTimeout, BeyondLibcurlsRangeIsNoShortOne) {
    // libcurl keeps milliseconds in 32 bits: two to the power of 32 and one must not become one.
    ScriptedServer server;
    server.play(Script().expectRequest().delay(std::chrono::milliseconds(300)).send(okResponse("late")));
    P<CNetRequest> request = new CNetRequest();
    request->setURL(String(server.url()));
    request->setFullRequestTimeout(CTimeSpan::fromMilliseconds(4294967297));
    EXPECT_EQ(thrownBy([&] { request->perform(); }), nothingThrown);
    EXPECT_EQ(getBody(*request), "late");
    request = nullptr;
    EXPECT_THAT(server.finish(), IsEmpty());
}

} // namespace

} // namespace vantra::test
