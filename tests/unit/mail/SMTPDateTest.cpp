#include "vantra/SMTPClient.h"

#include "Thrown.h"

#include <gtest/gtest.h>

namespace vantra::test {

namespace {

using kel::CTime;
using kel::CTimeFields;

CTimeFields makeTime(int year, int month, int day, int hour, int minute, int second, int zone = 0) {
    CTimeFields time;
    time.setDate(year, month, day);
    time.setTime(hour, minute, second);
    time.setZoneOffsetMinutes(zone);
    return time;
}

TEST(SMTPDate, HasNoZeroBeforeTheDay) {
    EXPECT_EQ(CSMTPClient::getDateHeaderString(makeTime(2019, 4, 1, 9, 5, 7)),
              "Mon, 1 Apr 2019 09:05:07 +0000");
}

TEST(SMTPDate, TellsTheTimeInItsZone) {
    EXPECT_EQ(CSMTPClient::getDateHeaderString(makeTime(2024, 2, 29, 23, 59, 60, 330)),
              "Thu, 29 Feb 2024 23:59:60 +0530");
    EXPECT_EQ(CSMTPClient::getDateHeaderString(makeTime(1999, 12, 31, 0, 0, 0, -210)),
              "Fri, 31 Dec 1999 00:00:00 -0330");
}

TEST(SMTPDate, IsThatOfAPointInTime) {
    EXPECT_EQ(CSMTPClient::getDateHeaderString(CTimeFields(CTime::fromCTime(0))),
              "Thu, 1 Jan 1970 00:00:00 +0000");
    EXPECT_EQ(CSMTPClient::getDateHeaderString(CTimeFields(CTime::fromCTime(0), 60)),
              "Thu, 1 Jan 1970 01:00:00 +0100");
}

TEST(SMTPDate, HasTheDayOfTheWeekThatTheDateHas) {
    CTimeFields time;
    constexpr int friday = 5;
    time.setDate(2019, 4, 1, friday);
    EXPECT_EQ(CSMTPClient::getDateHeaderString(time), "Mon, 1 Apr 2019 00:00:00 +0000");
}

TEST(SMTPDate, HasAYearOfFourDigitsOrMore) {
    EXPECT_EQ(CSMTPClient::getDateHeaderString(makeTime(33, 1, 2, 3, 4, 5)),
              "Sun, 2 Jan 0033 03:04:05 +0000");
    EXPECT_EQ(CSMTPClient::getDateHeaderString(makeTime(12019, 4, 1, 9, 5, 7)),
              "Mon, 1 Apr 12019 09:05:07 +0000");
}

TEST(SMTPDate, KnowsEveryDayAndMonth) {
    const char* const days[] = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
    for (int day = 1; day <= 7; ++day) {
        EXPECT_EQ(CSMTPClient::getDateHeaderString(makeTime(2019, 4, day, 0, 0, 0)).toUTF8(),
                  std::string(days[day - 1]) + ", " + std::to_string(day) + " Apr 2019 00:00:00 +0000");
    }
    const char* const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    for (int month = 1; month <= 12; ++month) {
        EXPECT_EQ(CSMTPClient::getDateHeaderString(makeTime(2019, month, 10, 0, 0, 0)).substr(5, 11).toUTF8(),
                  "10 " + std::string(months[month - 1]) + " 2019");
    }
}

TEST(SMTPDate, RefusesAMonthThatIsNone) {
    EXPECT_EQ(thrownBy([] { (void)CSMTPClient::getDateHeaderString(makeTime(2019, 13, 1, 0, 0, 0)); }),
              plainError("Invalid month: 13."));
}

} // namespace

} // namespace vantra::test
