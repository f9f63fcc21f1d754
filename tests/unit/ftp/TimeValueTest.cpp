#include "vantra/FTPDirEntry.h"

#include "Thrown.h"

#include <gtest/gtest.h>

namespace vantra::test {

namespace {

using kel::CTimeFields;
using kel::int64;
using kel::String;

constexpr int64 second = 1000000;
/// 2019-04-01 12:30:00 UTC.
constexpr int64 aprilFirst = 1554121800 * second;

int64 read(const String& value) { return CFTPDirEntry::parseTimeValue(value).getMicroseconds(); }

Thrown thrownFor(const String& value) {
    return thrownBy([&] { static_cast<void>(CFTPDirEntry::parseTimeValue(value)); });
}

void expectInvalid(const String& value) {
    EXPECT_EQ(thrownFor(value), plainError("Invalid FTP time value: '" + value.toUTF8() + "'"));
}

TEST(FTPTimeValue, IsUTC) {
    EXPECT_EQ(read("20190401123000"), aprilFirst);
    EXPECT_EQ(read("19700101000000"), 0);
    EXPECT_EQ(read("19691231235959"), -second);
    EXPECT_EQ(CTimeFields(CFTPDirEntry::parseTimeValue("20240229235958")).toISODateTime(0),
              "2024-02-29T23:59:58");
}

TEST(FTPTimeValue, MayHaveAFraction) {
    EXPECT_EQ(read("20190401123000.250"), aprilFirst + 250000);
    EXPECT_EQ(read("20190401123000.5"), aprilFirst + 500000);
    EXPECT_EQ(read("20190401123000.000001"), aprilFirst + 1);
    EXPECT_EQ(read("20190401123000.0"), aprilFirst);
}

TEST(FTPTimeValue, RoundsTheFractionWithoutReachingTheNextSecond) {
    EXPECT_EQ(read("20190401123000.1234567"), aprilFirst + 123457);
    EXPECT_EQ(read("20190401123000.9999999"), aprilFirst + 999999);
    EXPECT_EQ(read("20190401123000.99999999999999999999999999"), aprilFirst + 999999);
}

TEST(FTPTimeValue, HasAtLeastFourteenCharacters) {
    expectInvalid("");
    expectInvalid("2019040112300");
    expectInvalid(".5");
}

TEST(FTPTimeValue, HasNothingButAPointBehindTheSeconds) {
    expectInvalid("20190401123000Z");
    expectInvalid("20190401123000 ");
    expectInvalid("201904011230005");
    expectInvalid("20190401123000,5");
}

TEST(FTPTimeValue, PassesOutTheErrorOfAFraction) {
    EXPECT_EQ(thrownFor("20190401123000."), plainError("Invalid number: '.'."));
    EXPECT_EQ(thrownFor("20190401123000.5Z"), plainError("Invalid number: '.5Z'."));
    EXPECT_EQ(thrownFor("20190401123000.-5"), plainError("Invalid number: '.-5'."));
}

TEST(FTPTimeValue, PassesOutTheErrorOfAField) {
    EXPECT_EQ(thrownFor("2O190401123000"), plainError("Invalid integer: '2O19'."));
    EXPECT_EQ(thrownFor("2019x401123000"), plainError("Invalid integer: 'x4'."));
    EXPECT_EQ(thrownFor("201904 1123000"), plainError("Invalid integer: ' 1'."));
    EXPECT_EQ(thrownFor("20190401-:3000"), plainError("Invalid integer: '-:'."));
    EXPECT_EQ(thrownFor("201904011230ss"), plainError("Invalid integer: 'ss'."));
}

TEST(FTPTimeValue, CarriesOverWhatIsOutOfRange) {
    EXPECT_EQ(read("20190132000000"), read("20190201000000"));
    EXPECT_EQ(read("20191301000000"), read("20200101000000"));
    EXPECT_EQ(read("20190401236060"), read("20190402000100"));
}

} // namespace

} // namespace vantra::test
