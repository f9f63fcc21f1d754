#include "kel/SafeGlobal.h"

#include "kel/Error.h"
#include "kel/Log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {

using testing::Eq;
using testing::ExitedWithCode;

TEST(SafeGlobalGuard, LetsTheFirstCallerBuild) {
    kel::CSafeGlobalGuard guard;
    EXPECT_TRUE(guard.beginInit());
    EXPECT_FALSE(guard.beginInit());
    EXPECT_FALSE(guard.beginInit());
}

TEST(SafeGlobalGuard, LetsOneOfManyThreadsBuild) {
    for (int round = 0; round < 50; ++round) {
        kel::CSafeGlobalGuard guard;
        std::atomic<int> builders{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) threads.emplace_back([&] { builders += guard.beginInit() ? 1 : 0; });
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(builders, 1);
    }
}

TEST(SafeGlobalDisposer, IsOneForAll) {
    kel::CSafeGlobalDisposer* fromOtherThread = nullptr;
    std::thread([&] { fromOtherThread = &kel::CSafeGlobalDisposer::get(); }).join();
    EXPECT_EQ(&kel::CSafeGlobalDisposer::get(), fromOtherThread);
}

// Each of these ends a process of its own and compares all that it wrote on standard error.
class SafeGlobalDisposerDeathTest : public testing::Test {
protected:
    SafeGlobalDisposerDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

void add(kel::CSafeGlobalDisposer::DisposeFunc function) {
    kel::CSafeGlobalDisposer::get().addDisposeFunc(function);
}

void write(const char* text) { std::fputs(text, stderr); }

void endAfterThreeAdditions() {
    add([] { write("first\n"); });
    add([] { write("second\n"); });
    add([] { write("third\n"); });
    write("end\n");
    std::exit(0);
}

TEST_F(SafeGlobalDisposerDeathTest, CallsLaterAdditionsFirst) {
    EXPECT_EXIT(endAfterThreeAdditions(), ExitedWithCode(0), Eq("end\nthird\nsecond\nfirst\n"));
}

void endWithAdditionsMeanwhile() {
    add([] { write("first\n"); });
    add([] {
        add([] {
            add([] { write("inner\n"); });
            write("outer\n");
        });
        write("second\n");
    });
    std::exit(0);
}

TEST_F(SafeGlobalDisposerDeathTest, CallsWhatIsAddedMeanwhile) {
    EXPECT_EXIT(endWithAdditionsMeanwhile(), ExitedWithCode(0), Eq("second\nouter\ninner\nfirst\n"));
}

void endWithExceptions() {
    add([] { write("still called\n"); });
    add([] { throw 42; });
    add([] { throw kel::CError("Cannot let go."); });
    std::exit(0);
}

TEST_F(SafeGlobalDisposerDeathTest, ReportsExceptionsAndGoesOn) {
    EXPECT_EXIT(endWithExceptions(), ExitedWithCode(0),
                Eq("error: Exception in dispose function (ignored).: Cannot let go.\n"
                   "error: Exception in dispose function (ignored).: Unknown exception.\n"
                   "still called\n"));
}

struct CTellsItsEnd {
    explicit CTellsItsEnd(const char* text) : text_(text) {}
    ~CTellsItsEnd() { write(text_); }
    const char* text_;
};

void endWithStaticObjects() {
    static const CTellsItsEnd before("object made before the addition\n");
    add([] { write("function\n"); });
    static const CTellsItsEnd after("object made after the addition\n");
    std::exit(0);
}

TEST_F(SafeGlobalDisposerDeathTest, CallsBeforeTheEndOfObjectsThatWereThereAtTheAddition) {
    EXPECT_EXIT(endWithStaticObjects(), ExitedWithCode(0),
                Eq("object made after the addition\nfunction\nobject made before the addition\n"));
}

struct CAddsAtItsEnd {
    ~CAddsAtItsEnd() {
        write("destructor\n");
        add([] { write("late addition\n"); });
    }
};

void endWithAnAdditionByADestructor() {
    static const CAddsAtItsEnd object;
    add([] { write("early addition\n"); });
    std::exit(0);
}

TEST_F(SafeGlobalDisposerDeathTest, CallsWhatTheDestructorOfAStaticObjectAdds) {
    EXPECT_EXIT(endWithAnAdditionByADestructor(), ExitedWithCode(0),
                Eq("early addition\ndestructor\nlate addition\n"));
}

void endAtOnce() {
    add([] { write("never called\n"); });
    std::_Exit(3);
}

TEST_F(SafeGlobalDisposerDeathTest, CallsNothingWhenTheProcessIsCutShort) {
    EXPECT_EXIT(endAtOnce(), ExitedWithCode(3), Eq(""));
}

} // namespace
