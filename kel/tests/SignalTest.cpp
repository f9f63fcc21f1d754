#include "kel/Signal.h"
#include "kel/Mutex.h"
#include "kel/P.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <climits>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
constexpr int longTimeMs = 60'000;

TEST(Signal, StartsUnset) {
    const kel::CSignal signal;
    EXPECT_FALSE(signal.isSet());
}

TEST(Signal, StaysSetUntilReset) {
    kel::CSignal signal;
    signal.set();
    EXPECT_TRUE(signal.isSet());
    EXPECT_TRUE(signal.wait(0));
    EXPECT_TRUE(signal.wait(0)) << "a wait does not use the signal up";
    signal.set();
    signal.reset();
    EXPECT_FALSE(signal.isSet());
    EXPECT_FALSE(signal.wait(0));
    signal.set();
    EXPECT_TRUE(signal.isSet()) << "it can be set again";
}

TEST(Signal, WaitOfASetSignalReturnsAtOnceWhateverTheLimit) {
    kel::CSignal signal;
    signal.set();
    EXPECT_TRUE(signal.wait(-1));
    EXPECT_TRUE(signal.wait(0));
    EXPECT_TRUE(signal.wait(INT_MAX));
}

TEST(Signal, WaitGivesUpAfterTheTimeoutAndNotBefore) {
    const kel::CSignal signal;
    const auto before = Clock::now();
    EXPECT_FALSE(signal.wait(30));
    EXPECT_GE(Clock::now() - before, std::chrono::milliseconds(30));
}

TEST(Signal, LetsEveryWaiterThrough) {
    kel::CSignal signal;
    std::atomic<int> passed{0};
    std::vector<std::thread> waiters;
    for (const int timeoutMs : {-1, longTimeMs, INT_MAX, -1})
        waiters.emplace_back([&, timeoutMs] { passed += signal.wait(timeoutMs) ? 1 : 0; });
    signal.set();
    for (std::thread& waiter : waiters) waiter.join();
    EXPECT_EQ(passed, 4);
}

TEST(Signal, WakesAWaiterThatWaitsAlready) {
    kel::CSignal question;
    kel::CSignal answer;
    std::thread other([&] {
        for (int i = 0; i < 100; ++i) {
            question.wait(-1);
            question.reset();
            answer.set();
        }
    });
    int answers = 0;
    for (int i = 0; i < 100; ++i) {
        question.set();
        answers += answer.wait(longTimeMs) ? 1 : 0;
        answer.reset();
    }
    other.join();
    EXPECT_EQ(answers, 100);
}

TEST(Signal, MayGoAsSoonAsItsWaiterIsThrough) {
    for (int i = 0; i < 200; ++i) {
        auto* signal = new kel::CSignal();
        std::thread setter([signal] { signal->set(); });
        signal->wait(-1);
        delete signal;
        setter.join();
    }
}

TEST(Mutex, MayBeTakenAgainByTheThreadThatHoldsIt) {
    kel::CMutex mutex;
    kel::CMutexLock outer(mutex);
    kel::CMutexLock inner(mutex);
    EXPECT_TRUE(mutex.tryLock());
    mutex.unlock();
}

bool isFree(kel::CMutex& mutex) {
    bool taken = false;
    std::thread([&] {
        taken = mutex.tryLock();
        if (taken) mutex.unlock();
    }).join();
    return taken;
}

TEST(Mutex, KeepsOtherThreadsOutUntilEveryLockIsGivenBack) {
    kel::CMutex mutex;
    EXPECT_TRUE(isFree(mutex));
    {
        kel::CMutexLock outer(mutex);
        { kel::CMutexLock inner(mutex); }
        EXPECT_FALSE(isFree(mutex));
    }
    EXPECT_TRUE(isFree(mutex));
}

TEST(Mutex, LockIsGivenBackEarlyOnce) {
    kel::CMutex mutex;
    kel::CMutexLock outer(mutex);
    {
        kel::CMutexLock inner(mutex);
        inner.unlock();
        inner.unlock();
    }
    EXPECT_FALSE(isFree(mutex)) << "the outer lock is still held";
    outer.unlock();
    EXPECT_TRUE(isFree(mutex));
}

TEST(Mutex, GuardsWhatSeveralThreadsChange) {
    kel::CMutex mutex;
    int sum = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int k = 0; k < 1000; ++k) {
                kel::CMutexLock lock(mutex);
                ++sum;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(sum, 4000);
}

TEST(Mutex, GlobalMutexIsOneForAll) {
    kel::CMutex* fromOtherThread = nullptr;
    std::thread([&] { fromOtherThread = &kel::getGlobalMutex(); }).join();
    EXPECT_EQ(&kel::getGlobalMutex(), fromOtherThread);
}

} // namespace
