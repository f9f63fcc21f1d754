#include "SystemProxySeam.h"
#include "vantra/ProxySettings.h"

#include "support/Threads.h"

#include <kel/Error.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

namespace {

using kel::String;
using testsupport::runOnThreads;
using testsupport::threadCount;
using vantra::CProxySettings;

TEST(UserSettingsThreads, AllLearnOfAFailure) {
    proxytest::setSystemProxy([]() -> vantra::CSystemProxy {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        throw kel::CError("The system is in a bad mood.");
    });
    std::vector<String> errors(threadCount);
    runOnThreads([&](int number) {
        try {
            static_cast<void>(CProxySettings::getUserSettings());
        } catch (const kel::CError& error) {
            errors[static_cast<std::size_t>(number)] = error.getMessage();
        }
    });
    std::sort(errors.begin(), errors.end());
    std::vector<String> expected(threadCount, "Construction of static object has failed.");
    expected.back() = "The system is in a bad mood.";
    EXPECT_EQ(errors, expected);
    EXPECT_EQ(proxytest::getSystemProxyCallCount(), 1);
}

} // namespace
