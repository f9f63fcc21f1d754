#include "Tables.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using kel::String;
using kel::TArray;
using proxytest::Hosts;
using proxytest::hostsOf;
using proxytest::Proxies;
using proxytest::proxiesOf;
using vantra::CProxySettings;

Proxies proxiesFrom(const String& text) {
    CProxySettings settings;
    settings.addProxiesFromString(text);
    return proxiesOf(settings);
}

Hosts hostsFrom(const String& text) {
    CProxySettings settings;
    settings.addDirectConnectHostsFromString(text);
    return hostsOf(settings);
}

TEST(ProxySettings, AreEmptyAtFirst) {
    const CProxySettings settings;
    EXPECT_EQ(proxiesOf(settings), Proxies());
    EXPECT_EQ(hostsOf(settings), Hosts());
    EXPECT_EQ(settings.getProxyForURLScheme("http"), "");
    EXPECT_FALSE(settings.isDirectConnectHost(""));
}

TEST(ProxySettings, KeepOneProxyForEachScheme) {
    CProxySettings settings;
    settings.setProxyForURLScheme("http", "a:80");
    settings.setProxyForURLScheme("ftp", "socks5://Gate:1080");
    settings.setProxyForURLScheme("http", "b:81");
    EXPECT_EQ(proxiesOf(settings), (Proxies{{"ftp", "socks5://Gate:1080"}, {"http", "b:81"}}));
}

TEST(ProxySettings, DisregardTheCaseOfSchemesButKeepThatOfProxies) {
    CProxySettings settings;
    settings.setProxyForURLScheme("HTTP", "Gate:80");
    EXPECT_EQ(settings.getProxyForURLScheme("hTTp"), "Gate:80");
    EXPECT_EQ(proxiesOf(settings), (Proxies{{"http", "Gate:80"}}));
    settings.setProxyForURLScheme("Http", "");
    EXPECT_EQ(proxiesOf(settings), Proxies());
}

TEST(ProxySettings, RemoveASchemeByAnEmptyProxy) {
    CProxySettings settings;
    settings.setProxyForURLScheme("http", "a:80");
    settings.setProxyForURLScheme("https", "");
    settings.setProxyForURLScheme("http", "");
    EXPECT_EQ(proxiesOf(settings), Proxies());
    EXPECT_EQ(settings.getProxyForURLScheme("http"), "");
}

TEST(ProxySettings, AppendSchemesToAListInAscendingOrder) {
    CProxySettings settings;
    for (const char* const scheme : {"https", "ftp", "http", "gopher"})
        settings.setProxyForURLScheme(scheme, "a");
    TArray<String> schemes{"before"};
    settings.getProxyURLSchemes(schemes);
    EXPECT_EQ(schemes, (TArray<String>{"before", "ftp", "gopher", "http", "https"}));
}

TEST(ProxySettings, AppendHostsToAListInAscendingOrder) {
    CProxySettings settings;
    for (const char* const host : {"store", "Localhost", "10.0.0.1"}) settings.addDirectConnectHost(host);
    TArray<String> hosts{"before"};
    settings.getDirectConnectHosts(hosts);
    EXPECT_EQ(hosts, (TArray<String>{"before", "10.0.0.1", "localhost", "store"}));
}

TEST(ProxySettings, DisregardTheCaseOfHosts) {
    CProxySettings settings;
    settings.addDirectConnectHost("Store.Example");
    settings.addDirectConnectHost("STORE.example");
    EXPECT_EQ(hostsOf(settings), (Hosts{"store.example"}));
    EXPECT_TRUE(settings.isDirectConnectHost("sTORE.eXAMPLE"));
    settings.removeDirectConnectHost("STORE.EXAMPLE");
    EXPECT_EQ(hostsOf(settings), Hosts());
    EXPECT_FALSE(settings.isDirectConnectHost("store.example"));
}

TEST(ProxySettings, CompareWholeHostNames) {
    CProxySettings settings;
    settings.addDirectConnectHost("store.example");
    for (const char* const host : {"store", "example", ".example", "a.store.example", "store.example.", ""})
        EXPECT_FALSE(settings.isDirectConnectHost(host)) << host;
}

TEST(ProxySettings, DoNotTrimASingleHost) {
    CProxySettings settings;
    settings.addDirectConnectHost(" store ");
    settings.addDirectConnectHost("");
    EXPECT_EQ(hostsOf(settings), (Hosts{"", " store "}));
    EXPECT_FALSE(settings.isDirectConnectHost("store"));
    EXPECT_TRUE(settings.isDirectConnectHost(" STORE "));
}

TEST(ProxySettings, DoNotMindTheRemovalOfAnUnknownHost) {
    CProxySettings settings;
    settings.addDirectConnectHost("a");
    settings.removeDirectConnectHost("b");
    EXPECT_EQ(hostsOf(settings), (Hosts{"a"}));
}

TEST(ProxySettings, ForgetEverythingWhenCleared) {
    CProxySettings settings;
    settings.setProxyForURLScheme("http", "a");
    settings.addDirectConnectHost("b");
    settings.clear();
    EXPECT_EQ(proxiesOf(settings), Proxies());
    EXPECT_EQ(hostsOf(settings), Hosts());
}

TEST(ProxyList, NamesProxiesByScheme) {
    EXPECT_EQ(proxiesFrom("http=a:80;https=b:443"), (Proxies{{"http", "a:80"}, {"https", "b:443"}}));
    EXPECT_EQ(proxiesFrom("HTTP=A:80"), (Proxies{{"http", "A:80"}}));
    EXPECT_EQ(proxiesFrom("smtp=c"), (Proxies{{"smtp", "c"}}));
}

TEST(ProxyList, MeansHTTPAndHTTPSAndFTPByABareServer) {
    EXPECT_EQ(proxiesFrom("proxy:8080"),
              (Proxies{{"ftp", "proxy:8080"}, {"http", "proxy:8080"}, {"https", "proxy:8080"}}));
    EXPECT_EQ(proxiesFrom("proxy"), (Proxies{{"ftp", "proxy"}, {"http", "proxy"}, {"https", "proxy"}}));
}

TEST(ProxyList, RemovesASchemeWithoutAProxy) {
    EXPECT_EQ(proxiesFrom("http=a:80, ftp="), (Proxies{{"http", "a:80"}}));
    EXPECT_EQ(proxiesFrom("proxy, ftp="), (Proxies{{"http", "proxy"}, {"https", "proxy"}}));
}

TEST(ProxyList, TakesAnyOtherPieceWithAColonForASchemesOwnURL) {
    EXPECT_EQ(proxiesFrom("socks5://gate:1080"), (Proxies{{"socks5", "socks5://gate:1080"}}));
    EXPECT_EQ(proxiesFrom("HTTP://Gate:80"), (Proxies{{"http", "HTTP://Gate:80"}}));
    EXPECT_EQ(proxiesFrom("host:"), (Proxies{{"host", "host:"}}));
    EXPECT_EQ(proxiesFrom("host:80x"), (Proxies{{"host", "host:80x"}}));
    EXPECT_EQ(proxiesFrom("host:80:81"), (Proxies{{"host", "host:80:81"}}));
    EXPECT_EQ(proxiesFrom("[::1]:80"), (Proxies{{"[", "[::1]:80"}}));
    EXPECT_EQ(proxiesFrom(String(L"host:\u0668\u0660")), (Proxies{{"host", "host:\u0668\u0660"}}));
}

TEST(ProxyList, LooksForAnEqualsSignFirst) {
    EXPECT_EQ(proxiesFrom("http=socks5://gate:1080"), (Proxies{{"http", "socks5://gate:1080"}}));
    EXPECT_EQ(proxiesFrom("http=a=b"), (Proxies{{"http", "a=b"}}));
    EXPECT_EQ(proxiesFrom("a:80=b"), (Proxies{{"a:80", "b"}}));
    EXPECT_EQ(proxiesFrom("=b"), (Proxies{{"", "b"}}));
    EXPECT_EQ(proxiesFrom("="), Proxies());
}

TEST(ProxyList, TakesAColonAloneAsItStands) {
    EXPECT_EQ(proxiesFrom(":"), (Proxies{{"", ":"}}));
    EXPECT_EQ(proxiesFrom(":80"), (Proxies{{"ftp", ":80"}, {"http", ":80"}, {"https", ":80"}}));
}

TEST(ProxyList, LetsLaterPiecesOverrideEarlierOnes) {
    EXPECT_EQ(proxiesFrom("http=a;http=b"), (Proxies{{"http", "b"}}));
    EXPECT_EQ(proxiesFrom("proxy:1;https=b"),
              (Proxies{{"ftp", "proxy:1"}, {"http", "proxy:1"}, {"https", "b"}}));
    EXPECT_EQ(proxiesFrom("https=b;proxy:1"),
              (Proxies{{"ftp", "proxy:1"}, {"http", "proxy:1"}, {"https", "proxy:1"}}));
}

TEST(ProxyList, IsCutAtSemicolonsCommasBlanksAndTabs) {
    EXPECT_EQ(proxiesFrom("a=1;b=2,c=3 d=4\te=5"),
              (Proxies{{"a", "1"}, {"b", "2"}, {"c", "3"}, {"d", "4"}, {"e", "5"}}));
}

TEST(ProxyList, SkipsEmptyPieces) {
    EXPECT_EQ(proxiesFrom(" ;; , a=1 ,\t;b=2; "), (Proxies{{"a", "1"}, {"b", "2"}}));
    EXPECT_EQ(proxiesFrom(" ;,\t\r\n"), Proxies());
    EXPECT_EQ(proxiesFrom(""), Proxies());
}

TEST(ProxyList, TrimsItsPieces) {
    EXPECT_EQ(proxiesFrom("\r\na=1\r\n;\vb=2\f"), (Proxies{{"a", "1"}, {"b", "2"}}));
    EXPECT_EQ(proxiesFrom("a=1\nb=2"), (Proxies{{"a", "1\nb=2"}}));
}

TEST(ProxyList, IsAddedToWhatIsThere) {
    CProxySettings settings;
    settings.addProxiesFromString("http=a;https=b");
    settings.addProxiesFromString("https=c;ftp=d");
    EXPECT_EQ(proxiesOf(settings), (Proxies{{"ftp", "d"}, {"http", "a"}, {"https", "c"}}));
    settings.addProxiesFromString("");
    EXPECT_EQ(proxiesOf(settings), (Proxies{{"ftp", "d"}, {"http", "a"}, {"https", "c"}}));
}

TEST(BypassList, NamesHosts) {
    EXPECT_EQ(hostsFrom("localhost;Store,10.0.0.1 b\ta"),
              (Hosts{"10.0.0.1", "a", "b", "localhost", "store"}));
    EXPECT_EQ(hostsFrom(" ;; \r\n a ;"), (Hosts{"a"}));
    EXPECT_EQ(hostsFrom(""), Hosts());
}

TEST(BypassList, HasNoWildcards) {
    CProxySettings settings;
    settings.addDirectConnectHostsFromString("*.lan;<local>");
    EXPECT_EQ(hostsOf(settings), (Hosts{"*.lan", "<local>"}));
    EXPECT_FALSE(settings.isDirectConnectHost("store.lan"));
    EXPECT_FALSE(settings.isDirectConnectHost("store"));
    EXPECT_FALSE(settings.isDirectConnectHost("localhost"));
    EXPECT_TRUE(settings.isDirectConnectHost("*.LAN"));
    EXPECT_TRUE(settings.isDirectConnectHost("<LOCAL>"));
}

TEST(BypassList, IsAddedToWhatIsThere) {
    CProxySettings settings;
    settings.addDirectConnectHostsFromString("a");
    settings.addDirectConnectHostsFromString("b;A");
    EXPECT_EQ(hostsOf(settings), (Hosts{"a", "b"}));
}

} // namespace
