#include "kel/Base.h"
#include "kel/P.h"

#include <gtest/gtest.h>

#include <thread>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

namespace {

using kel::CBase;
using kel::IBase;
using kel::P;
using kel::PC;

/// Counts how many of its kind are alive.
class CCounted : public CBase {
public:
    explicit CCounted(int& alive, int value = 0) : number(value), alive_(&alive) { ++*alive_; }
    CCounted(const CCounted& other) : CBase(other), number(other.number), alive_(other.alive_) { ++*alive_; }
    CCounted& operator=(const CCounted& other) = default;
    ~CCounted() override { --*alive_; }

    int number;

private:
    int* alive_;
};

class CDerived : public CCounted {
public:
    using CCounted::CCounted;
};

class IReader : public virtual IBase {
public:
    virtual int read() = 0;
};

class IWriter : public virtual IBase {
public:
    virtual void write(int value) = 0;
};

class CReaderWriter : public CCounted, public IReader, public IWriter {
public:
    using CCounted::CCounted;
    int read() override { return number; }
    void write(int value) override { number = value; }
};

/// Notes instead of deleting itself.
class CKept : public CBase {
public:
    int deletions = 0;

protected:
    void deleteThis() noexcept override { ++deletions; }
};

TEST(RefCount, DeletesTheObjectWithTheLastReference) {
    int alive = 0;
    auto* object = new CCounted(alive);
    object->addRef();
    object->addRef();
    object->release();
    EXPECT_EQ(alive, 1);
    object->release();
    EXPECT_EQ(alive, 0);
}

TEST(RefCount, CallsDeleteThisOnlyWhenTheCountComesBackToZero) {
    CKept kept;
    kept.addRef();
    kept.addRef();
    kept.release();
    EXPECT_EQ(kept.deletions, 0);
    kept.release();
    EXPECT_EQ(kept.deletions, 1);
}

TEST(RefCount, CountsThroughConstAndThroughInterfaces) {
    int alive = 0;
    const CCounted* object = new CCounted(alive);
    object->addRef();
    const IBase* base = object;
    base->addRef();
    object->release();
    EXPECT_EQ(alive, 1);
    base->release();
    EXPECT_EQ(alive, 0);
}

TEST(RefCount, StartsAnewInACopy) {
    CKept original;
    original.addRef();
    CKept copy(original);
    copy.addRef();
    copy.release();
    EXPECT_EQ(copy.deletions, 1);
    original.release();
    EXPECT_EQ(original.deletions, 1);
}

TEST(RefCount, StaysAsItIsUnderAssignment) {
    CKept target;
    target.addRef();
    target.addRef();
    const CKept source;
    target = source;
    target.release();
    EXPECT_EQ(target.deletions, 0);
    target.release();
    EXPECT_EQ(target.deletions, 1);
}

TEST(RefCount, LeavesAnAutomaticObjectAloneThatNobodyRefersTo) {
    int alive = 0;
    {
        CCounted object(alive);
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST(RefCount, CountsCorrectlyWithSeveralThreads) {
    constexpr int threadCount = 4;
    constexpr int rounds = 20000;
    CKept kept;
    kept.addRef();
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i)
        threads.emplace_back([&kept] {
            for (int round = 0; round < rounds; ++round) {
                const P<CKept> mine = &kept;
                const PC<CBase> second = mine;
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(kept.deletions, 0);
    kept.release();
    EXPECT_EQ(kept.deletions, 1);
}

TEST(RefCount, LetsAnyThreadBeTheLast) {
    constexpr int threadCount = 4;
    for (int round = 0; round < 200; ++round) {
        int alive = 0;
        P<CCounted> shared = new CCounted(alive, round);
        std::vector<std::thread> threads;
        for (int i = 0; i < threadCount; ++i)
            threads.emplace_back([mine = shared, round]() mutable {
                EXPECT_EQ(mine->number, round);
                mine = nullptr;
            });
        shared = nullptr;
        for (std::thread& thread : threads) thread.join();
        ASSERT_EQ(alive, 0);
    }
}

TEST(P, IsNullByDefault) {
    const P<CCounted> pointer;
    const P<CCounted> fromNull = nullptr;
    EXPECT_EQ(pointer.get(), nullptr);
    EXPECT_EQ(fromNull.get(), nullptr);
    EXPECT_FALSE(pointer);
}

TEST(P, KeepsItsObjectAlive) {
    int alive = 0;
    {
        const P<CCounted> pointer = new CCounted(alive, 7);
        EXPECT_EQ(alive, 1);
        EXPECT_EQ(pointer->number, 7);
        EXPECT_EQ((*pointer).number, 7);
        const CCounted* plain = pointer;
        EXPECT_EQ(plain, pointer.get());
    }
    EXPECT_EQ(alive, 0);
}

TEST(P, SharesItsObjectWithItsCopies) {
    int alive = 0;
    P<CCounted> first = new CCounted(alive);
    P<CCounted> second = first;
    EXPECT_EQ(first.get(), second.get());
    first = nullptr;
    EXPECT_EQ(alive, 1);
    second = nullptr;
    EXPECT_EQ(alive, 0);
}

TEST(P, IsNullAfterBeingMovedFrom) {
    int alive = 0;
    P<CCounted> first = new CCounted(alive);
    const P<CCounted> second = std::move(first);
    EXPECT_EQ(first.get(), nullptr); // NOLINT(bugprone-use-after-move)
    EXPECT_NE(second.get(), nullptr);
    EXPECT_EQ(alive, 1);
}

TEST(P, ReleasesTheOldObjectWhenAssigned) {
    int alive = 0;
    P<CCounted> pointer = new CCounted(alive, 1);
    pointer = new CCounted(alive, 2);
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(pointer->number, 2);
}

TEST(P, SurvivesAssignmentToItself) {
    int alive = 0;
    P<CCounted> pointer = new CCounted(alive, 3);
    const P<CCounted>& same = pointer;
    pointer = same;
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(pointer->number, 3);
    pointer = pointer.get();
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(pointer->number, 3);
}

TEST(P, ConvertsToBasesAndToConst) {
    int alive = 0;
    P<CDerived> derived = new CDerived(alive, 4);
    const P<CCounted> base = derived;
    const PC<CDerived> constant = derived;
    const PC<CBase> constantBase = std::move(derived);
    EXPECT_EQ(derived.get(), nullptr); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(base->number, 4);
    EXPECT_EQ(constant->number, 4);
    EXPECT_EQ(constantBase.get(), base.get());
    EXPECT_EQ(alive, 1);
}

TEST(P, DoesNotConvertFromConstOrToDerived) {
    EXPECT_FALSE((std::is_convertible_v<PC<CCounted>, P<CCounted>>));
    EXPECT_FALSE((std::is_convertible_v<P<CCounted>, P<CDerived>>));
}

TEST(P, HoldsOneCountForAllInterfacesOfAnObject) {
    int alive = 0;
    P<IReader> reader;
    {
        const P<CReaderWriter> object = new CReaderWriter(alive);
        const P<IWriter> writer = object;
        reader = object;
        writer->write(11);
    }
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(reader->read(), 11);
    reader = nullptr;
    EXPECT_EQ(alive, 0);
}

TEST(P, HandsItsReferenceOverWhenDetached) {
    int alive = 0;
    P<CCounted> pointer = new CCounted(alive);
    const CCounted* object = pointer.detach();
    EXPECT_EQ(pointer.get(), nullptr);
    EXPECT_EQ(alive, 1);
    object->release();
    EXPECT_EQ(alive, 0);
}

TEST(P, ComparesByAddress) {
    int alive = 0;
    const P<CCounted> first = new CCounted(alive, 1);
    const P<CCounted> second = new CCounted(alive, 1);
    const P<CCounted> firstAgain = first;
    EXPECT_TRUE(first == firstAgain);
    EXPECT_TRUE(first != second);
    EXPECT_TRUE(first != nullptr);
}

TEST(P, CanBeAKeyOfAHashedSet) {
    int alive = 0;
    const P<CCounted> first = new CCounted(alive);
    const P<CCounted> second = new CCounted(alive);
    std::unordered_set<P<CCounted>> set;
    set.insert(first);
    set.insert(second);
    set.insert(first);
    EXPECT_EQ(set.size(), 2u);
    EXPECT_EQ(std::hash<P<CCounted>>()(first), std::hash<CCounted*>()(first.get()));
}

} // namespace
