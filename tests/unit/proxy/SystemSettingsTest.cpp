#include "SystemProxySeam.h"
#include "Tables.h"

#include <kel/Error.h>

#include <gtest/gtest.h>

namespace {

using kel::P;
using kel::String;
using proxytest::Hosts;
using proxytest::hostsOf;
using proxytest::Proxies;
using proxytest::proxiesOf;
using proxytest::setSystemProxy;
using vantra::CProxySettings;
using vantra::CSystemProxy;

/// Opens what is protected.
class OpenProxySettings : public CProxySettings {
public:
    using CProxySettings::createAndInitFromUserSettings;
    using CProxySettings::initFromSystemProxy;
};

TEST(SystemProxySettings, ReplaceWhatWasThere) {
    OpenProxySettings settings;
    settings.setProxyForURLScheme("smtp", "old");
    settings.addDirectConnectHost("old");
    settings.initFromSystemProxy({"http=a:80;https=b:443", "localhost;store"});
    EXPECT_EQ(proxiesOf(settings), (Proxies{{"http", "a:80"}, {"https", "b:443"}}));
    EXPECT_EQ(hostsOf(settings), (Hosts{"localhost", "store"}));
}

TEST(SystemProxySettings, MayBeASingleServerForTheUsualSchemes) {
    OpenProxySettings settings;
    settings.initFromSystemProxy({" gate:3128 ", ""});
    EXPECT_EQ(proxiesOf(settings),
              (Proxies{{"ftp", "gate:3128"}, {"http", "gate:3128"}, {"https", "gate:3128"}}));
    EXPECT_EQ(hostsOf(settings), Hosts());
}

TEST(SystemProxySettings, AreEmptyForABypassListWithoutAProxy) {
    OpenProxySettings settings;
    settings.setProxyForURLScheme("http", "old");
    settings.addDirectConnectHost("old");
    for (const char* const noProxy : {"", " \t\r\n"}) {
        settings.initFromSystemProxy({noProxy, "localhost;store"});
        EXPECT_EQ(proxiesOf(settings), Proxies());
        EXPECT_EQ(hostsOf(settings), Hosts());
    }
}

TEST(SystemProxySettings, TakeTheBypassListAlongWithAnyText) {
    OpenProxySettings settings;
    settings.initFromSystemProxy({";", "store"});
    EXPECT_EQ(proxiesOf(settings), Proxies());
    EXPECT_EQ(hostsOf(settings), (Hosts{"store"}));
}

TEST(SystemProxySettings, AreReadFromTheSystemEachTimeTheyAreInitialised) {
    const int callsBefore = proxytest::getSystemProxyCallCount();
    setSystemProxy("http=a", "localhost");
    CProxySettings settings;
    settings.initFromUserSettings();
    EXPECT_EQ(proxiesOf(settings), (Proxies{{"http", "a"}}));
    EXPECT_EQ(hostsOf(settings), (Hosts{"localhost"}));
    setSystemProxy("https=b", "");
    settings.initFromUserSettings();
    EXPECT_EQ(proxiesOf(settings), (Proxies{{"https", "b"}}));
    EXPECT_EQ(hostsOf(settings), Hosts());
    setSystemProxy("", "store");
    settings.initFromUserSettings();
    EXPECT_EQ(proxiesOf(settings), Proxies());
    EXPECT_EQ(hostsOf(settings), Hosts());
    EXPECT_EQ(proxytest::getSystemProxyCallCount(), callsBefore + 3);
}

TEST(SystemProxySettings, StayWhenTheSystemCannotBeAsked) {
    setSystemProxy([]() -> CSystemProxy { throw kel::CError("out of everything"); });
    CProxySettings settings;
    settings.setProxyForURLScheme("http", "a");
    EXPECT_THROW(settings.initFromUserSettings(), kel::CError);
    EXPECT_EQ(proxiesOf(settings), (Proxies{{"http", "a"}}));
}

TEST(SystemProxySettings, FillEachNewInstance) {
    setSystemProxy("http=a", "store");
    const P<CProxySettings> one = OpenProxySettings::createAndInitFromUserSettings();
    const P<CProxySettings> other = OpenProxySettings::createAndInitFromUserSettings();
    EXPECT_NE(one.get(), other.get());
    EXPECT_EQ(proxiesOf(*one), (Proxies{{"http", "a"}}));
    EXPECT_EQ(hostsOf(*other), (Hosts{"store"}));
}

} // namespace
