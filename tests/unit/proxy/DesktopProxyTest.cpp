#include "proxy/DesktopProxy.h"

#include "Tables.h"

#include <gtest/gtest.h>

namespace {

using kel::String;
using proxytest::Hosts;
using proxytest::hostsOf;
using proxytest::Proxies;
using proxytest::proxiesOf;
using vantra::CDesktopProxy;
using vantra::CSystemProxy;
using vantra::toSystemProxy;

CDesktopProxy manual() {
    CDesktopProxy desktop;
    desktop.mode = "manual";
    return desktop;
}

String proxyListOf(const CDesktopProxy& desktop) { return toSystemProxy(desktop).proxyList; }

TEST(DesktopProxy, IsToldSchemeByScheme) {
    CDesktopProxy desktop = manual();
    desktop.http = {"a", 80};
    desktop.https = {"b", 443};
    desktop.ftp = {"c", 21};
    desktop.ignoreHosts = {"localhost", "127.0.0.0/8", "::1"};
    const CSystemProxy system = toSystemProxy(desktop);
    EXPECT_EQ(system.proxyList, "http=a:80;https=b:443;ftp=c:21");
    EXPECT_EQ(system.bypassList, "localhost;127.0.0.0/8;::1");
}

TEST(DesktopProxy, CountsInManualModeOnly) {
    CDesktopProxy desktop = manual();
    desktop.http = {"a", 80};
    desktop.ignoreHosts = {"localhost"};
    for (const char* const mode : {"none", "auto", "", "MANUAL"}) {
        desktop.mode = mode;
        const CSystemProxy system = toSystemProxy(desktop);
        EXPECT_EQ(system.proxyList, "") << mode;
        EXPECT_EQ(system.bypassList, "") << mode;
    }
}

TEST(DesktopProxy, UsesTheHTTPProxyForHTTPSWithoutOne) {
    CDesktopProxy desktop = manual();
    desktop.http = {"a", 80};
    EXPECT_EQ(proxyListOf(desktop), "http=a:80;https=a:80");
    desktop.http = {};
    desktop.https = {"b", 443};
    EXPECT_EQ(proxyListOf(desktop), "https=b:443");
}

TEST(DesktopProxy, UsesTheSOCKSProxyForEverySchemeWithoutOne) {
    CDesktopProxy desktop = manual();
    desktop.socks = {"gate", 1080};
    EXPECT_EQ(proxyListOf(desktop),
              "http=socks5h://gate:1080;https=socks5h://gate:1080;ftp=socks5h://gate:1080;"
              "ftps=socks5h://gate:1080;sftp=socks5h://gate:1080;smtp=socks5h://gate:1080;smtps=socks5h://"
              "gate:1080");
    desktop.http = {"a", 80};
    EXPECT_EQ(proxyListOf(desktop), "http=a:80;https=a:80;ftp=socks5h://gate:1080;"
                                    "ftps=socks5h://gate:1080;sftp=socks5h://gate:1080;smtp=socks5h://"
                                    "gate:1080;smtps=socks5h://gate:1080");
}

TEST(DesktopProxy, SkipsServersWithoutHostOrPort) {
    CDesktopProxy desktop = manual();
    desktop.http = {"", 8080};
    desktop.https = {"b", 0};
    desktop.ftp = {" ", 21};
    desktop.socks = {"gate", -1};
    desktop.ignoreHosts = {"localhost"};
    EXPECT_EQ(proxyListOf(desktop), "");
}

TEST(DesktopProxy, SkipsHostsThatWouldTearTheListApart) {
    CDesktopProxy desktop = manual();
    desktop.ftp = {"c", 21};
    for (const char* const host : {"a;b", "a,b", "a b", "a\tb"}) {
        desktop.http = {host, 80};
        EXPECT_EQ(proxyListOf(desktop), "ftp=c:21") << host;
    }
}

TEST(DesktopProxy, PutsIPv6AddressesInBrackets) {
    CDesktopProxy desktop = manual();
    desktop.ftp = {"::1", 21};
    EXPECT_EQ(proxyListOf(desktop), "ftp=[::1]:21");
    desktop.ftp = {"[2001:db8::1]", 21};
    EXPECT_EQ(proxyListOf(desktop), "ftp=[2001:db8::1]:21");
    desktop.ftp = {" http://gate ", 21};
    EXPECT_EQ(proxyListOf(desktop), "ftp=http://gate:21");
}

TEST(DesktopProxy, ReadsAsProxySettings) {
    CDesktopProxy desktop = manual();
    desktop.http = {"::1", 8080};
    desktop.socks = {"gate", 1080};
    desktop.ignoreHosts = {"localhost", "", "*.lan", "a, b"};
    const CSystemProxy system = toSystemProxy(desktop);
    vantra::CProxySettings settings;
    settings.addProxiesFromString(system.proxyList);
    settings.addDirectConnectHostsFromString(system.bypassList);
    const std::string socks = "socks5h://gate:1080";
    EXPECT_EQ(proxiesOf(settings), (Proxies{{"ftp", socks},
                                            {"ftps", socks},
                                            {"http", "[::1]:8080"},
                                            {"https", "[::1]:8080"},
                                            {"sftp", socks},
                                            {"smtp", socks},
                                            {"smtps", socks}}));
    EXPECT_EQ(hostsOf(settings), (Hosts{"*.lan", "a", "b", "localhost"}));
}

} // namespace
