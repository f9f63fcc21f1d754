#include "WebServer.h"

using kel::P;
using kel::String;
using testsupport::NginxServer;
using vantra::CCURLError;
using vantra::CNetRequest;

namespace {

class Redirect : public OverHTTPAndHTTPS {};

INSTANTIATE_TEST_SUITE_P(Scheme, Redirect, testing::Values("HTTP", "HTTPS"),
                         [](const auto& scheme) { return std::string(scheme.param); });

TEST_P(Redirect, LeavesOnlyTheLastResponsesHeaders) {
    const P<CNetRequest> request = makeRequest(url("/chain/3"));
    EXPECT_EQ(performForBody(*request), NginxServer::helloContent());
    EXPECT_FALSE(request->getResponseHeaderMap().contains("location"));
    EXPECT_EQ(request->getResponseHeaderMap().lookup("content-type"), "text/plain");
    EXPECT_EQ(request->getResponseCode(), 200);
    EXPECT_EQ(vantra::getStatusCodeFromHTTPStatusLine(request->getHTTPStatusLine()), 200);
}

TEST_P(Redirect, RecordsTheLinesOfEveryResponse) {
    const P<CNetRequest> request = makeRequest(url("/chain/3"));
    request->perform();
    int statusLines = 0;
    int locations = 0;
    const auto lines = request->getResponseInfo().createIterator();
    while (lines->next()) {
        if (lines->getEntry().startsWith("HTTP/")) ++statusLines;
        if (lines->getEntry().toLower().startsWith("location:")) ++locations;
    }
    EXPECT_EQ(statusLines, 4);
    EXPECT_EQ(locations, 3);
}

TEST_P(Redirect, FailsWithItsOwnStatusWhenNotFollowed) {
    const P<CNetRequest> request = makeRequest(url("/r302"));
    request->setFollowRedirects(false);
    const CCURLError error = performForError(*request);
    EXPECT_EQ(error.getCode(), CURLE_HTTP_RETURNED_ERROR);
    EXPECT_EQ(error.getResponseCode(), 302);
    EXPECT_EQ(vantra::getHTTPStatusCodeFromError(error), 302);
    EXPECT_TRUE(request->getResponseHeaderMap().contains("location"));
}

TEST_P(Redirect, WithoutEndFails) {
    const P<CNetRequest> request = makeRequest(url("/loop"));
    request->setOptionInt(CURLOPT_MAXREDIRS, 5);
    const CCURLError error = performForError(*request);
    EXPECT_EQ(error.getCode(), CURLE_TOO_MANY_REDIRECTS);
    EXPECT_EQ(vantra::getHTTPStatusCodeFromError(error), -1);
}

TEST_P(Redirect, SendsTheWholeBodyOfAPostAgainAfter307) {
    const P<CNetRequest> request = makeRequest(url("/r307/echo"));
    request->setHTTPMethod("POST");
    request->setSendDataAsUTF8("body of the post");
    webServer().clearAccessLog();
    request->perform();
    const auto log = webServer().accessLog();
    ASSERT_EQ(log.size(), 2U);
    EXPECT_EQ(log[0].status, 307);
    EXPECT_EQ(log[1].method, "POST");
    EXPECT_EQ(log[1].uri, "/echo");
    EXPECT_EQ(log[1].contentLength, "16");
    EXPECT_TRUE(getBody(*request).ends_with("body of the post"));
}

TEST_P(Redirect, TurnsAPostIntoAGetAfter302UnlessToldToKeepIt) {
    const P<CNetRequest> request = makeRequest(url("/r302/echo"));
    request->setHTTPMethod("POST");
    request->setSendDataAsUTF8("body");
    webServer().clearAccessLog();
    request->perform();
    EXPECT_EQ(webServer().accessLog().back().method, "GET");
    request->setKeepPostOnRedirect(true);
    request->perform();
    EXPECT_EQ(webServer().accessLog().back().method, "POST");
    EXPECT_TRUE(getBody(*request).ends_with("body"));
}

} // namespace
