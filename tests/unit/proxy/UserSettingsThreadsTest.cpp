#include "SystemProxySeam.h"
#include "vantra/ProxySettings.h"

#include "support/Threads.h"

#include <gtest/gtest.h>

#include <chrono>

namespace {

using kel::P;
using kel::String;
using testsupport::runOnThreads;
using testsupport::threadCount;
using vantra::CProxySettings;

TEST(UserSettingsThreads, GetOneInstanceWhileItIsStillBeingMade) {
    proxytest::setSystemProxy([] {
        // Long enough for the others to arrive and to find that the instance is not there yet.
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        return vantra::CSystemProxy{"http=a:80", "store"};
    });
    std::vector<P<CProxySettings>> seen(threadCount);
    std::vector<String> proxies(threadCount);
    runOnThreads([&](int number) {
        const auto index = static_cast<std::size_t>(number);
        for (int round = 0; round < 1000; ++round) seen[index] = CProxySettings::getUserSettings();
        proxies[index] = seen[index]->getProxyForURL("http://example.org/");
    });
    EXPECT_EQ(seen, std::vector<P<CProxySettings>>(threadCount, CProxySettings::getUserSettings()));
    EXPECT_EQ(proxies, std::vector<String>(threadCount, "a:80"));
    EXPECT_EQ(proxytest::getSystemProxyCallCount(), 1);
}

} // namespace
