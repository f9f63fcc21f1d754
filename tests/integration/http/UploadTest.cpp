#include "BigFileSource.h"
#include "WebServer.h"

#include "support/ScriptedServer.h"

#include <kel/MemoryStream.h>

using kel::P;
using kel::String;
using kel::TBuffer;
using testsupport::NginxServer;
using vantra::CNetRequest;

namespace {

class Upload : public OverHTTPAndHTTPS {};

INSTANTIATE_TEST_SUITE_P(Scheme, Upload, testing::Values("HTTP", "HTTPS"),
                         [](const auto& scheme) { return std::string(scheme.param); });

TEST_P(Upload, PutsABufferOfKnownSize) {
    const P<TBuffer<unsigned char>> body =
        new TBuffer<unsigned char>(reinterpret_cast<const unsigned char*>(NginxServer::bigContent().data()),
                                   NginxServer::bigContent().size());
    const P<CNetRequest> request = makeRequest(url("/put/known.bin"));
    request->setHTTPMethod("PUT");
    request->setSendDataBuffer(body);
    request->perform();
    EXPECT_EQ(request->getUploadedBytes(), static_cast<double>(body->getUsed()));
    EXPECT_EQ(webServer().fileContent("put/known.bin"), NginxServer::bigContent());
}

TEST_P(Upload, PutsASourceOfUnknownSize) {
    const P<CBigFileSource> source = new CBigFileSource(true);
    const P<CNetRequest> request = makeRequest(url("/put/unknown.bin"));
    request->setHTTPMethod("PUT");
    request->setSendDataSource(source);
    request->perform();
    EXPECT_EQ(webServer().fileContent("put/unknown.bin"), NginxServer::bigContent());
    request->perform(); // rewinds
    EXPECT_EQ(request->getResponseCode(), 204);
    EXPECT_EQ(webServer().fileContent("put/unknown.bin"), NginxServer::bigContent());
}

TEST_P(Upload, PutsNothing) {
    const P<CNetRequest> request = makeRequest(url("/put/empty.bin"));
    request->setHTTPMethod("PUT");
    request->setSendDataAsUTF8("");
    request->perform();
    EXPECT_EQ(webServer().fileContent("put/empty.bin"), "");
}

TEST_P(Upload, PostsTextAsUTF8) {
    const P<CNetRequest> request = makeRequest(url("/echo"));
    request->setHTTPMethod("POST");
    request->setSendDataAsUTF8("Grüße");
    webServer().clearAccessLog();
    EXPECT_TRUE(performForBody(*request).ends_with("Gr\xC3\xBC\xC3\x9F"
                                                   "e"));
    EXPECT_EQ(webServer().accessLog().back().contentLength, "7");
}

TEST_P(Upload, PostsASourceOfUnknownSize) {
    const P<CBigFileSource> source = new CBigFileSource(true);
    const P<CNetRequest> request = makeRequest(url("/echo"));
    request->setHTTPMethod("POST");
    request->setSendDataSource(source);
    EXPECT_TRUE(performForBody(*request).ends_with(NginxServer::bigContent()));
}

TEST_P(Upload, DeletesWithACustomMethod) {
    const P<CNetRequest> request = makeRequest(url("/put/victim.txt"));
    request->setHTTPMethod("PUT");
    request->setSendDataAsUTF8("x");
    request->perform();
    request->setHTTPMethod("DELETE");
    request->perform();
    EXPECT_EQ(request->getResponseCode(), 204);
    EXPECT_THROW(webServer().fileContent("put/victim.txt"), std::runtime_error);
}

TEST(UploadHTTP, ShowsTheInterimResponseOfALargeBody) {
    const P<CBigFileSource> source = new CBigFileSource(true);
    const P<CNetRequest> request = makeRequest(webServer().url("/put/expect.bin"));
    request->setHTTPMethod("PUT");
    const P<vantra::CNetHeaders> headers = new vantra::CNetHeaders();
    headers->add("Expect", "100-continue");
    request->setCustomHTTPHeaders(headers);
    request->setSendDataSource(source);
    request->perform();
    const auto lines = request->getResponseInfo().createIterator();
    ASSERT_TRUE(lines->next());
    EXPECT_EQ(lines->getEntry(), "HTTP/1.1 100 Continue\r\n");
    EXPECT_NE(request->getHTTPStatusLine(), "HTTP/1.1 100 Continue");
    EXPECT_EQ(webServer().fileContent("put/expect.bin"), NginxServer::bigContent());
}

TEST(UploadHTTP, FailsClearlyWhenASourceCannotGoBackForARedirect) {
    // A real server may redirect before it has read the body, which then need not be sent again.
    testsupport::ScriptedServer server;
    server.play(testsupport::Script().expectRequest().send(
        "HTTP/1.1 307 Temporary Redirect\r\nLocation: /again\r\nContent-Length: 0\r\n\r\n"));
    const P<CBigFileSource> source = new CBigFileSource(false);
    const P<CNetRequest> request = makeRequest(server.url());
    request->setHTTPMethod("POST");
    request->setSendDataSource(source);
    request->setSendDataSize(100);
    try {
        request->perform();
        FAIL() << "the transfer succeeded";
    } catch (const kel::CError& error) {
        EXPECT_EQ(error.getMessage(), "This source cannot go back.");
    }
    EXPECT_EQ(server.requests().size(), 1U);
}

} // namespace
