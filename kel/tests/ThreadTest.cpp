#include "kel/Thread.h"
#include "kel/Signal.h"

#include "LogCapture.h"
#include "SystemThreads.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <pthread.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int longTimeMs = 60'000;

/// Runs a function given to it, and tells of its own end.
class CFunctionThread : public kel::CThread {
public:
    using Function = std::function<void(CFunctionThread&)>;

    explicit CFunctionThread(Function function, bool stopOnDelete = true)
        : CThread(nullptr, stopOnDelete), function_(std::move(function)) {}
    ~CFunctionThread() override {
        stop(true);
        if (onGone) onGone();
    }

    std::function<void()> onFinished;
    std::function<void()> onGone;
    int exits = 0;

    void waitForStop() {
        while (checkContinue()) stopSignal_.wait(longTimeMs);
    }
    void signalStop() override {
        CThread::signalStop();
        stopSignal_.set();
    }

private:
    void runImpl() override { function_(*this); }
    void onRunFinished() override {
        if (onFinished) onFinished();
    }
    void onThreadExit() override { ++exits; }

    Function function_;
    kel::CSignal stopSignal_;
};

using ThreadP = kel::P<CFunctionThread>;

TEST(Thread, IsNotAliveBeforeTheStart) {
    const ThreadP thread = new CFunctionThread([](CFunctionThread&) {});
    EXPECT_FALSE(thread->isAlive());
    EXPECT_EQ(thread->getID(), kel::CThread::ID());
    EXPECT_EQ(thread->getRunError(), nullptr);
    EXPECT_TRUE(thread->checkContinue());
    thread->join();
    thread->stop(true);
    EXPECT_FALSE(thread->checkContinue());
}

TEST(Thread, IsAliveFromTheStartUntilItsRunIsOver) {
    kel::CSignal mayEnd;
    const ThreadP thread = new CFunctionThread([&](CFunctionThread&) { mayEnd.wait(-1); });
    thread->start();
    EXPECT_TRUE(thread->isAlive());
    mayEnd.set();
    thread->join();
    EXPECT_FALSE(thread->isAlive());
}

TEST(Thread, KnowsItsIdentityWhileItIsAlive) {
    kel::CSignal mayEnd;
    kel::CThread::ID inside;
    kel::CThread::ID current;
    const ThreadP thread = new CFunctionThread([&](CFunctionThread& self) {
        inside = self.getID();
        current = kel::CThread::getCurrentID();
        mayEnd.wait(-1);
    });
    thread->start();
    const kel::CThread::ID afterStart = thread->getID();
    mayEnd.set();
    thread->join();
    EXPECT_NE(afterStart, kel::CThread::ID());
    EXPECT_NE(afterStart, kel::CThread::getCurrentID());
    EXPECT_EQ(inside, afterStart);
    EXPECT_EQ(current, afterStart);
    EXPECT_EQ(thread->getID(), kel::CThread::ID());
}

TEST(Thread, StartsOnlyOnce) {
    const ThreadP thread = new CFunctionThread([](CFunctionThread& self) { self.waitForStop(); });
    thread->setThreadName("kel.once");
    thread->start();
    const auto expectRefusal = [&] {
        try {
            thread->start();
            FAIL() << "the second start was not refused";
        } catch (const kel::CError& error) {
            EXPECT_EQ(error.getMessage(), "Thread kel.once was started before.");
        }
    };
    expectRefusal();
    EXPECT_TRUE(thread->isAlive());
    thread->stop(true);
    expectRefusal();
    EXPECT_FALSE(thread->isAlive());
}

TEST(Thread, MayBeStartedAgainAfterTheSystemHadNoThreadToGive) {
    bool ran = false;
    const ThreadP thread = new CFunctionThread([&](CFunctionThread&) { ran = true; });
    thread->setThreadName("kel.refused");
    try {
        const CNoMoreThreads noMoreThreads;
        thread->start();
        FAIL() << "the system had a thread after all";
    } catch (const kel::CError& error) {
        EXPECT_EQ(error.getMessage(), "Error starting thread kel.refused.");
        EXPECT_NE(error.getCause(), nullptr);
    }
    EXPECT_FALSE(thread->isAlive());
    EXPECT_EQ(thread->getID(), kel::CThread::ID());
    thread->join();
    thread->start();
    thread->join();
    EXPECT_TRUE(ran);
}

TEST(Thread, OfSeveralStartsAtOnceOneSucceeds) {
    for (int round = 0; round < 20; ++round) {
        std::atomic<int> runs{0};
        std::atomic<int> refused{0};
        const ThreadP thread = new CFunctionThread([&](CFunctionThread&) { ++runs; });
        std::vector<std::thread> starters;
        for (int i = 0; i < 4; ++i) {
            starters.emplace_back([&] {
                try {
                    thread->start();
                } catch (const kel::CError&) {
                    ++refused;
                }
                thread->join();
            });
        }
        for (std::thread& starter : starters) starter.join();
        EXPECT_EQ(runs, 1);
        EXPECT_EQ(refused, 3);
    }
}

TEST(Thread, RunsTheRunnableAndKeepsItAsLong) {
    struct CRunnable : kel::CBase, kel::IRunnable {
        CRunnable(bool& gone, int& runs) : gone_(gone), runs_(runs) {}
        ~CRunnable() override { gone_ = true; }
        void run() override { ++runs_; }
        bool& gone_;
        int& runs_;
    };
    bool gone = false;
    int runs = 0;
    kel::P<kel::CThread> thread = new kel::CThread(new CRunnable(gone, runs));
    thread->start();
    thread->join();
    EXPECT_EQ(runs, 1);
    EXPECT_FALSE(gone);
    thread = nullptr;
    EXPECT_TRUE(gone);
}

TEST(Thread, WithoutRunnableEndsAtOnce) {
    kel::CThread thread;
    thread.start();
    thread.join();
    EXPECT_FALSE(thread.isAlive());
    EXPECT_EQ(thread.getRunError(), nullptr);
}

TEST(Thread, StopEndsTheLoopAndWaits) {
    bool ended = false;
    const ThreadP thread = new CFunctionThread([&](CFunctionThread& self) {
        self.waitForStop();
        ended = true;
    });
    thread->start();
    EXPECT_TRUE(thread->checkContinue());
    thread->stop(true);
    EXPECT_TRUE(ended);
    EXPECT_FALSE(thread->checkContinue());
}

TEST(Thread, StopWithoutWaitingOnlyAsks) {
    kel::CSignal mayEnd;
    const ThreadP thread = new CFunctionThread([&](CFunctionThread& self) {
        self.waitForStop();
        mayEnd.wait(-1);
    });
    thread->start();
    thread->stop(false);
    EXPECT_FALSE(thread->checkContinue());
    EXPECT_TRUE(thread->isAlive());
    mayEnd.set();
    thread->join();
    EXPECT_FALSE(thread->isAlive());
}

TEST(Thread, StopBeforeTheStartIsFoundByTheRun) {
    bool continues = true;
    const ThreadP thread =
        new CFunctionThread([&](CFunctionThread& self) { continues = self.checkContinue(); });
    thread->stop(true);
    thread->start();
    thread->join();
    EXPECT_FALSE(continues);
}

TEST(Thread, MayBeStoppedBySeveralThreadsAtOnce) {
    for (int round = 0; round < 20; ++round) {
        std::atomic<bool> ended{false};
        std::atomic<int> sawTheEnd{0};
        const ThreadP thread = new CFunctionThread([&](CFunctionThread& self) {
            self.waitForStop();
            ended = true;
        });
        thread->start();
        std::vector<std::thread> stoppers;
        for (int i = 0; i < 4; ++i) {
            stoppers.emplace_back([&] {
                thread->stop(true);
                sawTheEnd += ended && !thread->isAlive() ? 1 : 0;
            });
        }
        for (std::thread& stopper : stoppers) stopper.join();
        EXPECT_EQ(sawTheEnd, 4);
    }
}

TEST(Thread, OnlySignalsWhenItStopsItself) {
    bool continues = true;
    bool aliveAfter = false;
    const ThreadP thread = new CFunctionThread([&](CFunctionThread& self) {
        self.stop(true);
        self.join();
        continues = self.checkContinue();
        aliveAfter = self.isAlive();
    });
    thread->start();
    thread->join();
    EXPECT_FALSE(continues);
    EXPECT_TRUE(aliveAfter);
}

TEST(Thread, CountsAsAliveUntilOnRunFinishedIsThrough) {
    std::vector<std::string> events;
    const ThreadP thread = new CFunctionThread([&](CFunctionThread&) { events.push_back("run"); });
    kel::CThread::ID finishedOn;
    thread->onFinished = [&] {
        events.push_back(thread->isAlive() ? "finished, alive" : "finished, not alive");
        finishedOn = kel::CThread::getCurrentID();
    };
    thread->start();
    thread->join();
    EXPECT_THAT(events, ElementsAre("run", "finished, alive"));
    EXPECT_NE(finishedOn, kel::CThread::getCurrentID());
    EXPECT_EQ(thread->exits, 0) << "onThreadExit is for the subclass to call";
}

TEST(Thread, ReportsAndKeepsAnErrorThatLeavesTheRun) {
    const CLogCapture log;
    bool finished = false;
    const ThreadP thread =
        new CFunctionThread([](CFunctionThread&) { throw kel::CError("No luck.", "test", 7); });
    thread->setThreadName("kel.worker");
    thread->onFinished = [&] { finished = true; };
    thread->start();
    thread->join();
    EXPECT_TRUE(finished);
    EXPECT_FALSE(thread->isAlive());
    const kel::PC<kel::CError> error = thread->getRunError();
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->getMessage(), "No luck.");
    EXPECT_EQ(error->getCodeDomain(), "test");
    EXPECT_EQ(error->getCode(), 7);
    EXPECT_THAT(log.getLines(), ElementsAre("error: Exception in thread kel.worker.: No luck."));
}

TEST(Thread, KeepsTheTypeOfTheErrorThatLeavesTheRun) {
    const CLogCapture log;
    const ThreadP thread =
        new CFunctionThread([](CFunctionThread&) { throw kel::CInvalidArgError("f", "Bad argument."); });
    thread->start();
    thread->join();
    const kel::PC<kel::CError> error = thread->getRunError();
    ASSERT_NE(error, nullptr);
    EXPECT_NE(dynamic_cast<const kel::CInvalidArgError*>(error.get()), nullptr);
}

TEST(Thread, ReportsExceptionsOfOtherKinds) {
    const CLogCapture log;
    const ThreadP standard =
        new CFunctionThread([](CFunctionThread&) { throw std::runtime_error("Standard."); });
    standard->start();
    standard->join();
    const ThreadP unknown = new CFunctionThread([](CFunctionThread&) { throw 42; });
    unknown->setThreadName("kel.unknown");
    unknown->start();
    unknown->join();
    ASSERT_NE(standard->getRunError(), nullptr);
    EXPECT_EQ(standard->getRunError()->getMessage(), "Standard.");
    ASSERT_NE(unknown->getRunError(), nullptr);
    EXPECT_EQ(unknown->getRunError()->getMessage(), "Unknown exception.");
    EXPECT_THAT(log.getLines(), ElementsAre("error: Exception in thread (unnamed).: Standard.",
                                            "error: Exception in thread kel.unknown.: Unknown exception."));
}

TEST(Thread, TreatsAnExceptionOfOnRunFinishedLikeOneOfTheRun) {
    const CLogCapture log;
    const ThreadP thread = new CFunctionThread([](CFunctionThread&) {});
    thread->setThreadName("kel.end");
    thread->onFinished = [] { throw kel::CError("Late."); };
    thread->start();
    thread->join();
    EXPECT_FALSE(thread->isAlive());
    ASSERT_NE(thread->getRunError(), nullptr);
    EXPECT_EQ(thread->getRunError()->getMessage(), "Late.");
    EXPECT_THAT(log.getLines(), ElementsAre("error: Exception in thread kel.end.: Late."));
}

TEST(Thread, KeepsTheFirstOfTwoErrorsAndReportsBoth) {
    const CLogCapture log;
    const ThreadP thread = new CFunctionThread([](CFunctionThread&) { throw kel::CError("First."); });
    thread->setThreadName("t");
    thread->onFinished = [] { throw kel::CError("Second."); };
    thread->start();
    thread->join();
    ASSERT_NE(thread->getRunError(), nullptr);
    EXPECT_EQ(thread->getRunError()->getMessage(), "First.");
    EXPECT_THAT(log.getLines(), ElementsAre("error: Exception in thread t.: First.",
                                            "error: Exception in thread t.: Second."));
}

TEST(Thread, StopsWhenItsLastReferenceGoes) {
    struct CWorker : kel::CThread { // no destructor of its own: uses none of its members while it is stopped
        explicit CWorker(std::atomic<bool>& stopped) : stopped_(stopped) {}
        void runImpl() override {
            while (checkContinue()) kel::threadYield(true);
            stopped_ = true;
        }
        std::atomic<bool>& stopped_;
    };
    std::atomic<bool> stopped{false};
    kel::P<kel::CThread> worker = new CWorker(stopped);
    worker->start();
    worker = nullptr;
    EXPECT_TRUE(stopped);
}

TEST(Thread, MayBeLetGoOfWithoutAStart) {
    bool gone = false;
    ThreadP thread = new CFunctionThread([](CFunctionThread&) {});
    thread->onGone = [&] { gone = true; };
    thread = nullptr;
    EXPECT_TRUE(gone);
}

TEST(Thread, MayBeLetGoOfAfterItsEnd) {
    kel::CSignal finished;
    bool gone = false;
    ThreadP thread = new CFunctionThread([](CFunctionThread&) {}, false);
    thread->onFinished = [&] { finished.set(); };
    thread->onGone = [&] { gone = true; };
    thread->start();
    EXPECT_TRUE(finished.wait(longTimeMs));
    thread = nullptr;
    EXPECT_TRUE(gone);
}

TEST(Thread, LeavesTheStopToItsOwnerIfToldSo) {
    std::vector<std::string> events;
    ThreadP thread = new CFunctionThread(
        [&](CFunctionThread& self) {
            self.waitForStop();
            events.push_back("stopped");
        },
        false);
    thread->onGone = [&] { events.push_back("gone"); };
    thread->start();
    thread = nullptr;
    EXPECT_THAT(events, ElementsAre("stopped", "gone")) << "the subclass's destructor stops it";
}

TEST(Thread, WorksWithAutomaticStorage) {
    bool ended = false;
    {
        CFunctionThread thread([&](CFunctionThread& self) {
            self.waitForStop();
            ended = true;
        });
        thread.start();
    }
    EXPECT_TRUE(ended);
}

TEST(Thread, TakesReferencesToItselfInItsRun) {
    std::atomic<int> gone{0};
    for (int round = 0; round < 50; ++round) {
        ThreadP thread = new CFunctionThread([](CFunctionThread& self) {
            // Given back while the owner's last reference goes, too.
            while (self.checkContinue()) const ThreadP reference = &self;
            const ThreadP reference = &self;
        });
        thread->onGone = [&] { ++gone; };
        thread->start();
        thread = nullptr;
    }
    // Where the thread's own reference was the last one the object went on the thread: a later start waits
    // for it.
    const ThreadP next = new CFunctionThread([](CFunctionThread&) {});
    next->start();
    for (int waitedMs = 0; gone < 50 && waitedMs < longTimeMs; ++waitedMs) kel::threadYield(true);
    EXPECT_EQ(gone, 50);
}

TEST(Thread, SurvivesTheReleaseOfItsLastReferenceOnItself) {
    kel::CSignal owned;
    kel::CSignal gone;
    bool continuesBefore = false;
    bool continuesAfter = true;
    bool nameIsThere = false;
    kel::CThread::ID goneOn;
    ThreadP* handedOver = nullptr;
    ThreadP thread = new CFunctionThread([&](CFunctionThread& self) {
        owned.wait(-1);
        continuesBefore = self.checkContinue();
        delete handedOver;
        continuesAfter = self.checkContinue();
        nameIsThere = self.getThreadName() == "kel.selfless";
    });
    thread->setThreadName("kel.selfless");
    thread->onGone = [&] {
        goneOn = kel::CThread::getCurrentID();
        gone.set();
    };
    thread->start();
    const kel::CThread::ID id = thread->getID();
    handedOver = new ThreadP(std::move(thread));
    owned.set();
    ASSERT_TRUE(gone.wait(longTimeMs));
    EXPECT_TRUE(continuesBefore);
    EXPECT_FALSE(continuesAfter) << "nobody else could stop it any more";
    EXPECT_TRUE(nameIsThere) << "the object lives until the run is over";
    EXPECT_EQ(goneOn, id);
}

TEST(Thread, MayLetGoOfItsLastReferenceInOnRunFinished) {
    kel::CSignal owned;
    kel::CSignal gone;
    ThreadP* handedOver = nullptr;
    ThreadP thread = new CFunctionThread([&](CFunctionThread&) { owned.wait(-1); });
    thread->onFinished = [&] { delete handedOver; };
    thread->onGone = [&] { gone.set(); };
    thread->start();
    handedOver = new ThreadP(std::move(thread));
    owned.set();
    EXPECT_TRUE(gone.wait(longTimeMs));
}

/// Keeps the object until after the thread's function. (A thread_local object does not serve: MinGW frees its
/// memory before its destructor runs.)
void keepUntilTheEndOfTheThread(CFunctionThread* thread) {
    static const pthread_key_t key = [] {
        pthread_key_t newKey;
        EXPECT_EQ(::pthread_key_create(&newKey, [](void* kept) { delete static_cast<ThreadP*>(kept); }), 0);
        return newKey;
    }();
    EXPECT_EQ(::pthread_setspecific(key, new ThreadP(thread)), 0);
}

TEST(Thread, MayLetGoOfItsLastReferenceAfterItsRun) {
    kel::CSignal kept;
    kel::CSignal owned;
    kel::CSignal gone;
    ThreadP thread = new CFunctionThread([&](CFunctionThread& self) {
        keepUntilTheEndOfTheThread(&self);
        kept.set();
        owned.wait(-1);
    });
    thread->onGone = [&] { gone.set(); };
    thread->start();
    kept.wait(-1);
    thread = nullptr;
    owned.set();
    EXPECT_TRUE(gone.wait(longTimeMs));
}

TEST(ThreadDeathTest, ProcessEndWaitsForARunWithoutOwner) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto endProcess = [] {
        static kel::CSignal handedOver;
        static kel::CSignal letGo;
        static ThreadP thread = new CFunctionThread([](CFunctionThread& self) {
            handedOver.wait(-1);
            thread = nullptr;
            letGo.set();
            self.waitForStop();
            // Time for an end of the process that does not wait to be through before.
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            std::fputs("run over\n", stderr);
        });
        thread->onGone = [] { std::fputs("gone\n", stderr); };
        thread->start();
        handedOver.set();
        letGo.wait(-1);
        std::exit(0);
    };
    EXPECT_EXIT(endProcess(), testing::ExitedWithCode(0), testing::Eq("run over\ngone\n"));
}

std::string runAndGetSystemName(const char* name) {
    std::string systemName;
    const ThreadP thread = new CFunctionThread([&](CFunctionThread&) { systemName = getSystemThreadName(); });
    thread->setThreadName(name);
    thread->start();
    thread->join();
    return systemName;
}

TEST(Thread, ShowsItsNameToTheSystem) {
    EXPECT_EQ(runAndGetSystemName("kel.worker"), "kel.worker");
    EXPECT_EQ(runAndGetSystemName("kel.w\xC3\xB6rker"), "kel.w\xC3\xB6rker");
}

TEST(Thread, CutsANameTooLongForTheSystemBetweenCharacters) {
    const auto expectAtMost15Bytes = [](const std::string& name, const std::string& cut) {
        EXPECT_EQ(runAndGetSystemName(name.c_str()), getThreadNameLimit() == 15 ? cut : name);
    };
    expectAtMost15Bytes("123456789012345", "123456789012345");
    expectAtMost15Bytes("1234567890123456", "123456789012345");
    expectAtMost15Bytes("12345678901234\xC3\xB6", "12345678901234");
    expectAtMost15Bytes("1234567890123\xC3\xB6\xC3\xB6", "1234567890123\xC3\xB6");
    expectAtMost15Bytes("123456789012\xF0\x9F\x8E\xB5", "123456789012");
}

TEST(Thread, WithoutANameKeepsTheOneOfTheSystem) {
    EXPECT_EQ(runAndGetSystemName(""), getSystemThreadName());
}

TEST(Thread, KeepsTheWholeName) {
    kel::CThread thread;
    EXPECT_EQ(thread.getThreadName(), "");
    thread.setThreadName("kel.aNameLongerThanTheSystemTakes");
    EXPECT_EQ(thread.getThreadName(), "kel.aNameLongerThanTheSystemTakes");
}

std::vector<int> recordedSleeps;
void recordSleep(int milliseconds) { recordedSleeps.push_back(milliseconds); }
void ignoreSleep(int) {}

TEST(Thread, SleepsForTheGivenTime) {
    const auto before = std::chrono::steady_clock::now();
    kel::CThread::sleep(20);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(20));
}

TEST(Thread, SleepsThroughTheFunctionInItsPlace) {
    recordedSleeps.clear();
    EXPECT_EQ(kel::CThread::setSleepFunction(&recordSleep), nullptr);
    kel::CThread::sleep(3'600'000);
    kel::CThread::sleep(1);
    kel::CThread::sleep(0);
    kel::CThread::sleep(-5);
    kel::threadYield(true);
    kel::threadYield(false);
    EXPECT_EQ(kel::CThread::setSleepFunction(&ignoreSleep), &recordSleep);
    kel::CThread::sleep(3'600'000);
    EXPECT_EQ(kel::CThread::setSleepFunction(nullptr), &ignoreSleep);
    EXPECT_THAT(recordedSleeps, ElementsAre(3'600'000, 1));
    recordedSleeps.clear();
    kel::CThread::sleep(1);
    EXPECT_THAT(recordedSleeps, IsEmpty());
}

TEST(Thread, YieldsBrieflyOrForAMillisecond) {
    kel::threadYield(false);
    const auto before = std::chrono::steady_clock::now();
    kel::threadYield(true);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(1));
}

} // namespace
