#include "support/TinyproxyServer.h"

#include "support/NginxServer.h"
#include "unit/support/Curl.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

using namespace testsupport;

namespace {

/// The server behind the proxies.
class TinyproxyServerTest : public testing::Test {
protected:
    static void SetUpTestSuite() { server_ = std::make_unique<NginxServer>(); }
    static void TearDownTestSuite() { server_.reset(); }
    static NginxServer& server() { return *server_; }

private:
    static std::unique_ptr<NginxServer> server_;
};

std::unique_ptr<NginxServer> TinyproxyServerTest::server_;

} // namespace

TEST_F(TinyproxyServerTest, ForwardsRequests) {
    const TinyproxyServer proxy;
    EXPECT_EQ(curl({"--proxy", proxy.url(), server().url("/hello.txt")}).standardOutput,
              NginxServer::helloContent());
    EXPECT_TRUE(proxy.waitForLog("GET " + server().url("/hello.txt") + " HTTP/1.1"));
}

TEST_F(TinyproxyServerTest, TunnelsToAllowedPortsOnly) {
    TinyproxyOptions options;
    options.connectPorts = {server().ports().https};
    const TinyproxyServer proxy(options);
    const auto connectStatus = [&](std::uint16_t port) {
        return curlInformation("%{http_connect} %{http_code}",
                               {"--proxy", proxy.url(), "--cacert", server().caFile(),
                                NginxServer::httpsUrl(port, "/hello.txt")});
    };
    EXPECT_EQ(connectStatus(server().ports().https), "200 200");
    EXPECT_EQ(connectStatus(server().ports().https1), "403 000");
    EXPECT_TRUE(
        proxy.waitForLog("CONNECT localhost:" + std::to_string(server().ports().https) + " HTTP/1.1"));
}

TEST_F(TinyproxyServerTest, TunnelsToEveryPortByDefault) {
    const TinyproxyServer proxy;
    EXPECT_EQ(curl({"--proxy", proxy.url(), "--proxytunnel", server().url("/hello.txt")}).standardOutput,
              NginxServer::helloContent());
}

TEST_F(TinyproxyServerTest, AsksForAuthentication) {
    TinyproxyOptions options;
    options.userName = "proxyuser";
    options.password = "proxysecret";
    const TinyproxyServer proxy(options);
    const std::string url = server().url("/hello.txt");
    const auto status = [&](const std::string& credentials) {
        return curlInformation("%{http_code}", {"--proxy", proxy.url(), "--proxy-user", credentials, url});
    };
    EXPECT_EQ(curlInformation("%{http_code}", {"--proxy", proxy.url(), url}), "407");
    EXPECT_EQ(status("proxyuser:wrong"), "401");
    EXPECT_EQ(status("proxyuser:proxysecret"), "200");
}

TEST_F(TinyproxyServerTest, ReportsWhatIsMissingInTheLog) {
    const TinyproxyServer proxy;
    EXPECT_FALSE(proxy.waitForLog("never written", std::chrono::milliseconds(20)));
}
