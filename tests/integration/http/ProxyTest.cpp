#include "WebServer.h"

#include "support/Ports.h"
#include "support/TinyproxyServer.h"

#include <gmock/gmock.h>

using kel::P;
using kel::String;
using testing::HasSubstr;
using testing::Not;
using testsupport::NginxServer;
using testsupport::TinyproxyOptions;
using testsupport::TinyproxyServer;
using vantra::CCURLError;
using vantra::CNetRequest;
using vantra::CProxySettings;

namespace {

/// A web server behind a proxy, and settings that name the proxy for it.
class Proxy : public testing::Test {
protected:
    explicit Proxy(const TinyproxyOptions& options = {}) : proxy_(options) {
        settings_->addProxiesFromString(String::fromUTF8(address()));
    }

    std::string address() const { return "127.0.0.1:" + std::to_string(proxy_.port()); }

    /// A request by way of what the settings give for its address.
    P<CNetRequest> makeRoutedRequest(const std::string& url) const {
        P<CNetRequest> request = makeRequest(url);
        request->setProxy(settings_->getProxyForURL(request->getURL()));
        return request;
    }

    /// Whether the proxy has seen a request. The proxy writes its log in the order of the requests: when the
    /// last one is there, all are.
    bool hasSeen(const std::string& requestLine) {
        const std::string last = webServer().url("/hello.txt?seen=" + std::to_string(++marks_));
        const P<CNetRequest> request = makeRequest(last);
        request->setProxy(String::fromUTF8(withCredentials()));
        request->perform();
        EXPECT_TRUE(proxy_.waitForLog("GET " + last + " HTTP/1.1"));
        return proxy_.log().find(requestLine) != std::string::npos;
    }

    virtual std::string withCredentials() const { return address(); }

    static std::string connectLine() {
        return "CONNECT localhost:" + std::to_string(webServer().ports().https) + " HTTP/1.1";
    }

    TinyproxyServer proxy_;
    const P<CProxySettings> settings_ = new CProxySettings();

private:
    int marks_ = 0;
};

TEST_F(Proxy, ForwardsHTTP) {
    const std::string url = webServer().url("/big.bin");
    const P<CNetRequest> request = makeRoutedRequest(url);
    EXPECT_TRUE(performForBody(*request) == NginxServer::bigContent());
    EXPECT_THAT(request->getResponseHeaderMap().lookup("via").toUTF8(), HasSubstr("testproxy"));
    EXPECT_TRUE(hasSeen("GET " + url + " HTTP/1.1"));
}

TEST_F(Proxy, TunnelsHTTPS) {
    const P<CNetRequest> request = makeRoutedRequest(webServer().httpsUrl("/big.bin"));
    EXPECT_TRUE(performForBody(*request) == NginxServer::bigContent());
    EXPECT_FALSE(request->getResponseHeaderMap().contains("via"));
    EXPECT_TRUE(hasSeen(connectLine()));
    EXPECT_FALSE(hasSeen("big.bin"));
}

TEST_F(Proxy, PassesABodyOn) {
    for (const std::string& url :
         {webServer().url("/put/proxied.bin"), webServer().httpsUrl("/put/tunnelled.bin")}) {
        const P<CNetRequest> request = makeRoutedRequest(url);
        request->setHTTPMethod("PUT");
        request->setSendDataAsUTF8("by way of a proxy");
        request->perform();
    }
    EXPECT_EQ(webServer().fileContent("put/proxied.bin"), "by way of a proxy");
    EXPECT_EQ(webServer().fileContent("put/tunnelled.bin"), "by way of a proxy");
}

TEST_F(Proxy, IsNotAskedForADirectConnectHost) {
    settings_->addDirectConnectHostsFromString("elsewhere.example;LOCALHOST");
    const std::string byName =
        "http://localhost:" + std::to_string(webServer().ports().http) + "/hello.txt?direct";
    for (const std::string& url : {byName, webServer().httpsUrl("/hello.txt?direct")}) {
        const P<CNetRequest> request = makeRoutedRequest(url);
        EXPECT_EQ(performForBody(*request), NginxServer::helloContent());
        EXPECT_FALSE(request->getResponseHeaderMap().contains("via"));
    }
    EXPECT_FALSE(hasSeen("?direct"));
    EXPECT_FALSE(hasSeen(connectLine()));
    // The same server by another name is no direct-connect host.
    const std::string byAddress = webServer().url("/hello.txt?proxied");
    EXPECT_EQ(performForBody(*makeRoutedRequest(byAddress)), NginxServer::helloContent());
    EXPECT_TRUE(hasSeen("GET " + byAddress + " HTTP/1.1"));
}

TEST_F(Proxy, IsAskedForItsSchemesOnly) {
    settings_->setProxyForURLScheme("https", "");
    EXPECT_EQ(performForBody(*makeRoutedRequest(webServer().httpsUrl("/hello.txt"))),
              NginxServer::helloContent());
    EXPECT_FALSE(hasSeen(connectLine()));
    EXPECT_EQ(performForBody(*makeRoutedRequest(webServer().url("/hello.txt?plain"))),
              NginxServer::helloContent());
    EXPECT_TRUE(hasSeen("/hello.txt?plain"));
}

TEST_F(Proxy, ComesFromTheUsersSettings) {
    const P<CProxySettings> userSettings = CProxySettings::getUserSettings();
    userSettings->clear();
    userSettings->addProxiesFromString(String::fromUTF8("http=" + address() + ";https=" + address()));
    userSettings->addDirectConnectHost("localhost");
    const std::string proxied = webServer().url("/hello.txt?user");
    const P<CNetRequest> request = makeRequest(proxied);
    request->setProxyForCurrentURLFromUserSettings();
    EXPECT_EQ(performForBody(*request), NginxServer::helloContent());
    EXPECT_TRUE(hasSeen("GET " + proxied + " HTTP/1.1"));

    // Decided for the URL at hand: the next one has to be asked for.
    request->setURL(String::fromUTF8(webServer().httpsUrl("/hello.txt")));
    request->setProxyForCurrentURLFromUserSettings();
    EXPECT_EQ(performForBody(*request), NginxServer::helloContent());
    EXPECT_FALSE(hasSeen(connectLine()));
    userSettings->removeDirectConnectHost("localhost");
    request->setProxyForCurrentURLFromUserSettings();
    EXPECT_EQ(performForBody(*request), NginxServer::helloContent());
    EXPECT_TRUE(hasSeen(connectLine()));
    userSettings->clear();
}

TEST_F(Proxy, PassesTheStatusOfTheServerOn) {
    const CCURLError error = performForError(*makeRoutedRequest(webServer().url("/s404")));
    EXPECT_EQ(error.getResponseCode(), 404);
    EXPECT_EQ(error.getServerMessage(), "missing body\n");
}

TEST_F(Proxy, ThatRefusesConnectionsFails) {
    const testsupport::RefusedPort refused;
    settings_->addProxiesFromString(String::fromUTF8("127.0.0.1:" + std::to_string(refused.port())));
    for (const std::string& url : {webServer().url("/hello.txt"), webServer().httpsUrl("/hello.txt")}) {
        const CCURLError error = performForError(*makeRoutedRequest(url));
        EXPECT_EQ(error.getCode(), CURLE_COULDNT_CONNECT);
        EXPECT_EQ(error.getResponseCode(), 0);
    }
}

TinyproxyOptions allowOnlyPort(std::uint16_t port) {
    TinyproxyOptions options;
    options.connectPorts = {port};
    return options;
}

class ProxyWithClosedPorts : public Proxy {
protected:
    ProxyWithClosedPorts() : Proxy(allowOnlyPort(webServer().ports().https1)) {}
};

TEST_F(ProxyWithClosedPorts, RefusesATunnel) {
    const P<CNetRequest> refused = makeRoutedRequest(webServer().httpsUrl("/hello.txt"));
    const CCURLError error = performForError(*refused);
    EXPECT_EQ(error.getCode(), CURLE_RECV_ERROR);
    EXPECT_THAT(error.getMessage().toUTF8(), HasSubstr("CONNECT tunnel failed, response 403"));
    EXPECT_EQ(
        performForBody(*makeRoutedRequest(NginxServer::httpsUrl(webServer().ports().https1, "/hello.txt"))),
        NginxServer::helloContent());
}

TinyproxyOptions askForLogin() {
    TinyproxyOptions options;
    options.userName = "proxyuser";
    options.password = "proxysecret";
    return options;
}

class ProxyWithLogin : public Proxy {
protected:
    ProxyWithLogin() : Proxy(askForLogin()) {}

    std::string withCredentials() const override { return "http://proxyuser:proxysecret@" + address(); }
};

TEST_F(ProxyWithLogin, TakesItFromTheProxysAddress) {
    settings_->addProxiesFromString(
        String::fromUTF8("http=" + withCredentials() + ";https=" + withCredentials()));
    const std::string url = webServer().url("/hello.txt?login");
    EXPECT_EQ(performForBody(*makeRoutedRequest(url)), NginxServer::helloContent());
    EXPECT_EQ(performForBody(*makeRoutedRequest(webServer().httpsUrl("/hello.txt"))),
              NginxServer::helloContent());
    EXPECT_TRUE(hasSeen("GET " + url + " HTTP/1.1"));
    EXPECT_TRUE(hasSeen(connectLine()));
}

TEST_F(ProxyWithLogin, TakesItFromOptions) {
    for (const std::string& url : {webServer().url("/hello.txt"), webServer().httpsUrl("/hello.txt")}) {
        const P<CNetRequest> request = makeRoutedRequest(url);
        request->setOptionString(CURLOPT_PROXYUSERNAME, "proxyuser");
        request->setOptionString(CURLOPT_PROXYPASSWORD, "proxysecret");
        EXPECT_EQ(performForBody(*request), NginxServer::helloContent());
    }
}

TEST_F(ProxyWithLogin, KeepsItFromTheServer) {
    settings_->addProxiesFromString(
        String::fromUTF8("http=" + withCredentials() + ";https=" + withCredentials()));
    const std::string body = performForBody(*makeRoutedRequest(webServer().url("/echo")));
    EXPECT_THAT(body, HasSubstr("GET /echo HTTP/1.1\r\n"));
    EXPECT_THAT(body, Not(HasSubstr("uthorization")));
}

TEST_F(ProxyWithLogin, FailsWithoutIt) {
    const CCURLError plain = performForError(*makeRoutedRequest(webServer().url("/hello.txt")));
    EXPECT_EQ(plain.getCode(), CURLE_HTTP_RETURNED_ERROR);
    EXPECT_EQ(plain.getResponseCode(), 407);
    const CCURLError tunnelled = performForError(*makeRoutedRequest(webServer().httpsUrl("/hello.txt")));
    EXPECT_EQ(tunnelled.getCode(), CURLE_RECV_ERROR);
    EXPECT_THAT(tunnelled.getMessage().toUTF8(), HasSubstr("CONNECT tunnel failed, response 407"));
}

TEST_F(ProxyWithLogin, FailsWithAWrongOne) {
    const P<CNetRequest> request = makeRoutedRequest(webServer().url("/hello.txt"));
    request->setOptionString(CURLOPT_PROXYUSERPWD, "proxyuser:wrong");
    webServer().clearAccessLog();
    EXPECT_EQ(performForError(*request).getResponseCode(), 401);
    EXPECT_TRUE(webServer().accessLog().empty());
}

} // namespace
