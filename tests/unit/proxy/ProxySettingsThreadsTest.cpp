#include "SystemProxySeam.h"
#include "Tables.h"

#include "support/Threads.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using kel::String;
using kel::TArray;
using proxytest::Hosts;
using proxytest::hostsOf;
using proxytest::Proxies;
using proxytest::proxiesOf;
using testsupport::runOnThreads;
using testsupport::threadCount;
using vantra::CProxySettings;

TEST(ProxySettingsThreads, EachSeeTheirOwnScheme) {
    CProxySettings settings;
    std::vector<int> mistakes(threadCount);
    runOnThreads([&](int number) {
        const String name = "own" + String::fromInt(number);
        int& mistake = mistakes[static_cast<std::size_t>(number)];
        for (int round = 0; round < 1000; ++round) {
            const String proxy = "gate" + String::fromInt(round) + ":80";
            settings.addProxiesFromString(name + "=" + proxy);
            settings.addDirectConnectHostsFromString(name + ";shared");
            if (settings.getProxyForURL(name + "://example.org/") != proxy) ++mistake;
            if (!settings.getProxyForURL(name + "://" + name + ":80/").isEmpty()) ++mistake;
            settings.removeDirectConnectHost(name);
            if (settings.isDirectConnectHost(name)) ++mistake;
            settings.setProxyForURLScheme(name, "");
            if (!settings.getProxyForURLScheme(name).isEmpty()) ++mistake;
        }
    });
    EXPECT_EQ(mistakes, std::vector<int>(threadCount, 0));
    EXPECT_EQ(proxiesOf(settings), Proxies());
    EXPECT_EQ(hostsOf(settings), (Hosts{"shared"}));
}

TEST(ProxySettingsThreads, NeverSeeHalfAList) {
    proxytest::setSystemProxy("all:1", "x;y;z");
    CProxySettings settings;
    std::vector<int> mistakes(threadCount);
    const std::set<std::size_t> wholeSizes{0, 3};
    runOnThreads([&](int number) {
        for (int round = 0; round < 500; ++round) {
            if (number == 0) {
                settings.clear();
            } else if (number < 4) {
                settings.initFromUserSettings();
            } else {
                TArray<String> schemes;
                settings.getProxyURLSchemes(schemes);
                TArray<String> hosts;
                settings.getDirectConnectHosts(hosts);
                if (!wholeSizes.contains(schemes.size()) || !wholeSizes.contains(hosts.size()))
                    ++mistakes[static_cast<std::size_t>(number)];
            }
        }
    });
    EXPECT_EQ(mistakes, std::vector<int>(threadCount, 0));
}

TEST(ProxySettingsThreads, GetAProxyOrNoneWhileHostsComeAndGo) {
    CProxySettings settings;
    settings.addProxiesFromString("gate:80");
    std::vector<int> mistakes(threadCount);
    runOnThreads([&](int number) {
        for (int round = 0; round < 1000; ++round) {
            if (number == 0) {
                settings.addDirectConnectHost("store");
                settings.removeDirectConnectHost("store");
                continue;
            }
            const String proxy = settings.getProxyForURL("https://store:443/");
            if (!proxy.isEmpty() && proxy != "gate:80") ++mistakes[static_cast<std::size_t>(number)];
        }
    });
    EXPECT_EQ(mistakes, std::vector<int>(threadCount, 0));
    EXPECT_EQ(settings.getProxyForURL("https://store:443/"), "gate:80");
}

} // namespace
