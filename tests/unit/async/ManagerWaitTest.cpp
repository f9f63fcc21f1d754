#include "ManagerFixture.h"

#include "vantra/AsyncNetRequestManager.h"

#include <climits>

namespace vantra::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A wait of the manager: what is asked of it, what libcurl's timer says, and how long it lasts.
struct Wait {
    int asked;
    long timer;
    int lasts;

    friend std::ostream& operator<<(std::ostream& stream, const Wait& wait) {
        return stream << wait.asked << " with the timer at " << wait.timer;
    }
};

class ManagerWait : public testing::Test {
protected:
    MultiDouble multi_;
    CAsyncNetRequestManager manager_;
};

TEST_F(ManagerWait, SleepsAHundredMillisecondsWithoutTransfers) {
    multi_.takeCalls();
    manager_.waitForEvents(-1);
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("fdset", "timeout", "sleep 100"));
}

TEST_F(ManagerWait, SleepsAtMostAHundredMillisecondsWithoutSockets) {
    for (const Wait& wait : {Wait{50, -1, 50}, Wait{100, -1, 100}, Wait{101, -1, 100}, Wait{1000, 200, 100},
                             Wait{1000, 30, 30}, Wait{-1, 30, 30}, Wait{20, 30, 20}, Wait{-7, 5000, 100}}) {
        multi_.setTimer(wait.timer);
        multi_.takeCalls();
        manager_.waitForEvents(wait.asked);
        EXPECT_THAT(multi_.takeCalls(),
                    ElementsAre("fdset", "timeout", "sleep " + std::to_string(wait.lasts)))
            << wait;
    }
}

TEST_F(ManagerWait, DoesNotSleepWhenThereIsNoTime) {
    multi_.takeCalls();
    manager_.waitForEvents(0);
    multi_.setTimer(0);
    manager_.waitForEvents(100);
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("fdset", "timeout", "fdset", "timeout"));
}

TEST_F(ManagerWait, WatchesSocketsUntilTheTimerAtMostASecond) {
    multi_.setSocket(7);
    for (const Wait& wait :
         {Wait{5000, 200, 200}, Wait{-1, 200, 200}, Wait{-1, -1, 1000}, Wait{5000, -1, 1000},
          Wait{5000, 1000, 1000}, Wait{5000, 1001, 1000}, Wait{999, 1001, 999}, Wait{-1, 60000, 1000},
          Wait{1000, -1, 1000}, Wait{1001, -1, 1000}, Wait{50, 200, 50}, Wait{200, 200, 200}, Wait{0, 200, 0},
          Wait{100, 0, 0}, Wait{-1, 0, 0}, Wait{INT_MAX, LONG_MAX, 1000}, Wait{INT_MIN, -1, 1000}}) {
        multi_.setTimer(wait.timer);
        multi_.takeCalls();
        manager_.waitForEvents(wait.asked);
        EXPECT_THAT(multi_.takeCalls(),
                    ElementsAre("fdset", "timeout", "select 8 " + std::to_string(wait.lasts)))
            << wait;
    }
}

TEST_F(ManagerWait, ReturnsAtOnceWhileLibcurlWantsToGoOn) {
    multi_.failNext("perform", CURLM_CALL_MULTI_PERFORM);
    EXPECT_EQ(manager_.handleEvents(nullptr), 0);
    multi_.takeCalls();
    manager_.waitForEvents(50);
    manager_.waitForEvents(-1);
    EXPECT_THAT(multi_.takeCalls(), IsEmpty());
    manager_.handleEvents(nullptr);
    manager_.waitForEvents(50);
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("perform", "fdset", "timeout", "sleep 50"));
}

TEST_F(ManagerWait, StillReturnsAtOnceAfterAFailureToPerformMeanwhile) {
    multi_.failNext("perform", CURLM_CALL_MULTI_PERFORM);
    manager_.handleEvents(nullptr);
    multi_.failNext("perform", CURLM_INTERNAL_ERROR);
    EXPECT_EQ(thrownBy([&] { manager_.handleEvents(nullptr); }), multiError(CURLM_INTERNAL_ERROR));
    multi_.takeCalls();
    manager_.waitForEvents(50);
    EXPECT_THAT(multi_.takeCalls(), IsEmpty());
}

TEST_F(ManagerWait, WaitsAfterAFailureToPerform) {
    multi_.failNext("perform", CURLM_INTERNAL_ERROR);
    EXPECT_EQ(thrownBy([&] { manager_.handleEvents(nullptr); }), multiError(CURLM_INTERNAL_ERROR));
    multi_.takeCalls();
    manager_.waitForEvents(50);
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("fdset", "timeout", "sleep 50"));
}

TEST_F(ManagerWait, ReportsThatLibcurlCannotNameItsSockets) {
    multi_.takeCalls();
    multi_.failNext("fdset", CURLM_BAD_HANDLE);
    EXPECT_EQ(thrownBy([&] { manager_.waitForEvents(50); }), multiError(CURLM_BAD_HANDLE));
    EXPECT_THAT(multi_.takeCalls(), IsEmpty());
}

TEST_F(ManagerWait, ReportsThatLibcurlCannotTellItsTimer) {
    multi_.takeCalls();
    multi_.failNext("timeout", CURLM_INTERNAL_ERROR);
    EXPECT_EQ(thrownBy([&] { manager_.waitForEvents(50); }), multiError(CURLM_INTERNAL_ERROR));
    EXPECT_THAT(multi_.takeCalls(), ElementsAre("fdset"));
}

} // namespace
} // namespace vantra::test
