#include "WebServer.h"

#include "support/FilePath.h"

using kel::P;
using kel::String;
using testsupport::NginxServer;
using vantra::CNetRequest;

namespace {

TEST(TLS, SpeaksHTTP1WhereTheServerHasNothingElse) {
    const P<CNetRequest> request =
        makeRequest(NginxServer::httpsUrl(webServer().ports().https1, "/hello.txt"));
    EXPECT_EQ(performForBody(*request), NginxServer::helloContent());
    EXPECT_EQ(request->getHTTPStatusLine(), "HTTP/1.1 200 OK");
}

TEST(TLS, RefusesAServerThatAnotherAuthorityVouchesFor) {
    testsupport::CertificateAuthority stranger("another authority");
    const P<CNetRequest> request = makeRequest(webServer().httpsUrl("/hello.txt"));
    request->setRootCertBundlePath(String::fromUTF8(stranger.caFile()));
    const auto error = performForError(*request);
    EXPECT_EQ(error.getCode(), CURLE_PEER_FAILED_VERIFICATION);
    EXPECT_EQ(error.getResponseCode(), 0);
    EXPECT_EQ(getBody(*request), "");
    request->setRootCertBundlePath(String::fromUTF8(webServer().caFile()));
    EXPECT_EQ(performForBody(*request), NginxServer::helloContent());
}

TEST(TLS, TakesAnyAuthorityWithoutVerification) {
    testsupport::CertificateAuthority stranger("another authority");
    const P<CNetRequest> request = makeRequest(webServer().httpsUrl("/hello.txt"));
    request->setRootCertBundlePath(String::fromUTF8(stranger.caFile()));
    request->setSSLVerifyPeer(false);
    EXPECT_EQ(performForBody(*request), NginxServer::helloContent());
}

TEST(TLS, RefusesWrongHostExpiredAndSelfSignedCertificates) {
    const auto& ports = webServer().ports();
    for (const std::uint16_t port : {ports.wrongHost, ports.expired, ports.selfSigned}) {
        const P<CNetRequest> request = makeRequest(NginxServer::httpsUrl(port, "/hello.txt"));
        EXPECT_EQ(performForError(*request).getCode(), CURLE_PEER_FAILED_VERIFICATION) << port;
    }
}

TEST(TLS, FailsClearlyWithAnUnreadableBundle) {
    const P<CNetRequest> request = makeRequest(webServer().httpsUrl("/hello.txt"));
    const std::string bundle = testsupport::nativeName("/nonexistent/ca.crt");
    request->setRootCertBundlePath(String::fromUTF8(bundle));
    const auto error = performForError(*request);
    EXPECT_EQ(error.getCode(), CURLE_SSL_CACERT_BADFILE);
    EXPECT_TRUE(error.getMessage().contains(String::fromUTF8(bundle))) << error.getMessage();
}

} // namespace
