#include "WebServer.h"

#include <set>

using kel::P;
using kel::String;
using testsupport::NginxServer;
using vantra::CCURLError;
using vantra::CNetRequest;
using vantra::CServerInfo;

namespace {

class Get : public OverHTTPAndHTTPS {};

INSTANTIATE_TEST_SUITE_P(Scheme, Get, testing::Values("HTTP", "HTTPS"),
                         [](const auto& scheme) { return std::string(scheme.param); });

TEST_P(Get, DeliversBodyStatusAndHeaders) {
    const P<CNetRequest> request = makeRequest(url("/hello.txt"));
    EXPECT_EQ(performForBody(*request), NginxServer::helloContent());
    EXPECT_EQ(request->getResponseCode(), 200);
    EXPECT_EQ(vantra::getStatusCodeFromHTTPStatusLine(request->getHTTPStatusLine()), 200);
    EXPECT_EQ(request->getResponseHeaderMap().lookup("content-type"), "text/plain");
    EXPECT_EQ(request->getResponseHeaderMap().lookup("server"), "nginx");
    EXPECT_EQ(request->getDownloadedBytes(), static_cast<double>(NginxServer::helloContent().size()));
}

TEST_P(Get, DeliversALargeBinaryBody) {
    const P<CNetRequest> request = makeRequest(url("/big.bin"));
    EXPECT_EQ(performForBody(*request), NginxServer::bigContent());
    EXPECT_EQ(request->getDownloadSize(), static_cast<double>(NginxServer::bigContent().size()));
}

TEST_P(Get, TakesAnEmptyBodyAsSuccess) {
    const P<CNetRequest> request = makeRequest(url("/empty.txt"));
    EXPECT_EQ(performForBody(*request), "");
}

TEST_P(Get, TakesNoContentAsSuccess) {
    const P<CNetRequest> request = makeRequest(url("/s204"));
    EXPECT_EQ(performForBody(*request), "");
    EXPECT_EQ(request->getResponseCode(), 204);
}

TEST_P(Get, ReducesTheHTMLBodyOfAnErrorToText) {
    const P<CNetRequest> request = makeRequest(url("/s404html"));
    const CCURLError error = performForError(*request);
    EXPECT_EQ(error.getCodeDomain(), "curl");
    EXPECT_EQ(error.getCode(), CURLE_HTTP_RETURNED_ERROR);
    EXPECT_EQ(error.getResponseCodeDomain(), "http");
    EXPECT_EQ(error.getResponseCode(), 404);
    EXPECT_EQ(error.getServerMessage(), "Missing");
    EXPECT_EQ(error.getHTTPStatusLine(), request->getHTTPStatusLine());
    EXPECT_EQ(error.getURL(), request->getURL());
    EXPECT_EQ(error.getMessage(), "HTTP response code said error (response code: http 404)");
}

TEST_P(Get, KeepsThePlainBodyOfAnErrorAsItIs) {
    const P<CNetRequest> request = makeRequest(url("/s503"));
    request->setHTTPMethod("GET");
    const CCURLError error = performForError(*request);
    EXPECT_EQ(error.getServerMessage(), "busy\n");
    EXPECT_EQ(error.getHTTPMethod(), "GET");
    EXPECT_TRUE(vantra::isNetworkOrServiceDownError(error));
    EXPECT_EQ(vantra::getHTTPStatusCodeFromError(error), 503);
}

TEST_P(Get, LogsInWithBasicAuthentication) {
    const P<CNetRequest> request = makeRequest(url("/basic/hello.txt"));
    EXPECT_EQ(performForError(*request).getResponseCode(), 401);
    request->setUserName(String::fromUTF8(NginxServer::userName()));
    request->setUserPassword(String::fromUTF8(NginxServer::password()));
    EXPECT_EQ(performForBody(*request), NginxServer::helloContent());
    request->setUserPassword("wrong");
    EXPECT_EQ(performForError(*request).getResponseCode(), 401);
}

TEST_P(Get, ReusesOneConnectionForAThousandPerforms) {
    const P<CNetRequest> request = makeRequest(url("/hello.txt"));
    webServer().clearAccessLog();
    for (int i = 0; i < 1000; ++i) ASSERT_EQ(performForBody(*request), NginxServer::helloContent()) << i;
    std::set<std::uint64_t> connections;
    const auto log = webServer().accessLog();
    for (const auto& entry : log) connections.insert(entry.connection);
    EXPECT_EQ(log.size(), 1000U);
    EXPECT_EQ(connections.size(), 1U);
}

TEST_P(Get, RemembersTheServer) {
    const P<CNetRequest> request = makeRequest(url("/hello.txt"));
    const P<CServerInfo> info = new CServerInfo();
    request->setServerInfoToUpdate(info);
    request->perform();
    EXPECT_EQ(info->getServerHeader(), "nginx");
    EXPECT_FALSE(info->areGetRangesBroken());
}

TEST_P(Get, GoesOnAfterAnError) {
    const P<CNetRequest> request = makeRequest(url("/s500"));
    EXPECT_EQ(performForError(*request).getServerMessage(), "boom\n");
    request->setURL(String::fromUTF8(url("/hello.txt")));
    EXPECT_EQ(performForBody(*request), NginxServer::helloContent());
    request->reset();
    request->setURL(String::fromUTF8(webServer().url("/page.html")));
    request->setProxy("");
    EXPECT_EQ(performForBody(*request), NginxServer::pageContent());
}

TEST_P(Get, AsksForHeadersAloneWithHead) {
    const P<CNetRequest> request = makeRequest(url("/big.bin"));
    request->setHTTPMethod("HEAD");
    EXPECT_EQ(performForBody(*request), "");
    EXPECT_EQ(request->getResponseHeaderMap().lookup("content-length"), "1048576");
}

TEST(GetHTTP, SendsCustomHeadersThatMayChangeBetweenPerforms) {
    const P<CNetRequest> request = makeRequest(webServer().url("/echo"));
    const P<vantra::CNetHeaders> headers = new vantra::CNetHeaders();
    headers->add("X-First", "Grüße");
    request->setCustomHTTPHeaders(headers);
    std::string body = performForBody(*request);
    EXPECT_NE(body.find("X-First: Gr\xC3\xBC\xC3\x9F"
                        "e\r\n"),
              std::string::npos);
    EXPECT_EQ(body.find("X-Second"), std::string::npos);
    headers->add("X-Second", "2");
    body = performForBody(*request);
    EXPECT_NE(body.find("X-First: "), std::string::npos);
    EXPECT_NE(body.find("X-Second: 2\r\n"), std::string::npos);
}

TEST(GetHTTP, GivesUpAfterTheFullRequestTimeout) {
    const P<CNetRequest> request = makeRequest(webServer().url("/delay/5"));
    request->setFullRequestTimeout(kel::CTimeSpan::fromMilliseconds(200));
    const CCURLError error = performForError(*request);
    EXPECT_EQ(error.getCode(), CURLE_OPERATION_TIMEDOUT);
    EXPECT_FALSE(vantra::isNetworkOrServiceDownError(error));
    request->setFullRequestTimeout(kel::CTimeSpan::infinite());
    request->setURL(String::fromUTF8(webServer().url("/hello.txt")));
    EXPECT_EQ(performForBody(*request), NginxServer::helloContent());
}

} // namespace
