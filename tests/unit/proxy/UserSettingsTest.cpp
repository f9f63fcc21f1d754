#include "SystemProxySeam.h"
#include "Tables.h"

#include <kel/Error.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <new>

namespace {

using kel::P;
using kel::String;
using proxytest::setSystemProxy;
using vantra::CProxySettings;
using vantra::CSystemProxy;

class OpenProxySettings : public CProxySettings {
public:
    using CProxySettings::disposeUserSettings;
};

/// What getUserSettings() throws.
String errorOfUserSettings() {
    try {
        static_cast<void>(CProxySettings::getUserSettings());
        return "no error";
    } catch (const kel::CError& error) {
        return error.getMessage();
    } catch (const std::bad_alloc&) {
        return "no memory";
    }
}

/// Each test is a process of its own, which tells what it saw on standard error and ends with 0.
class UserProxySettings : public testing::Test {
protected:
    static void SetUpTestSuite() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(UserProxySettings, AreOneInstanceReadFromTheSystemOnce) {
    EXPECT_EXIT(
        {
            setSystemProxy("http=a", "store");
            const P<CProxySettings> first = CProxySettings::getUserSettings();
            setSystemProxy("http=b", "");
            const P<CProxySettings> second = CProxySettings::getUserSettings();
            std::cerr << (first.get() == second.get()) << " " << second->getProxyForURLScheme("http") << " "
                      << second->isDirectConnectHost("store") << " " << proxytest::getSystemProxyCallCount();
            std::exit(0);
        },
        testing::ExitedWithCode(0), "^1 a 1 1$");
}

TEST_F(UserProxySettings, AreMadeByNobodyElseOnceTheyAreMade) {
    EXPECT_EXIT(
        {
            const P<CProxySettings> settings = CProxySettings::getUserSettings();
            std::cerr << CProxySettings::userSettingsGuard().beginInit();
            std::exit(0);
        },
        testing::ExitedWithCode(0), "^0$");
}

/// Reports when it goes; destroyed after the functions that the disposer runs, since it is complete before
/// them.
struct AtEnd {
    ~AtEnd() {
        setSystemProxy("http=late", "");
        const P<CProxySettings> one = CProxySettings::getUserSettings();
        const P<CProxySettings> other = CProxySettings::getUserSettings();
        std::cerr << "at end: " << one->getProxyForURLScheme("http") << " " << (one.get() == other.get());
    }
};

TEST_F(UserProxySettings, AreLetGoAtTheEndOfTheProcessAndThenMadeForEachCaller) {
    EXPECT_EXIT(
        {
            static const AtEnd atEnd;
            setSystemProxy("http=early", "");
            std::cerr << CProxySettings::getUserSettings()->getProxyForURLScheme("http") << " ";
            std::exit(0);
        },
        testing::ExitedWithCode(0), "^early at end: late 0$");
}

TEST_F(UserProxySettings, LiveOnWithWhoeverHoldsThem) {
    EXPECT_EXIT(
        {
            setSystemProxy("http=a", "");
            const P<CProxySettings> held = CProxySettings::getUserSettings();
            OpenProxySettings::disposeUserSettings();
            OpenProxySettings::disposeUserSettings();
            std::cerr << held->getProxyForURLScheme("http") << " "
                      << (held.get() == CProxySettings::getUserSettings().get());
            std::exit(0);
        },
        testing::ExitedWithCode(0), "^a 0$");
}

TEST_F(UserProxySettings, TellTheirMakerWhyTheyFailed) {
    EXPECT_EXIT(
        {
            setSystemProxy([]() -> CSystemProxy { throw std::bad_alloc(); });
            std::cerr << errorOfUserSettings();
            std::exit(0);
        },
        testing::ExitedWithCode(0), "^no memory$");
}

TEST_F(UserProxySettings, FailForGood) {
    EXPECT_EXIT(
        {
            setSystemProxy([]() -> CSystemProxy { throw kel::CError("The system is in a bad mood."); });
            std::cerr << errorOfUserSettings() << "\n";
            setSystemProxy("http=a", "");
            std::cerr << errorOfUserSettings() << "\n" << errorOfUserSettings() << "\n";
            std::cerr << proxytest::getSystemProxyCallCount();
            std::exit(0);
        },
        testing::ExitedWithCode(0),
        "^The system is in a bad mood\\.\nConstruction of static object has failed\\.\n"
        "Construction of static object has failed\\.\n1$");
}

} // namespace
