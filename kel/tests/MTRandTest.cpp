#include "kel/MTRand.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>

namespace {

TEST(MTRand, IsTheStandard64BitMersenneTwister) {
    kel::CMTRand generator(5489); // the generator's reference seed, for which the 10000th value is known
    for (int i = 1; i < 10'000; ++i) (void)generator.rand64();
    EXPECT_EQ(generator.rand64(), 9981545732273789042U);
}

TEST(MTRand, RepeatsTheSequenceOfASeed) {
    kel::CMTRand first(42);
    kel::CMTRand second(42);
    for (int i = 0; i < 1000; ++i) ASSERT_EQ(first.rand64(), second.rand64()) << "value " << i;
}

TEST(MTRand, StartsTheSequenceOfASeedAnew) {
    kel::CMTRand generator(1);
    const kel::uint64 first = generator.rand64();
    (void)generator.rand64();
    generator.setSeed(1);
    EXPECT_EQ(generator.rand64(), first);
    generator.setSeed(2);
    EXPECT_NE(generator.rand64(), first);
}

TEST(MTRand, StartsEachGeneratorElsewhere) {
    std::set<kel::uint64> values;
    for (int i = 0; i < 1000; ++i) values.insert(kel::CMTRand().rand64());
    EXPECT_EQ(values.size(), 1000U);
}

TEST(MTRand, UsesAllBits) {
    kel::CMTRand generator;
    kel::uint64 ones = 0;
    kel::uint64 zeros = 0;
    for (int i = 0; i < 1000; ++i) {
        const kel::uint64 value = generator.rand64();
        ones |= value;
        zeros |= ~value;
    }
    EXPECT_EQ(ones, UINT64_MAX);
    EXPECT_EQ(zeros, UINT64_MAX);
}

TEST(MTRand, GlobalGeneratorAndItsMutexAreOneForAll) {
    kel::CMTRand* generator = nullptr;
    kel::CMutex* mutex = nullptr;
    std::thread([&] {
        generator = &kel::CMTRand::getGlobal();
        mutex = &kel::CMTRand::getGlobalMutex();
    }).join();
    EXPECT_EQ(generator, &kel::CMTRand::getGlobal());
    EXPECT_EQ(mutex, &kel::CMTRand::getGlobalMutex());
    EXPECT_NE(mutex, &kel::getGlobalMutex()) << "the makers of process-wide objects must not wait for it";
}

TEST(MTRand, GlobalGeneratorTakesASeedForATest) {
    kel::CMutexLock lock(kel::CMTRand::getGlobalMutex());
    kel::CMTRand::getGlobal().setSeed(7);
    EXPECT_EQ(kel::CMTRand::getGlobal().rand64(), kel::CMTRand(7).rand64());
    kel::CMTRand::getGlobal() = kel::CMTRand();
}

} // namespace
