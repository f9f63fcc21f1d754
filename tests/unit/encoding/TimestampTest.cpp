#include "vantra/HeaderValues.h"

#include "CurlSeams.h"
#include "PlainError.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using encodingtest::expectPlainError;
using kel::CTime;
using kel::String;
using vantra::parseTimestamp;

constexpr std::time_t novemberSixth1994 = 784111777;

TEST(Timestamp, IsReadInTheThreeFormsOfHTTP) {
    EXPECT_EQ(parseTimestamp("Sun, 06 Nov 1994 08:49:37 GMT"), CTime::fromCTime(novemberSixth1994));
    EXPECT_EQ(parseTimestamp("Sunday, 06-Nov-94 08:49:37 GMT"), CTime::fromCTime(novemberSixth1994));
    EXPECT_EQ(parseTimestamp("Sun Nov  6 08:49:37 1994"), CTime::fromCTime(novemberSixth1994));
}

TEST(Timestamp, TakesTheZoneIntoAccount) {
    EXPECT_EQ(parseTimestamp("Sun, 06 Nov 1994 09:49:37 +0100"), CTime::fromCTime(novemberSixth1994));
    EXPECT_EQ(parseTimestamp("Sun, 06 Nov 1994 03:49:37 EST"), CTime::fromCTime(novemberSixth1994));
}

TEST(Timestamp, ReachesBeyond32Bits) {
    EXPECT_EQ(parseTimestamp("Tue, 19 Jan 2038 03:14:08 GMT"), CTime::fromCTime(2147483648));
    EXPECT_EQ(parseTimestamp("Fri, 31 Dec 9999 23:59:59 GMT"), CTime::fromCTime(253402300799));
}

TEST(Timestamp, ReachesBefore1970) {
    EXPECT_EQ(parseTimestamp("Thu, 01 Jan 1970 00:00:00 GMT"), CTime());
    EXPECT_EQ(parseTimestamp("Wed, 31 Dec 1969 23:59:58 GMT"), CTime::fromCTime(-2));
}

TEST(Timestamp, IsMovedFromTheLastSecondOf1969ToTheNext) {
    EXPECT_EQ(parseTimestamp("Wed, 31 Dec 1969 23:59:59 GMT"), CTime());
}

TEST(Timestamp, IsRejectedWithItsText) {
    for (const char* const text : {"", " ", "yesterday", "Sun, 06 Foo 1994 08:49:37 GMT",
                                   "32 Jan 2020 00:00:00 GMT", "Sun, 06 Nov 1994 25:49:37 GMT", "it's"}) {
        expectPlainError([&] { static_cast<void>(parseTimestamp(text)); },
                         "Error parsing timestamp '" + String(text) + "'.");
    }
}

TEST(Timestamp, IsRejectedWhenLibcurlGivesItsGreatestOrItsErrorValue) {
    encodingtest::CurlSeams seams;
    const String text = "Sun, 06 Nov 1994 08:49:37 GMT";
    for (const std::time_t noDate : {std::time_t{INT64_MAX}, std::time_t{-1}}) {
        seams.date = noDate;
        expectPlainError([&] { static_cast<void>(parseTimestamp(text)); },
                         "Error parsing timestamp '" + text + "'.");
    }
    seams.date = 5;
    EXPECT_EQ(parseTimestamp(text), CTime::fromCTime(5));
}

TEST(Timestamp, IsRejectedWithTextOutsideASCII) {
    const String text(L"\u0436 06 Nov \U0001F600");
    expectPlainError([&] { static_cast<void>(parseTimestamp(text)); },
                     "Error parsing timestamp '" + text + "'.");
}

TEST(Timestamp, EndsAtItsFirstNUL) {
    EXPECT_EQ(parseTimestamp(String("06 Nov 1994 08:49:37 GMT\0nonsense", 33)),
              CTime::fromCTime(novemberSixth1994));
    const String text("\0"
                      "06 Nov 1994 08:49:37 GMT",
                      25);
    expectPlainError([&] { static_cast<void>(parseTimestamp(text)); },
                     "Error parsing timestamp '" + text + "'.");
}

} // namespace
