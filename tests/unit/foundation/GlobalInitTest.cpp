#include "vantra/GlobalInit.h"
#include "GlobalInitSeams.h"

#include <kel/Mutex.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <future>
#include <iostream>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

using kel::P;
using vantra::CGlobalInit;

static_assert(std::is_base_of_v<kel::CBase, CGlobalInit>);
static_assert(std::is_same_v<decltype(CGlobalInit::get()), const P<CGlobalInit>&>);
static_assert(!std::is_copy_constructible_v<CGlobalInit> && !std::is_copy_assignable_v<CGlobalInit>);

/// Shows what only derived classes see.
class Access : public CGlobalInit {
public:
    using CGlobalInit::disposeGlobalInstance;
    using CGlobalInit::globalInstanceGuard;
};

bool isGlobalMutexFreeForOthers() {
    return std::async(std::launch::async,
                      [] {
                          const bool isFree = kel::getGlobalMutex().tryLock();
                          if (isFree) kel::getGlobalMutex().unlock();
                          return isFree;
                      })
        .get();
}

class GlobalInit : public testing::Test {
protected:
    static void SetUpTestSuite() {
        globalinitseams::setCurlGlobalInitHook(
            [] { wasGlobalMutexFreeDuringInit = isGlobalMutexFreeForOthers(); });
    }

    static inline bool wasGlobalMutexFreeDuringInit = true;
};

/// All that one start of the library does, however often it is asked for.
const std::vector<std::string> oneStart{"OpenSSL", "curl_global_init(3)", "addDisposeFunc"};

TEST_F(GlobalInit, StartsOpenSSLThenLibcurlWithAllItsParts) {
    CGlobalInit::get();
    EXPECT_EQ(globalinitseams::getEvents(), oneStart);
}

TEST_F(GlobalInit, StartsOnceHoweverOftenItIsAsked) {
    for (int i = 0; i < 100; ++i) {
        CGlobalInit::ensureInitialized();
        CGlobalInit::get();
    }
    EXPECT_EQ(globalinitseams::getEvents(), oneStart);
}

TEST_F(GlobalInit, IsTheSameInstanceEveryTime) {
    const P<CGlobalInit>& first = CGlobalInit::get();
    const P<CGlobalInit>& second = CGlobalInit::get();
    EXPECT_NE(first.get(), nullptr);
    EXPECT_EQ(&first, &second);
    const CGlobalInit* const instance = first;
    CGlobalInit::ensureInitialized();
    EXPECT_EQ(CGlobalInit::get().get(), instance);
}

TEST_F(GlobalInit, OutlivesThePointersThatClientsTake) {
    for (int i = 0; i < 3; ++i) {
        const P<CGlobalInit> copy = CGlobalInit::get();
        EXPECT_EQ(copy.get(), CGlobalInit::get().get());
    }
    EXPECT_EQ(globalinitseams::getEvents(), oneStart);
}

TEST_F(GlobalInit, HoldsTheGlobalMutexWhileItStarts) {
    CGlobalInit::get();
    EXPECT_FALSE(wasGlobalMutexFreeDuringInit);
    EXPECT_TRUE(isGlobalMutexFreeForOthers());
}

TEST_F(GlobalInit, TakesNoLockOnceItIsStarted) {
    CGlobalInit::get();
    std::future<void> otherThread;
    bool returned = false;
    {
        const kel::CMutexLock lock(kel::getGlobalMutex());
        otherThread = std::async(std::launch::async, [] { CGlobalInit::get(); });
        returned = otherThread.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
    }
    otherThread.get();
    EXPECT_TRUE(returned);
}

TEST_F(GlobalInit, UsesUpItsGuard) {
    CGlobalInit::get();
    EXPECT_FALSE(Access::globalInstanceGuard().beginInit());
    EXPECT_EQ(&Access::globalInstanceGuard(), &Access::globalInstanceGuard());
}

TEST_F(GlobalInit, StaysAsItIsWhenDisposed) {
    const CGlobalInit* const instance = CGlobalInit::get();
    Access::disposeGlobalInstance();
    EXPECT_EQ(CGlobalInit::get().get(), instance);
    EXPECT_EQ(globalinitseams::getEvents(), oneStart);
}

TEST_F(GlobalInit, YieldsAgainAndAgainWhileSomebodyElseBuildsIt) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            if (!Access::globalInstanceGuard().beginInit()) std::exit(1);
            globalinitseams::setThreadYieldHook([calls = 0](bool sleepBriefly) mutable {
                std::cerr << "threadYield(" << sleepBriefly << ")\n";
                if (++calls == 3) std::_Exit(globalinitseams::getEvents().empty() ? 0 : 2);
            });
            CGlobalInit::get();
        },
        testing::ExitedWithCode(0), "^threadYield\\(1\\)\nthreadYield\\(1\\)\nthreadYield\\(1\\)\n$");
}

TEST_F(GlobalInit, IsDisposedAndThenReleasedAtExitAndLeavesLibcurlRunning) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            globalinitseams::reportEventsOf(*CGlobalInit::get());
            std::exit(0);
        },
        testing::ExitedWithCode(0), "^dispose\nrelease\n$");
}

} // namespace
