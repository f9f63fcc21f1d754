#include "WebServer.h"

using kel::P;
using testsupport::NginxServer;
using vantra::CNetRequest;

TEST(TLS, SpeaksHTTP2WhereTheServerDoes) {
    const P<CNetRequest> request = makeRequest(webServer().httpsUrl("/hello.txt"));
    webServer().clearAccessLog();
    EXPECT_EQ(performForBody(*request), NginxServer::helloContent());
    EXPECT_EQ(request->getHTTPStatusLine(), "HTTP/2 200");
    EXPECT_EQ(webServer().accessLog().back().protocol, "HTTP/2.0");
}
