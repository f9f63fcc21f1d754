#include "kel/PosixSelect.h"

#include "SocketPair.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <thread>

#include <pthread.h>
#include <signal.h>

namespace {

class PosixSelectOfThisSystem : public testing::Test, protected CSocketPair {};

void ignoreSignal(int) {}

TEST_F(PosixSelectOfThisSystem, TakesAnInterruptionForTheEndOfTheTime) {
    struct sigaction action {};
    action.sa_handler = &ignoreSignal;
    struct sigaction before {};
    ASSERT_EQ(::sigaction(SIGUSR1, &action, &before), 0);
    fillNear();
    std::atomic<bool> over{false};
    // Again and again, since the first one may come before the wait has begun.
    std::thread interrupter([&over, waiter = ::pthread_self()] {
        while (!over) {
            ::pthread_kill(waiter, SIGUSR1);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    fd_set read = makeSet({nearSide()});
    fd_set write = makeSet({nearSide()});
    fd_set exception = makeSet({nearSide()});
    EXPECT_EQ(kel::CPosixSelect::select(getCount(), &read, &write, &exception, -1), 0);
    over = true;
    interrupter.join();
    EXPECT_FALSE(isInSet(nearSide(), read));
    EXPECT_FALSE(isInSet(nearSide(), write));
    EXPECT_FALSE(isInSet(nearSide(), exception));
    EXPECT_EQ(::sigaction(SIGUSR1, &before, nullptr), 0);
}

TEST_F(PosixSelectOfThisSystem, RefusesACountThatNoSetCanHold) {
    fd_set read = makeSet({nearSide()});
    EXPECT_EQ(kel::CPosixSelect::select(FD_SETSIZE + 1, &read, nullptr, nullptr, 0), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(kel::CPosixSelect::select(-1, &read, nullptr, nullptr, 0), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_TRUE(isInSet(nearSide(), read)) << "a failure leaves the sets alone";
}

} // namespace
