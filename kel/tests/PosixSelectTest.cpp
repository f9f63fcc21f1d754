#include "kel/PosixSelect.h"

#include "SocketPair.h"

#include <gtest/gtest.h>

#include <chrono>
#include <climits>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
constexpr int longTimeMs = 60'000;

class PosixSelect : public testing::Test, protected CSocketPair {};

TEST_F(PosixSelect, TellsWhatCanBeReadAndWritten) {
    sendFromFar();
    fd_set read = makeSet({nearSide(), farSide()});
    fd_set write = makeSet({nearSide(), farSide()});
    fd_set exception = makeSet({nearSide(), farSide()});
    EXPECT_EQ(kel::CPosixSelect::select(getCount(), &read, &write, &exception, longTimeMs), 3);
    EXPECT_TRUE(isInSet(nearSide(), read));
    EXPECT_FALSE(isInSet(farSide(), read));
    EXPECT_TRUE(isInSet(nearSide(), write));
    EXPECT_TRUE(isInSet(farSide(), write));
    EXPECT_FALSE(isInSet(nearSide(), exception));
    EXPECT_FALSE(isInSet(farSide(), exception));
}

TEST_F(PosixSelect, TakesEachSetAlone) {
    sendFromFar();
    fd_set read = makeSet({nearSide()});
    EXPECT_EQ(kel::CPosixSelect::select(getCount(), &read, nullptr, nullptr, longTimeMs), 1);
    EXPECT_TRUE(isInSet(nearSide(), read));
    fd_set write = makeSet({nearSide()});
    EXPECT_EQ(kel::CPosixSelect::select(getCount(), nullptr, &write, nullptr, longTimeMs), 1);
    EXPECT_TRUE(isInSet(nearSide(), write));
    fd_set exception = makeSet({nearSide()});
    EXPECT_EQ(kel::CPosixSelect::select(getCount(), nullptr, nullptr, &exception, 0), 0);
    EXPECT_FALSE(isInSet(nearSide(), exception));
}

TEST_F(PosixSelect, GivesUpAfterTheTimeoutAndNotBefore) {
    fillNear();
    fd_set read = makeSet({nearSide()});
    fd_set write = makeSet({nearSide()});
    fd_set exception = makeSet({nearSide()});
    const auto before = Clock::now();
    EXPECT_EQ(kel::CPosixSelect::select(getCount(), &read, &write, &exception, 30), 0);
    EXPECT_GE(Clock::now() - before, std::chrono::milliseconds(30));
    EXPECT_FALSE(isInSet(nearSide(), read));
    EXPECT_FALSE(isInSet(nearSide(), write));
    EXPECT_FALSE(isInSet(nearSide(), exception));
}

TEST_F(PosixSelect, OnlyLooksWithATimeoutOfZero) {
    fd_set read = makeSet({nearSide()});
    EXPECT_EQ(kel::CPosixSelect::select(getCount(), &read, nullptr, nullptr, 0), 0);
    sendFromFar();
    read = makeSet({nearSide()});
    EXPECT_EQ(kel::CPosixSelect::select(getCount(), &read, nullptr, nullptr, 0), 1);
}

TEST_F(PosixSelect, SleepsWithoutSockets) {
    const auto before = Clock::now();
    EXPECT_EQ(kel::CPosixSelect::select(0, nullptr, nullptr, nullptr, 30), 0);
    EXPECT_GE(Clock::now() - before, std::chrono::milliseconds(30));
}

TEST_F(PosixSelect, WaitsAsLongAsItTakesWithoutOrWithAHugeLimit) {
    for (const kel::int64 timeoutMs : {kel::int64{-1}, INT64_MIN, INT64_MAX, kel::int64{INT_MAX} * 1000}) {
        std::thread sender([this] {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            sendFromFar();
        });
        fd_set read = makeSet({nearSide()});
        EXPECT_EQ(kel::CPosixSelect::select(getCount(), &read, nullptr, nullptr, timeoutMs), 1);
        sender.join();
        receiveNear();
    }
}

TEST_F(PosixSelect, FailsForAClosedSocket) {
    const Socket closed = makeClosed();
    fd_set read = makeSet({closed});
    EXPECT_EQ(kel::CPosixSelect::select(static_cast<int>(closed) + 1, &read, nullptr, nullptr, 0), -1);
    EXPECT_TRUE(failedForNoSocket());
}

} // namespace
