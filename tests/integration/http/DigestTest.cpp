#include "BigFileSource.h"
#include "WebServer.h"

#include "support/HttpbinServer.h"
#include "support/ScriptedServer.h"

#include <gmock/gmock.h>

using kel::P;
using kel::String;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testsupport::HttpbinServer;
using testsupport::NginxServer;
using testsupport::Script;
using testsupport::ScriptedServer;
using vantra::CNetRequest;

namespace {

/// Little enough that libcurl sends it to the end although the server has refused it.
constexpr std::size_t smallSize = 1500;

void setLogin(CNetRequest& request, unsigned long methods, const char* password = "secret") {
    request.setHTTPAuthMethods(static_cast<unsigned int>(methods));
    request.setUserName("user");
    request.setUserPassword(password);
}

void setBody(CNetRequest& request, CNetRequest::IDataSource* source, std::size_t size) {
    request.setSendDataSource(source);
    request.setSendDataSize(static_cast<kel::int64>(size));
    const P<vantra::CNetHeaders> headers = new vantra::CNetHeaders();
    headers->add("Expect", "");
    request.setCustomHTTPHeaders(headers);
}

/// A server that asks for digest authentication, behind one that hands no request on before it has the whole
/// body. It does so for GET alone: the body goes with a GET.
struct DigestServer {
    HttpbinServer httpbin;
    NginxServer front{
        {.authority = {}, .reverseProxies = {{httpbin.port(), false, true}}, .moreLocations = {}}};
};

class Digest : public testing::TestWithParam<const char*> {
protected:
    static P<CNetRequest> makeRequestWithBody(CNetRequest::IDataSource* source, std::size_t size) {
        static const DigestServer server;
        P<CNetRequest> request =
            makeRequest(NginxServer::httpsUrl(server.front.ports().reverseProxies.at(0),
                                              "/digest-auth/auth/user/secret/" + std::string(GetParam())));
        request->setRootCertBundlePath(String::fromUTF8(server.front.caFile()));
        request->setHTTPMethod("PUT");
        request->setOptionString(CURLOPT_CUSTOMREQUEST, "GET");
        setBody(*request, source, size);
        return request;
    }
};

INSTANTIATE_TEST_SUITE_P(Algorithm, Digest, testing::Values("MD5", "SHA-256"), [](const auto& algorithm) {
    return algorithm.param == std::string_view("MD5") ? "MD5" : "SHA256";
});

TEST_P(Digest, SendsTheBodyWithTheLogin) {
    const std::size_t size = NginxServer::bigContent().size();
    const P<CBigFileSource> source = new CBigFileSource(true);
    const P<CNetRequest> request = makeRequestWithBody(source, size);
    setLogin(*request, CURLAUTH_DIGEST);
    EXPECT_THAT(performForBody(*request), HasSubstr("\"authenticated\":true"));
    EXPECT_EQ(request->getUploadedBytes(), static_cast<double>(size));
    EXPECT_EQ(source->getSeeks(), 0) << "the challenge is asked for without the body";
    EXPECT_THAT(performForBody(*request), HasSubstr("\"authenticated\":true"));
    EXPECT_EQ(source->getSeeks(), 1);
}

TEST_P(Digest, RewindsTheSourceThatWasSentWithoutLogin) {
    const P<CBigFileSource> source = new CBigFileSource(true, smallSize);
    const P<CNetRequest> request = makeRequestWithBody(source, smallSize);
    setLogin(*request, CURLAUTH_ANY);
    EXPECT_THAT(performForBody(*request), HasSubstr("\"authenticated\":true"));
    EXPECT_EQ(source->getSeeks(), 1);
    EXPECT_EQ(source->getPosition(), static_cast<kel::int64>(smallSize));
}

TEST_P(Digest, FailsClearlyWhenTheSourceCannotGoBack) {
    const P<CBigFileSource> source = new CBigFileSource(false, smallSize);
    const P<CNetRequest> request = makeRequestWithBody(source, smallSize);
    setLogin(*request, CURLAUTH_ANY);
    try {
        request->perform();
        FAIL() << "the transfer succeeded";
    } catch (const kel::CError& error) {
        EXPECT_EQ(error.getMessage(), "This source cannot go back.");
    }
}

TEST_P(Digest, NeedsNoWayBackWhenItIsTheOnlyMethod) {
    const P<CBigFileSource> source = new CBigFileSource(false);
    const P<CNetRequest> request = makeRequestWithBody(source, NginxServer::bigContent().size());
    setLogin(*request, CURLAUTH_DIGEST);
    EXPECT_THAT(performForBody(*request), HasSubstr("\"authenticated\":true"));
}

TEST_P(Digest, FailsWithAWrongPassword) {
    const P<CBigFileSource> source = new CBigFileSource(true, smallSize);
    const P<CNetRequest> request = makeRequestWithBody(source, smallSize);
    setLogin(*request, CURLAUTH_DIGEST, "wrong");
    const vantra::CCURLError error = performForError(*request);
    EXPECT_EQ(error.getCode(), CURLE_HTTP_RETURNED_ERROR);
    EXPECT_EQ(error.getResponseCode(), 401);
}

/// What the real server does not tell: that the body came whole.
TEST(DigestWire, SendsTheWholeBodyOfAPostAgain) {
    const std::string challenge = "HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: Digest realm=\"r\", "
                                  "nonce=\"n\", qop=\"auth\", algorithm=MD5\r\nContent-Length: 0\r\n\r\n";
    for (const char* const method : {"POST", "PUT"}) {
        ScriptedServer server;
        server.play(
            Script().expectRequest().send(challenge).expectRequest().send(testsupport::okResponse("in")));
        P<CNetRequest> request = makeRequest(server.url());
        const P<CBigFileSource> source = new CBigFileSource(true, smallSize);
        request->setHTTPMethod(method);
        setBody(*request, source, smallSize);
        setLogin(*request, CURLAUTH_ANY);
        EXPECT_EQ(performForBody(*request), "in");
        std::vector<std::string> bodies;
        for (const auto& received : server.requests()) bodies.push_back(received.body);
        const std::string body = NginxServer::bigContent().substr(0, smallSize);
        EXPECT_THAT(bodies, ElementsAre(body, body));
        EXPECT_THAT(server.requests().back().header("Authorization").value_or(""),
                    testing::StartsWith("Digest username=\"user\", realm=\"r\", nonce=\"n\", uri=\"/\""));
        request = nullptr; // closes the connection
        EXPECT_THAT(server.finish(), IsEmpty());
    }
}

} // namespace
