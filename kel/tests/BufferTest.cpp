#include "kel/Buffer.h"
#include "kel/P.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace {

using kel::P;
using kel::TBuffer;

using ByteBuffer = TBuffer<unsigned char>;

ByteBuffer makeBuffer(const std::string& text) {
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

std::string toText(const ByteBuffer& buffer) { return {buffer.begin(), buffer.end()}; }

TEST(Buffer, IsEmptyAndWithoutMemoryAtFirst) {
    const ByteBuffer buffer;
    EXPECT_EQ(buffer.getData(), nullptr);
    EXPECT_EQ(buffer.getUsed(), 0u);
    EXPECT_EQ(buffer.getCapacity(), 0u);
    EXPECT_TRUE(buffer.isEmpty());
    EXPECT_EQ(buffer.begin(), buffer.end());
}

TEST(Buffer, CopiesTheValuesItIsMadeFrom) {
    std::vector<int> values(1000);
    std::iota(values.begin(), values.end(), -500);
    const TBuffer<int> buffer(values.data(), values.size());
    EXPECT_EQ(std::vector<int>(buffer.begin(), buffer.end()), values);
    EXPECT_NE(buffer.getData(), values.data());
}

TEST(Buffer, AppendsBehindTheUsedValues) {
    ByteBuffer buffer = makeBuffer("abc");
    const unsigned char tail[] = {'d', '\0', 'e'};
    buffer.append(tail, sizeof tail);
    EXPECT_EQ(toText(buffer), std::string("abcd\0e", 6));
    EXPECT_FALSE(buffer.isEmpty());
    buffer.append(nullptr, 0);
    EXPECT_EQ(buffer.getUsed(), 6u);
}

TEST(Buffer, OffersItsValuesByIndex) {
    ByteBuffer buffer = makeBuffer("abc");
    buffer[1] = 'x';
    const ByteBuffer& constant = buffer;
    EXPECT_EQ(constant[0], 'a');
    EXPECT_EQ(constant[1], 'x');
    EXPECT_EQ(constant.getData()[2], 'c');
}

TEST(Buffer, FillsUpWithZerosWhenTheUsedLengthGrows) {
    ByteBuffer buffer = makeBuffer("abcdef");
    buffer.setUsed(2);
    EXPECT_EQ(toText(buffer), "ab");
    buffer.setUsed(4);
    EXPECT_EQ(toText(buffer), std::string("ab\0\0", 4));
    buffer.setUsed(1000);
    EXPECT_EQ(toText(buffer), "ab" + std::string(998, '\0'));
}

TEST(Buffer, KeepsItsMemoryWhenItShrinks) {
    ByteBuffer buffer = makeBuffer(std::string(100, 'x'));
    const unsigned char* const data = buffer.getData();
    const std::size_t capacity = buffer.getCapacity();
    buffer.setUsed(3);
    EXPECT_EQ(buffer.getCapacity(), capacity);
    buffer.clear();
    EXPECT_TRUE(buffer.isEmpty());
    EXPECT_EQ(buffer.getCapacity(), capacity);
    buffer.setUsed(100);
    EXPECT_EQ(buffer.getData(), data);
    EXPECT_EQ(toText(buffer), std::string(100, '\0'));
}

TEST(Buffer, ReservesWithoutChangingWhatIsUsed) {
    ByteBuffer buffer = makeBuffer("abc");
    buffer.reserve(500);
    EXPECT_GE(buffer.getCapacity(), 500u);
    EXPECT_EQ(toText(buffer), "abc");
    const unsigned char* const data = buffer.getData();
    buffer.reserve(10);
    const std::string text(497, 'y');
    buffer.append(reinterpret_cast<const unsigned char*>(text.data()), text.size());
    EXPECT_EQ(buffer.getData(), data);
    EXPECT_EQ(toText(buffer), "abc" + text);
}

TEST(Buffer, GrowsGeometrically) {
    ByteBuffer buffer;
    int growths = 0;
    for (int i = 0; i < 100000; ++i) {
        const std::size_t before = buffer.getCapacity();
        const unsigned char value = static_cast<unsigned char>(i);
        buffer.append(&value, 1);
        if (buffer.getCapacity() != before) ++growths;
    }
    EXPECT_LT(growths, 40);
    for (std::size_t i = 0; i < buffer.getUsed(); ++i) ASSERT_EQ(buffer[i], static_cast<unsigned char>(i));
}

TEST(Buffer, RefusesImpossibleSizes) {
    TBuffer<int> buffer;
    EXPECT_THROW(buffer.reserve(std::numeric_limits<std::size_t>::max()), std::bad_alloc);
    EXPECT_THROW(buffer.setUsed(std::numeric_limits<std::size_t>::max() / sizeof(int)), std::bad_alloc);
    const int value = 5;
    buffer.append(&value, 1);
    EXPECT_THROW(buffer.append(&value, std::numeric_limits<std::size_t>::max()), std::bad_alloc);
    EXPECT_EQ(std::vector<int>(buffer.begin(), buffer.end()), std::vector<int>{5});
}

TEST(Buffer, CopiesItsValuesIntoACopy) {
    const ByteBuffer original = makeBuffer("abc");
    ByteBuffer copy(original);
    copy[0] = 'x';
    EXPECT_EQ(toText(original), "abc");
    EXPECT_EQ(toText(copy), "xbc");
    const ByteBuffer copyOfNothing((ByteBuffer()));
    EXPECT_TRUE(copyOfNothing.isEmpty());
}

TEST(Buffer, HandsItsMemoryOverWhenMoved) {
    ByteBuffer original = makeBuffer("abc");
    const unsigned char* const data = original.getData();
    const ByteBuffer moved(std::move(original));
    EXPECT_EQ(moved.getData(), data);
    EXPECT_EQ(toText(moved), "abc");
    EXPECT_EQ(original.getData(), nullptr); // NOLINT(bugprone-use-after-move)
    EXPECT_TRUE(original.isEmpty());
    EXPECT_EQ(original.getCapacity(), 0u);
}

TEST(Buffer, TakesOverByAssignment) {
    const ByteBuffer source = makeBuffer("source");
    ByteBuffer target = makeBuffer("target of other length");
    target = source;
    EXPECT_EQ(toText(target), "source");
    EXPECT_EQ(toText(source), "source");
    target = makeBuffer("moved");
    EXPECT_EQ(toText(target), "moved");
    const ByteBuffer& same = target;
    target = same;
    EXPECT_EQ(toText(target), "moved");
}

TEST(Buffer, CanBeShared) {
    const P<ByteBuffer> first = new ByteBuffer(makeBuffer("abc"));
    const P<ByteBuffer> second = first;
    second->setUsed(1);
    EXPECT_EQ(toText(*first), "a");
}

TEST(Buffer, HoldsStructures) {
    struct Point {
        int x;
        double y;
    };
    TBuffer<Point> buffer;
    const Point points[] = {{1, 1.5}, {2, 2.5}};
    buffer.append(points, 2);
    buffer.setUsed(3);
    EXPECT_EQ(buffer[1].x, 2);
    EXPECT_EQ(buffer[1].y, 2.5);
    EXPECT_EQ(buffer[2].x, 0);
    EXPECT_EQ(buffer[2].y, 0.0);
}

} // namespace
