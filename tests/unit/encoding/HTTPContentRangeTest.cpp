#include "vantra/HTTPContentRange.h"

#include "PlainError.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <tuple>
#include <utility>

namespace {

using encodingtest::expectPlainError;
using kel::int64;
using kel::P;
using kel::String;
using vantra::CHTTPContentRange;

using Values = std::tuple<String, int64, int64, int64>;

Values valuesOf(const CHTTPContentRange& range) {
    return {range.getUnit(), range.getFirst(), range.getLast(), range.getEntireContentSize()};
}

Values parse(const String& value) { return valuesOf(*CHTTPContentRange::parse(value)); }

void expectRejected(const String& value, const String& message) {
    expectPlainError([&] { static_cast<void>(CHTTPContentRange::parse(value)); }, message);
}

void expectInvalid(const String& value) {
    expectRejected(value, "Invalid HTTP Content-Range header: " + value);
}

TEST(HTTPContentRange, HoldsPositionsAndSize) {
    EXPECT_EQ(parse("bytes 0-499/1234"), Values("bytes", 0, 499, 1234));
}

TEST(HTTPContentRange, MayLackTheSize) { EXPECT_EQ(parse("Bytes 500-999/*"), Values("bytes", 500, 999, -1)); }

TEST(HTTPContentRange, MayLackThePositions) {
    EXPECT_EQ(parse("bytes */1234"), Values("bytes", -1, -1, 1234));
    EXPECT_EQ(parse("bytes */*"), Values("bytes", -1, -1, -1));
}

TEST(HTTPContentRange, NamesItsUnitInLowerCase) {
    EXPECT_EQ(parse("BYTES 0-1/2"), Values("bytes", 0, 1, 2));
    EXPECT_EQ(parse("X-Items/2 3-4/5"), Values("x-items/2", 3, 4, 5));
}

TEST(HTTPContentRange, IgnoresWhiteSpaceAroundTheValue) {
    EXPECT_EQ(parse("  bytes 0-499/1234 "), Values("bytes", 0, 499, 1234));
    EXPECT_EQ(parse("\tbytes 0-499/*\r\n"), Values("bytes", 0, 499, -1));
}

TEST(HTTPContentRange, DoesNotCompareItsNumbers) {
    EXPECT_EQ(parse("bytes 9-3/5"), Values("bytes", 9, 3, 5));
    EXPECT_EQ(parse("bytes 0-99/5"), Values("bytes", 0, 99, 5));
}

TEST(HTTPContentRange, TakesNumbersOf64Bits) {
    EXPECT_EQ(parse("bytes 0-9223372036854775806/9223372036854775807"),
              Values("bytes", 0, INT64_MAX - 1, INT64_MAX));
    EXPECT_EQ(parse("bytes 4294967296-4294967297/4294967298"),
              Values("bytes", 4294967296, 4294967297, 4294967298));
}

TEST(HTTPContentRange, TakesEveryIntegerForANumber) {
    EXPECT_EQ(parse("bytes +1-+2/+3"), Values("bytes", 1, 2, 3));
    EXPECT_EQ(parse("bytes 007-008/009"), Values("bytes", 7, 8, 9));
    EXPECT_EQ(parse("bytes 1--2/-3"), Values("bytes", 1, -2, -3));
}

TEST(HTTPContentRange, MustHaveABlankBehindTheUnit) {
    expectInvalid("0-499/1234");
    expectInvalid("bytes=0-499/1234");
    expectInvalid("bytes\t0-499/1234");
    expectInvalid("");
}

TEST(HTTPContentRange, MustHaveASlashBehindThePositions) {
    expectInvalid("bytes 0-499");
    expectInvalid("bytes/ 0-499");
}

TEST(HTTPContentRange, MustHaveADashOrAnAsteriskForPositions) {
    expectInvalid("bytes x/1234");
    expectInvalid("bytes /1234");
    expectInvalid("bytes **/1234");
    expectInvalid("bytes  */1234");
    expectInvalid("bytes 499/1234");
}

TEST(HTTPContentRange, LooksForTheDashBeforeTheSlashOnly) {
    EXPECT_EQ(parse("bytes */-5"), Values("bytes", -1, -1, -5));
    EXPECT_EQ(parse("b-y 1-2/3"), Values("b-y", 1, 2, 3));
    expectInvalid("bytes 1/2-3");
}

TEST(HTTPContentRange, QuotesARejectedValueTrimmed) {
    expectRejected(" \t bytes 0-499 \r\n", "Invalid HTTP Content-Range header: bytes 0-499");
    expectRejected(String(L" \u20AC x "), String(L"Invalid HTTP Content-Range header: \u20AC x"));
    expectRejected("   ", "Invalid HTTP Content-Range header: ");
}

TEST(HTTPContentRange, PassesOutTheErrorOfANumber) {
    expectRejected("bytes a-499/1234", "Invalid integer: 'a'.");
    expectRejected("bytes 0-b/1234", "Invalid integer: 'b'.");
    expectRejected("bytes 0-499/c", "Invalid integer: 'c'.");
    expectRejected("bytes -499/1234", "Invalid integer: ''.");
    expectRejected("bytes 0-/1234", "Invalid integer: ''.");
    expectRejected("bytes 0-499/", "Invalid integer: ''.");
    expectRejected("bytes */", "Invalid integer: ''.");
    expectRejected("bytes  0-499/1234", "Invalid integer: ' 0'.");
    expectRejected("bytes 0-499 /1234", "Invalid integer: '499 '.");
    expectRejected("bytes 0-499/ 1234", "Invalid integer: ' 1234'.");
    expectRejected("bytes 0-499/1234/5", "Invalid integer: '1234/5'.");
    expectRejected("bytes 0-499/**", "Invalid integer: '**'.");
    expectRejected("bytes 0-9223372036854775808/*", "Invalid integer: '9223372036854775808'.");
}

TEST(HTTPContentRange, StoresWhatItIsGiven) {
    EXPECT_EQ(valuesOf(CHTTPContentRange("Bytes", 7, -3, 0)), Values("Bytes", 7, -3, 0));
    EXPECT_EQ(valuesOf(CHTTPContentRange("", INT64_MIN, INT64_MAX, -1)),
              Values("", INT64_MIN, INT64_MAX, -1));
}

TEST(HTTPContentRange, CanBeCopiedAndMoved) {
    const P<CHTTPContentRange> range = CHTTPContentRange::parse("bytes 0-499/1234");
    CHTTPContentRange copy(*range);
    EXPECT_EQ(valuesOf(copy), Values("bytes", 0, 499, 1234));
    CHTTPContentRange other("items", 1, 2, 3);
    copy = other;
    EXPECT_EQ(valuesOf(copy), Values("items", 1, 2, 3));
    const CHTTPContentRange moved(std::move(other));
    EXPECT_EQ(valuesOf(moved), Values("items", 1, 2, 3));
    copy = CHTTPContentRange("rows", 4, 5, 6);
    EXPECT_EQ(valuesOf(copy), Values("rows", 4, 5, 6));
}

} // namespace
