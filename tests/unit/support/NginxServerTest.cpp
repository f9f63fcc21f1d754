#include "support/NginxServer.h"

#include "support/Ports.h"
#include "support/ScriptedServer.h"
#include "unit/support/Curl.h"
#include "unit/support/Processes.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

using namespace testsupport;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// One server for all tests; each begins with an empty log.
class NginxServerTest : public testing::Test {
protected:
    static void SetUpTestSuite() { server_ = std::make_unique<NginxServer>(); }
    static void TearDownTestSuite() { server_.reset(); }

    void SetUp() override { server_->clearAccessLog(); }

    static NginxServer& server() { return *server_; }

    /// The status and, after a blank, the body.
    static std::string answer(const std::string& path) {
        return curl({"--write-out", "%{stderr}%{http_code}", server().url(path)}).standardError + " " +
               curl({server().url(path)}).standardOutput;
    }

    static std::string redirect(const std::string& path) {
        return curlInformation("%{http_code} %{redirect_url}", {server().url(path)});
    }

    /// curl's exit status for a GET with the server's authority trusted.
    static int tlsStatus(const std::string& url) {
        return curl({"--cacert", server().caFile(), url}).exitStatus;
    }

private:
    static std::unique_ptr<NginxServer> server_;
};

std::unique_ptr<NginxServer> NginxServerTest::server_;

/// The header lines of a response that curl has printed with --include, without the status line.
std::size_t headerCount(const std::string& response) {
    const std::string head = response.substr(0, response.find("\r\n\r\n"));
    return static_cast<std::size_t>(std::ranges::count(head, '\n'));
}

} // namespace

TEST_F(NginxServerTest, ServesFiles) {
    EXPECT_EQ(curl({server().url("/hello.txt")}).standardOutput, NginxServer::helloContent());
    EXPECT_EQ(curl({server().url("/page.html")}).standardOutput, NginxServer::pageContent());
    EXPECT_EQ(curl({server().url("/empty.txt")}).standardOutput, "");
    EXPECT_TRUE(curl({server().url("/big.bin")}).standardOutput == NginxServer::bigContent());
    EXPECT_EQ(NginxServer::bigContent().size(), 1024U * 1024U);
}

TEST_F(NginxServerTest, ServesRangesAndNoRanges) {
    const CommandResult part = curl({"--range", "1000-1999", server().url("/big.bin")});
    EXPECT_TRUE(part.standardOutput == NginxServer::bigContent().substr(1000, 1000));
    EXPECT_EQ(curl({"--range", "0-4", server().url("/noranges/hello.txt")}).standardOutput,
              NginxServer::helloContent());
    EXPECT_EQ(curlInformation("%{http_code}", {"--range", "2000000-", server().url("/big.bin")}), "416");
}

TEST_F(NginxServerTest, CompressesTextsIfAsked) {
    EXPECT_EQ(curl({"--compressed", server().url("/hello.txt")}).standardOutput, NginxServer::helloContent());
    EXPECT_EQ(curlInformation("%header{content-encoding}", {"--compressed", server().url("/hello.txt")}),
              "gzip");
    EXPECT_EQ(curlInformation("%header{content-encoding}", {server().url("/hello.txt")}), "");
}

TEST_F(NginxServerTest, RedirectsInEveryWay) {
    for (const std::string code : {"301", "302", "303", "307", "308"}) {
        EXPECT_EQ(redirect("/r" + code), code + " " + server().url("/hello.txt"));
        EXPECT_EQ(redirect("/r" + code + "/put/a%2Fb?c=d"), code + " " + server().url("/put/a/b?c=d"));
    }
    EXPECT_EQ(redirect("/rabs"), "302 " + server().url("/hello.txt"));
    EXPECT_EQ(curlInformation("%header{location}", {server().url("/rrel")}), "/hello.txt");
    const std::string port = std::to_string(server().ports().http);
    EXPECT_EQ(redirect("/rcross"), "302 http://localhost:" + port + "/echo");
    EXPECT_EQ(redirect("/rhttps"), "302 " + server().httpsUrl("/hello.txt"));
    EXPECT_EQ(redirect("/loop"), "302 " + server().url("/loop"));
}

TEST_F(NginxServerTest, RedirectsInChains) {
    for (const std::string length : {"1", "3", "60"}) {
        EXPECT_EQ(curlInformation("%{http_code} %{num_redirects}",
                                  {"--location", "--max-redirs", "100", server().url("/chain/" + length)}),
                  "200 " + length);
    }
}

TEST_F(NginxServerTest, AnswersWithManyStatuses) {
    EXPECT_EQ(answer("/s204"), "204 ");
    EXPECT_EQ(answer("/s400"), "400 bad\n");
    EXPECT_EQ(answer("/s403"), "403 forbidden\n");
    EXPECT_EQ(answer("/s404"), "404 missing body\n");
    EXPECT_EQ(answer("/s404html"), "404 <html><body><h1>Missing</h1></body></html>\n");
    EXPECT_EQ(answer("/s500"), "500 boom\n");
    EXPECT_EQ(answer("/s502"), "502 gateway\n");
    EXPECT_EQ(answer("/s503"), "503 busy\n");
    EXPECT_EQ(curlInformation("%{http_code} %header{retry-after}", {server().url("/s429")}), "429 1");
    EXPECT_EQ(curlInformation("%{http_code} %header{retry-after}", {server().url("/s503")}), "503 1");
    EXPECT_EQ(curlInformation("%{http_code} %{content_type}", {server().url("/s404")}), "404 text/plain");
    EXPECT_EQ(curlInformation("%{http_code} %{content_type}", {server().url("/s404html")}), "404 text/html");
    EXPECT_EQ(curlInformation("%{http_code} %{content_type}", {server().url("/s410")}), "410 text/html");
}

TEST_F(NginxServerTest, AsksForBasicAuthentication) {
    const std::string url = server().url("/basic/hello.txt");
    EXPECT_EQ(curlInformation("%{http_code} %header{www-authenticate}", {url}),
              "401 Basic realm=\"test realm\"");
    EXPECT_EQ(curl({"--user", "user:secret", url}).standardOutput, NginxServer::helloContent());
    EXPECT_EQ(curlInformation("%{http_code}", {"--user", "user:wrong", url}), "401");
}

TEST_F(NginxServerTest, TakesUploads) {
    const std::string file = server().documentRoot() + "/big.bin";
    const std::string url = server().url("/put/new/folder/file.bin");
    EXPECT_EQ(curlInformation("%{http_code}", {"--upload-file", file, url}), "201");
    EXPECT_EQ(curlInformation("%{http_code}", {"--upload-file", file, url}), "204");
    EXPECT_TRUE(server().fileContent("put/new/folder/file.bin") == NginxServer::bigContent());
    EXPECT_EQ(curlInformation("%{http_code}", {"--request", "DELETE", url}), "204");
    EXPECT_THROW(server().fileContent("put/new/folder/file.bin"), std::runtime_error);
    const std::string guarded = server().url("/putauth/file.bin");
    EXPECT_EQ(curlInformation("%{http_code}", {"--upload-file", file, guarded}), "401");
    EXPECT_EQ(curlInformation("%{http_code}", {"--user", "user:secret", "--upload-file", file, guarded}),
              "201");
}

TEST_F(NginxServerTest, EchoesRequests) {
    const std::string host = "127.0.0.1:" + std::to_string(server().ports().http);
    EXPECT_EQ(
        curl({"--user-agent", "me", "--header", "X-One: 1", "--data", "a body", server().url("/echo?q")})
            .standardOutput,
        "POST /echo?q HTTP/1.1\r\nHost: " + host +
            "\r\nUser-Agent: me\r\nAccept: */*\r\nX-One: 1\r\nContent-Length: 6\r\n"
            "Content-Type: application/x-www-form-urlencoded\r\n\r\na body");
    const CommandResult overHttp2 =
        curl({"--cacert", server().caFile(), "--http2", "--data", "a body", server().httpsUrl("/echo")});
    EXPECT_EQ(overHttp2.standardOutput, "a body");
}

TEST_F(NginxServerTest, AnswersLateAndSlowly) {
    EXPECT_EQ(curl({server().url("/delay/0.1")}).standardOutput, "late\n");
    EXPECT_GE(std::stod(curlInformation("%{time_total}", {server().url("/delay/0.1")})), 0.1);
    EXPECT_EQ(curl({"--max-time", "0.5", server().url("/slow")}).exitStatus, 28);
}

TEST_F(NginxServerTest, AnswersTheBenchmarkWithTwelveHeaders) {
    const CommandResult http1 = curl({"--include", server().url("/bench")});
    EXPECT_EQ(headerCount(http1.standardOutput), 12U);
    EXPECT_EQ(http1.standardOutput.substr(http1.standardOutput.find("\r\n\r\n") + 4), nginxBenchBody());
    EXPECT_EQ(nginxBenchBody().size(), 256U);
    const CommandResult http2 =
        curl({"--include", "--http2", "--cacert", server().caFile(), server().httpsUrl("/bench")});
    EXPECT_EQ(headerCount(http2.standardOutput), 12U);
    EXPECT_THAT(server().accessLog(), IsEmpty());
}

TEST_F(NginxServerTest, NegotiatesHttp2OnOneTlsPortOnly) {
    const auto version = [&](std::uint16_t port) {
        return curlInformation("%{http_version} %{http_code}", {"--http2", "--cacert", server().caFile(),
                                                                NginxServer::httpsUrl(port, "/hello.txt")});
    };
    EXPECT_EQ(version(server().ports().https), "2 200");
    EXPECT_EQ(version(server().ports().https1), "1.1 200");
}

TEST_F(NginxServerTest, ShowsBadCertificates) {
    const NginxPorts& ports = server().ports();
    EXPECT_EQ(tlsStatus(server().httpsUrl("/hello.txt")), 0);
    EXPECT_EQ(tlsStatus("https://127.0.0.1:" + std::to_string(ports.https1)), 0);
    for (const std::uint16_t port : {ports.wrongHost, ports.expired, ports.selfSigned}) {
        EXPECT_EQ(tlsStatus(NginxServer::httpsUrl(port, "/hello.txt")), 60);
        EXPECT_EQ(curl({"--insecure", NginxServer::httpsUrl(port, "/hello.txt")}).standardOutput,
                  NginxServer::helloContent());
    }
    const CertificateAuthority other;
    EXPECT_EQ(curl({"--cacert", other.caFile(), server().httpsUrl()}).exitStatus, 60);
}

TEST_F(NginxServerTest, WantsAClientCertificateOnOnePort) {
    const std::string url = NginxServer::httpsUrl(server().ports().clientCertificate, "/hello.txt");
    EXPECT_EQ(curlInformation("%{http_code}", {"--cacert", server().caFile(), url}), "400");
    CertificateOptions options;
    options.forClient = true;
    const Certificate client = server().authority().issue("somebody", {"DNS:somebody"}, options);
    EXPECT_EQ(curl({"--cacert", server().caFile(), "--cert", client.certFile, "--key", client.keyFile, url})
                  .standardOutput,
              NginxServer::helloContent());
    ASSERT_EQ(server().accessLog().size(), 2U);
    EXPECT_EQ(server().accessLog()[1].clientCertificate, "CN=somebody");
}

TEST_F(NginxServerTest, LogsWhatTheClientSent) {
    curl({"--user", "user:secret", "--range", "0-4", "--user-agent", "\"quoted\" \\ agent", "--referer",
          "/from", "--cookie", "a=b", server().url("/basic/hello.txt?q=%2F")});
    curl({"--cacert", server().caFile(), "--http2", "--tls-max", "1.2", "--data", "12345",
          server().httpsUrl("/echo")});
    const std::vector<AccessLogEntry> log = server().accessLog();
    ASSERT_EQ(log.size(), 2U);
    EXPECT_EQ(log[0].method, "GET");
    EXPECT_EQ(log[0].uri, "/basic/hello.txt?q=%2F");
    EXPECT_EQ(log[0].protocol, "HTTP/1.1");
    EXPECT_EQ(log[0].status, 206);
    EXPECT_EQ(log[0].host, "127.0.0.1:" + std::to_string(server().ports().http));
    EXPECT_EQ(log[0].authorization, "Basic dXNlcjpzZWNyZXQ=");
    EXPECT_EQ(log[0].userAgent, "\"quoted\" \\ agent");
    EXPECT_EQ(log[0].accept, "*/*");
    EXPECT_EQ(log[0].range, "bytes=0-4");
    EXPECT_EQ(log[0].referer, "/from");
    EXPECT_EQ(log[0].cookie, "a=b");
    EXPECT_EQ(log[0].contentLength, "");
    EXPECT_EQ(log[0].tlsProtocol, "");
    EXPECT_EQ(log[0].requestOfConnection, 1U);
    EXPECT_EQ(log[1].method, "POST");
    EXPECT_EQ(log[1].protocol, "HTTP/2.0");
    EXPECT_EQ(log[1].contentType, "application/x-www-form-urlencoded");
    EXPECT_EQ(log[1].contentLength, "5");
    EXPECT_EQ(log[1].tlsProtocol, "TLSv1.2");
}

// nginx ends a delayed request when its time is up, whoever still waits for it; an entry in the log would
// then turn up in the middle of another test.
TEST_F(NginxServerTest, DoesNotLogARequestLongAfterItsClientHasGone) {
    EXPECT_EQ(curl({"--max-time", "0.1", server().url("/delay/0.4")}).exitStatus, 28);
    EXPECT_EQ(curl({server().url("/delay/0.6")}).standardOutput, "late\n");
    EXPECT_THAT(server().accessLog(), IsEmpty());
}

TEST_F(NginxServerTest, TellsConnectionsApart) {
    curl({server().url("/hello.txt"), server().url("/s204")});
    curl({server().url("/hello.txt")});
    const std::vector<AccessLogEntry> log = server().accessLog();
    ASSERT_EQ(log.size(), 3U);
    EXPECT_EQ(log[0].connection, log[1].connection);
    EXPECT_NE(log[0].connection, log[2].connection);
    EXPECT_EQ(log[0].requestOfConnection, 1U);
    EXPECT_EQ(log[1].requestOfConnection, 2U);
    EXPECT_EQ(log[2].requestOfConnection, 1U);
}

TEST_F(NginxServerTest, KeepsAConnectionForManyRequests) {
    EXPECT_EQ(
        curlInformation("%{num_connects} ", {server().url("/chain/60"), "--location", "--max-redirs", "100"}),
        "1 ");
    EXPECT_EQ(server().accessLog().back().requestOfConnection, 61U);
}

TEST(NginxServer, StopsCleanly) {
    NginxServer server;
    const pid_t process = server.process().pid();
    EXPECT_EQ(server.process().stop(), 0);
    EXPECT_FALSE(isProcessAlive(process));
    EXPECT_FALSE(acceptsConnections(server.ports().http));
}

TEST(NginxServer, PutsTlsBeforeAnotherServer) {
    ScriptedServer upstream([](ScriptedConnection& connection) {
        while (const auto request = connection.readRequest()) connection.send(okResponse(request->startLine));
    });
    NginxOptions options;
    options.reverseProxies = {{upstream.port(), true}, {upstream.port(), false}};
    NginxServer server(options);
    for (std::size_t index = 0; index < 2; ++index) {
        const std::string url =
            NginxServer::httpsUrl(server.ports().reverseProxies.at(index), "/a%2Fb/../c?d=%20");
        const std::vector<std::string> arguments{"--http2", "--path-as-is", "--cacert", server.caFile(), url};
        EXPECT_EQ(curl(arguments).standardOutput, "GET /a%2Fb/../c?d=%20 HTTP/1.1");
        EXPECT_EQ(curlInformation("%{http_version}", arguments), index == 0 ? "2" : "1.1");
        EXPECT_EQ(server.accessLog().back().host,
                  "localhost:" + std::to_string(server.ports().reverseProxies[index]));
    }
}

TEST(NginxServer, HandsARequestOnWithItsWholeBodyIfToldSo) {
    ScriptedServer upstream([](ScriptedConnection& connection) {
        while (const auto request = connection.readRequest())
            connection.send(okResponse(request->header("Content-Length").value_or("chunked")));
    });
    NginxOptions options;
    options.reverseProxies = {{upstream.port(), false, false}, {upstream.port(), false, true}};
    NginxServer server(options);
    const TempDir folder;
    const std::string file = folder.writeFile("body", NginxServer::bigContent());
    const auto lengthSeen = [&](std::size_t index) {
        return curl({"--cacert", server.caFile(), "--header", "Transfer-Encoding: chunked", "--data-binary",
                     "@" + file, NginxServer::httpsUrl(server.ports().reverseProxies.at(index))})
            .standardOutput;
    };
    EXPECT_EQ(lengthSeen(0), "chunked");
    EXPECT_EQ(lengthSeen(1), std::to_string(NginxServer::bigContent().size()));
}

TEST(NginxServer, TakesAnAuthorityAndMoreLocations) {
    NginxOptions options;
    options.authority = std::make_shared<CertificateAuthority>("given CA");
    options.moreLocations = "location = /more { return 200 \"more\"; }";
    NginxServer server(options);
    EXPECT_EQ(server.caFile(), options.authority->caFile());
    EXPECT_EQ(curl({"--cacert", options.authority->caFile(), server.httpsUrl("/more")}).standardOutput,
              "more");
}

TEST(NginxServer, ReportsABadConfiguration) {
    NginxOptions options;
    options.moreLocations = "no_such_directive on;";
    try {
        NginxServer server(options);
        FAIL() << "nginx took a bad configuration";
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr("unknown directive \"no_such_directive\""));
    }
}
