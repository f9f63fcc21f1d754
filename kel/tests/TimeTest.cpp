#include "kel/Time.h"
#include "kel/Error.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>
#include <random>
#include <thread>

namespace {

using kel::CError;
using kel::CInvalidArgError;
using kel::CTime;
using kel::CTimeFields;
using kel::CTimeSpan;
using kel::int64;
using kel::String;

constexpr int64 latest = std::numeric_limits<int64>::max();
constexpr int64 earliest = std::numeric_limits<int64>::min();
constexpr int64 longestSpan = latest - 1;
constexpr int64 microsecondsPerDay = 86400000000;

CTimeFields makeFields(int64 year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    CTimeFields fields;
    fields.setDate(year, month, day);
    fields.setTime(hour, minute, second);
    return fields;
}

int64 secondsOf(const CTimeFields& fields) { return fields.toTime().toCTime(); }

TEST(TimeSpan, IsZeroByDefault) {
    EXPECT_EQ(CTimeSpan().getMicroseconds(), 0);
    EXPECT_EQ(CTimeSpan().getMilliseconds(), 0);
    EXPECT_EQ(CTimeSpan().getSeconds(), 0.0);
    EXPECT_FALSE(CTimeSpan().isInfinite());
}

TEST(TimeSpan, ConvertsBetweenUnits) {
    EXPECT_EQ(CTimeSpan::fromMicroseconds(1234567).getMilliseconds(), 1234);
    EXPECT_EQ(CTimeSpan::fromMicroseconds(-1234567).getMilliseconds(), -1234);
    EXPECT_EQ(CTimeSpan::fromMicroseconds(1500000).getSeconds(), 1.5);
    EXPECT_EQ(CTimeSpan::fromMilliseconds(-2500).getMicroseconds(), -2500000);
    EXPECT_EQ(CTimeSpan(7).getMicroseconds(), 7);
}

TEST(TimeSpan, RoundsSecondsToTheNearestMicrosecond) {
    EXPECT_EQ(CTimeSpan::fromSeconds(1.5).getMicroseconds(), 1500000);
    EXPECT_EQ(CTimeSpan::fromSeconds(0.1).getMicroseconds(), 100000);
    EXPECT_EQ(CTimeSpan::fromSeconds(0.0000004).getMicroseconds(), 0);
    EXPECT_EQ(CTimeSpan::fromSeconds(0.0000006).getMicroseconds(), 1);
    EXPECT_EQ(CTimeSpan::fromSeconds(-0.0000006).getMicroseconds(), -1);
    EXPECT_EQ(CTimeSpan::fromSeconds(std::nan("")).getMicroseconds(), 0);
}

TEST(TimeSpan, SaturatesAtTheLongestFiniteSpan) {
    EXPECT_EQ(CTimeSpan::fromMicroseconds(latest).getMicroseconds(), longestSpan);
    EXPECT_EQ(CTimeSpan::fromMicroseconds(earliest).getMicroseconds(), earliest);
    EXPECT_EQ(CTimeSpan::fromMilliseconds(latest).getMicroseconds(), longestSpan);
    EXPECT_EQ(CTimeSpan::fromMilliseconds(latest / 1000).getMicroseconds(), latest / 1000 * 1000);
    EXPECT_EQ(CTimeSpan::fromMilliseconds(earliest).getMicroseconds(), earliest);
    EXPECT_EQ(CTimeSpan::fromSeconds(1e300).getMicroseconds(), longestSpan);
    EXPECT_EQ(CTimeSpan::fromSeconds(std::ldexp(1.0, 63) / 1e6).getMicroseconds(), longestSpan);
    EXPECT_EQ(CTimeSpan::fromSeconds(-1e300).getMicroseconds(), earliest);
    EXPECT_EQ(CTimeSpan::fromSeconds(-std::numeric_limits<double>::infinity()).getMicroseconds(), earliest);
    EXPECT_FALSE(CTimeSpan::fromSeconds(1e300).isInfinite());
}

TEST(TimeSpan, CanBeInfinite) {
    EXPECT_TRUE(CTimeSpan::infinite().isInfinite());
    EXPECT_TRUE(CTimeSpan::fromSeconds(std::numeric_limits<double>::infinity()).isInfinite());
    EXPECT_EQ(CTimeSpan::infinite().getSeconds(), std::numeric_limits<double>::infinity());
    EXPECT_GT(CTimeSpan::infinite(), CTimeSpan::fromSeconds(1e300));
}

TEST(TimeSpan, Compares) {
    EXPECT_EQ(CTimeSpan::fromMilliseconds(1), CTimeSpan::fromMicroseconds(1000));
    EXPECT_LT(CTimeSpan::fromMilliseconds(-1), CTimeSpan());
    EXPECT_NE(CTimeSpan(1), CTimeSpan(2));
}

TEST(Time, StartsIn1970) {
    EXPECT_EQ(CTime().getMicroseconds(), 0);
    EXPECT_EQ(CTimeFields(CTime()).toISODateTime(6), "1970-01-01T00:00:00.000000");
}

TEST(Time, ConvertsToWholeSecondsRoundedDown) {
    EXPECT_EQ(CTime::fromMicroseconds(1999999).toCTime(), 1);
    EXPECT_EQ(CTime::fromMicroseconds(-1).toCTime(), -1);
    EXPECT_EQ(CTime::fromMicroseconds(-1000000).toCTime(), -1);
    EXPECT_EQ(CTime::fromMicroseconds(-1000001).toCTime(), -2);
    EXPECT_EQ(CTime::fromMicroseconds(earliest).toCTime(), earliest / 1000000 - 1);
    EXPECT_EQ(CTime::fromCTime(784111777).getMicroseconds(), 784111777000000);
    EXPECT_EQ(CTime::fromCTime(latest).getMicroseconds(), latest);
    EXPECT_EQ(CTime::fromCTime(earliest).getMicroseconds(), earliest);
}

TEST(Time, SubtractsAndAdds) {
    const CTime start = CTime::fromMicroseconds(1000);
    const CTime end = CTime::fromMicroseconds(3500);
    EXPECT_EQ((end - start).getMicroseconds(), 2500);
    EXPECT_EQ((start - end).getMicroseconds(), -2500);
    EXPECT_EQ(start + (end - start), end);
    EXPECT_LT(start, end);
}

TEST(Time, SaturatesInsteadOfOverflowing) {
    const CTime last = CTime::fromMicroseconds(latest);
    const CTime first = CTime::fromMicroseconds(earliest);
    EXPECT_EQ((last - first).getMicroseconds(), longestSpan);
    EXPECT_EQ((first - last).getMicroseconds(), earliest);
    EXPECT_EQ((CTime() - first).getMicroseconds(), longestSpan);
    EXPECT_EQ((CTime::fromMicroseconds(-1) - first).getMicroseconds(), longestSpan);
    EXPECT_EQ((CTime::fromMicroseconds(-2) - first).getMicroseconds(), longestSpan);
    EXPECT_EQ((CTime::fromMicroseconds(-3) - first).getMicroseconds(), longestSpan - 1);
    EXPECT_EQ(last + CTimeSpan(1), last);
    EXPECT_EQ(first + CTimeSpan(-1), first);
    EXPECT_EQ(first + CTimeSpan::infinite(), last);
}

TEST(Time, IsNowWhatTheSystemSays) {
    using namespace std::chrono;
    const auto systemNow = [] {
        return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
    };
    const int64 before = systemNow();
    const int64 now = CTime::now().getMicroseconds();
    const int64 after = systemNow();
    EXPECT_LE(before, now);
    EXPECT_LE(now, after);
}

CTime returnOne() { return CTime::fromMicroseconds(1); }
CTime returnTwo() { return CTime::fromMicroseconds(2); }

TEST(Time, IsNowWhatTheFunctionInPlaceSays) {
    EXPECT_EQ(CTime::setNowFunction(returnOne), nullptr);
    EXPECT_EQ(CTime::now(), CTime::fromMicroseconds(1));
    EXPECT_EQ(CTime::setNowFunction(returnTwo), returnOne);
    EXPECT_EQ(CTime::now(), CTime::fromMicroseconds(2));
    EXPECT_EQ(CTime::setNowFunction(nullptr), returnTwo);
    EXPECT_GT(CTime::now(), CTime::fromCTime(1500000000));
}

TEST(Time, LetsTheClockBeReplacedWhileOthersReadIt) {
    CTime::setNowFunction(returnOne);
    std::thread reader([] {
        for (int i = 0; i < 10000; ++i) {
            const int64 now = CTime::now().getMicroseconds();
            ASSERT_TRUE(now == 1 || now == 2);
        }
    });
    for (int i = 0; i < 10000; ++i) CTime::setNowFunction(i % 2 == 0 ? returnTwo : returnOne);
    reader.join();
    CTime::setNowFunction(nullptr);
}

TEST(TimeFields, AreTheStartOf1970ByDefault) {
    const CTimeFields fields;
    EXPECT_EQ(fields.toISODateTime(0), "1970-01-01T00:00:00");
    EXPECT_EQ(fields.getMicrosecond(), 0);
    EXPECT_EQ(fields.getZoneOffsetMinutes(), 0);
    EXPECT_EQ(fields.getWeekDay(), 4);
    EXPECT_EQ(fields.toTime(), CTime());
}

TEST(TimeFields, TellTheFieldsOfATime) {
    const CTimeFields fields(CTime::fromMicroseconds(784111777123456));
    EXPECT_EQ(fields.getYear(), 1994);
    EXPECT_EQ(fields.getMonth(), 11);
    EXPECT_EQ(fields.getDay(), 6);
    EXPECT_EQ(fields.getWeekDay(), 0);
    EXPECT_EQ(fields.getHour(), 8);
    EXPECT_EQ(fields.getMinute(), 49);
    EXPECT_EQ(fields.getSecond(), 37);
    EXPECT_EQ(fields.getMicrosecond(), 123456);
}

TEST(TimeFields, TellTheFieldsBefore1970) {
    EXPECT_EQ(CTimeFields(CTime::fromMicroseconds(-1)).toISODateTime(6), "1969-12-31T23:59:59.999999");
    EXPECT_EQ(CTimeFields(CTime::fromCTime(-62135596800)).toISODateTime(0), "0001-01-01T00:00:00");
    EXPECT_EQ(CTimeFields(CTime::fromCTime(-62135596801)).toISODateTime(0), "0000-12-31T23:59:59");
}

/// Walks through the calendar with the rules everybody knows.
TEST(TimeFields, KnowEveryDayOf2400Years) {
    int64 year = 1;
    int month = 1;
    int day = 1;
    int weekDay = 1; // a Monday
    const int64 firstDay = -719162;
    for (int64 days = firstDay; year <= 2400; ++days) {
        const CTime time = CTime::fromMicroseconds(days * microsecondsPerDay + 12345);
        const CTimeFields fields(time);
        ASSERT_EQ(fields.getYear(), year);
        ASSERT_EQ(fields.getMonth(), month);
        ASSERT_EQ(fields.getDay(), day);
        ASSERT_EQ(fields.getWeekDay(), weekDay);
        ASSERT_EQ(fields.toTime(), time);
        const bool isLeapYear = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
        const int lengths[] = {31, isLeapYear ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        weekDay = (weekDay + 1) % 7;
        if (++day <= lengths[month - 1]) continue;
        day = 1;
        if (++month <= 12) continue;
        month = 1;
        ++year;
    }
}

TEST(TimeFields, RoundTripRandomTimesInEveryZone) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 20000; ++i) {
        const CTime time = CTime::fromMicroseconds(static_cast<int64>(random()) / 2);
        const int zone = static_cast<int>(random() % 1681) - 840;
        const CTimeFields fields(time, zone);
        ASSERT_EQ(fields.toTime(), time);
        ASSERT_EQ(fields.getZoneOffsetMinutes(), zone);
    }
}

TEST(TimeFields, HoldTheFarthestTimes) {
    const CTime last = CTime::fromMicroseconds(latest);
    const CTime first = CTime::fromMicroseconds(earliest);
    EXPECT_EQ(CTimeFields(last, 840).toTime(), last);
    EXPECT_EQ(CTimeFields(first, -840).toTime(), first);
    EXPECT_EQ(CTimeFields(last).toISODateTime(6), "294247-01-10T04:00:54.775807");
    EXPECT_EQ(CTimeFields(first).toISODateTime(6), "-290308-12-21T19:59:05.224192");
}

TEST(TimeFields, SaturateWhereATimeCannotReach) {
    const CTime last = CTime::fromMicroseconds(latest);
    const CTime first = CTime::fromMicroseconds(earliest);
    EXPECT_EQ(makeFields(294248, 1, 1).toTime(), last);
    EXPECT_EQ(makeFields(-290309, 1, 1).toTime(), first);
    constexpr int largest = std::numeric_limits<int>::max();
    constexpr int smallest = std::numeric_limits<int>::min();
    EXPECT_EQ(makeFields(latest, largest, largest, largest, largest, largest).toTime(), last);
    EXPECT_EQ(makeFields(latest, smallest, smallest, smallest, smallest, smallest).toTime(), last);
    EXPECT_EQ(makeFields(earliest, largest, largest, largest, largest, largest).toTime(), first);
    EXPECT_EQ(makeFields(earliest, smallest, smallest, smallest, smallest, smallest).toTime(), first);
}

TEST(TimeFields, CarryOutOfRangeFieldsOver) {
    EXPECT_EQ(makeFields(2019, 1, 32).toTime(), makeFields(2019, 2, 1).toTime());
    EXPECT_EQ(makeFields(2019, 2, 29).toTime(), makeFields(2019, 3, 1).toTime());
    EXPECT_EQ(makeFields(2020, 2, 29).toTime(), makeFields(2020, 3, 0).toTime());
    EXPECT_EQ(makeFields(2019, 13, 1).toTime(), makeFields(2020, 1, 1).toTime());
    EXPECT_EQ(makeFields(2019, 0, 1).toTime(), makeFields(2018, 12, 1).toTime());
    EXPECT_EQ(makeFields(2019, -11, 1).toTime(), makeFields(2018, 1, 1).toTime());
    EXPECT_EQ(makeFields(2019, 1, 1, 24).toTime(), makeFields(2019, 1, 2).toTime());
    EXPECT_EQ(makeFields(2019, 1, 1, -1).toTime(), makeFields(2018, 12, 31, 23).toTime());
    EXPECT_EQ(makeFields(2019, 1, 1, 0, 60).toTime(), makeFields(2019, 1, 1, 1).toTime());
    EXPECT_EQ(makeFields(2016, 12, 31, 23, 59, 60).toTime(), makeFields(2017, 1, 1).toTime());
}

TEST(TimeFields, AreStoredAsGiven) {
    const CTimeFields fields = makeFields(2019, 13, 32, 25, 61, 62);
    EXPECT_EQ(fields.getYear(), 2019);
    EXPECT_EQ(fields.getMonth(), 13);
    EXPECT_EQ(fields.getDay(), 32);
    EXPECT_EQ(fields.getHour(), 25);
    EXPECT_EQ(fields.getMinute(), 61);
    EXPECT_EQ(fields.getSecond(), 62);
}

TEST(TimeFields, TakeTheirZoneIntoAccount) {
    CTimeFields fields = makeFields(1970, 1, 1, 1, 30, 0);
    fields.setZoneOffsetMinutes(90);
    EXPECT_EQ(secondsOf(fields), 0);
    fields.setZoneOffsetMinutes(-90);
    EXPECT_EQ(secondsOf(fields), 3 * 3600);
    EXPECT_EQ(CTimeFields(CTime(), -210).toISODateTime(0), "1969-12-31T20:30:00");
    EXPECT_EQ(CTimeFields(CTime(), 330).toISODateTime(0), "1970-01-01T05:30:00");
}

TEST(TimeFields, WorkTheWeekDayOutUnlessItIsGiven) {
    CTimeFields fields;
    fields.setDate(2019, 4, 1);
    EXPECT_EQ(fields.getWeekDay(), 1);
    fields.setDate(2019, 4, 1, 6);
    EXPECT_EQ(fields.getWeekDay(), 6);
    fields.setDate(2019, 4, 1, 0);
    EXPECT_EQ(fields.getWeekDay(), 0);
    fields.setDate(2019, 4, 1, CTimeFields::weekDayUnknown);
    EXPECT_EQ(fields.getWeekDay(), 1);
    EXPECT_EQ(makeFields(latest, 1, 1).getWeekDay(), makeFields(latest % 400, 1, 1).getWeekDay());
    EXPECT_EQ(makeFields(-1, 12, 31).getWeekDay(), 5);
}

TEST(TimeFields, RefuseImpossibleWeekDays) {
    CTimeFields fields;
    for (const int weekDay : {-2, 7}) {
        try {
            fields.setDate(2019, 4, 1, weekDay);
            ADD_FAILURE() << "nothing thrown";
        } catch (const CInvalidArgError& error) {
            EXPECT_EQ(error.getFunction(), "CTimeFields::setDate");
            EXPECT_EQ(error.getMessage(), "invalid week day: " + String::fromInt(weekDay));
        }
    }
    EXPECT_EQ(fields.toISODateTime(0), "1970-01-01T00:00:00");
}

TEST(TimeFields, HoldAFractionOfASecond) {
    CTimeFields fields = makeFields(2019, 4, 1, 9, 5, 7);
    fields.setSecondFraction(0.25);
    EXPECT_EQ(fields.getMicrosecond(), 250000);
    EXPECT_EQ(fields.toTime().getMicroseconds(),
              makeFields(2019, 4, 1, 9, 5, 7).toTime().getMicroseconds() + 250000);
    fields.setSecondFraction(0.1234567);
    EXPECT_EQ(fields.getMicrosecond(), 123457);
    fields.setSecondFraction(0.99999999);
    EXPECT_EQ(fields.getMicrosecond(), 999999);
    fields.setTime(1, 2, 3);
    EXPECT_EQ(fields.getMicrosecond(), 0);
}

TEST(TimeFields, RefuseWhatIsNoFraction) {
    CTimeFields fields;
    fields.setSecondFraction(0.5);
    for (const double value : {-0.1, 1.0, 1.5, std::nan(""), std::numeric_limits<double>::infinity()}) {
        try {
            fields.setSecondFraction(value);
            ADD_FAILURE() << "nothing thrown for " << value;
        } catch (const CInvalidArgError& error) {
            EXPECT_EQ(error.getFunction(), "CTimeFields::setSecondFraction");
            EXPECT_EQ(error.getMessage(), "not a fraction of a second");
        }
    }
    EXPECT_EQ(fields.getMicrosecond(), 500000);
}

TEST(TimeFields, AreWrittenAsISODateTimeWithATruncatedFraction) {
    CTimeFields fields = makeFields(2019, 4, 1, 9, 5, 7);
    EXPECT_EQ(fields.toISODateTime(3), "2019-04-01T09:05:07.000");
    fields.setSecondFraction(0.987654);
    EXPECT_EQ(fields.toISODateTime(0), "2019-04-01T09:05:07");
    EXPECT_EQ(fields.toISODateTime(1), "2019-04-01T09:05:07.9");
    EXPECT_EQ(fields.toISODateTime(2), "2019-04-01T09:05:07.98");
    EXPECT_EQ(fields.toISODateTime(3), "2019-04-01T09:05:07.987");
    EXPECT_EQ(fields.toISODateTime(6), "2019-04-01T09:05:07.987654");
    fields.setSecondFraction(0.000042);
    EXPECT_EQ(fields.toISODateTime(6), "2019-04-01T09:05:07.000042");
    fields.setZoneOffsetMinutes(60);
    EXPECT_EQ(fields.toISODateTime(0), "2019-04-01T09:05:07");
    for (const int digits : {-1, 7})
        EXPECT_THROW(static_cast<void>(fields.toISODateTime(digits)), CInvalidArgError);
}

TEST(TimeFields, ShowYearsOfAnyLength) {
    EXPECT_EQ(makeFields(0, 1, 1).toISODateTime(0), "0000-01-01T00:00:00");
    EXPECT_EQ(makeFields(987, 1, 1).toISODateTime(0), "0987-01-01T00:00:00");
    EXPECT_EQ(makeFields(10000, 1, 1).toISODateTime(0), "10000-01-01T00:00:00");
    EXPECT_EQ(makeFields(-1, 1, 1).toISODateTime(0), "-001-01-01T00:00:00");
    EXPECT_EQ(makeFields(-12345, 1, 1).toISODateTime(0), "-12345-01-01T00:00:00");
}

TEST(TimeFields, AreWrittenAsInternetTimestamp) {
    EXPECT_EQ(makeFields(1994, 11, 6, 8, 49, 37).toInternetTimestamp(), "Sun, 06 Nov 1994 08:49:37 GMT");
    EXPECT_EQ(CTimeFields(CTime::fromCTime(784111777)).toInternetTimestamp(),
              "Sun, 06 Nov 1994 08:49:37 GMT");
    EXPECT_EQ(makeFields(2016, 12, 31, 23, 59, 60).toInternetTimestamp(), "Sat, 31 Dec 2016 23:59:60 GMT");
}

TEST(TimeFields, AreConvertedToUTCForTheInternetTimestamp) {
    const CTimeFields east(CTime::fromCTime(784111777), 14 * 60);
    EXPECT_EQ(east.toISODateTime(0), "1994-11-06T22:49:37");
    EXPECT_EQ(east.toInternetTimestamp(), "Sun, 06 Nov 1994 08:49:37 GMT");
    CTimeFields west;
    west.setDate(1994, 11, 5, 6);
    west.setTime(22, 49, 37);
    west.setZoneOffsetMinutes(-600);
    EXPECT_EQ(west.toInternetTimestamp(), "Sun, 06 Nov 1994 08:49:37 GMT");
}

TEST(TimeFields, NameWeekDaysAndMonthsInEnglish) {
    const char* const weekDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    CTimeFields fields;
    for (int i = 0; i < 7; ++i) {
        fields.setDate(2019, 9, 1 + i); // the first was a Sunday
        EXPECT_EQ(fields.getEnglishWeekDayAbbr(), weekDays[i]);
        fields.setDate(2019, 9, 1, i);
        EXPECT_EQ(fields.getEnglishWeekDayAbbr(), weekDays[i]);
    }
    const char* const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    for (int i = 0; i < 12; ++i) EXPECT_EQ(makeFields(2019, 1 + i, 1).getEnglishMonthAbbr(), months[i]);
}

TEST(TimeFields, HaveNoNameForAnImpossibleMonth) {
    for (const int month : {0, 13, -1}) {
        try {
            static_cast<void>(makeFields(2019, month, 1).getEnglishMonthAbbr());
            ADD_FAILURE() << "nothing thrown";
        } catch (const CError& error) {
            EXPECT_EQ(error.getMessage(), "Invalid month: " + String::fromInt(month) + ".");
        }
    }
}

TEST(TimeFields, TellTheirZoneAsText) {
    const auto zoneText = [](int minutes) { return CTimeFields(CTime(), minutes).getInternetZoneText(); };
    EXPECT_EQ(zoneText(0), "+0000");
    EXPECT_EQ(zoneText(60), "+0100");
    EXPECT_EQ(zoneText(-210), "-0330");
    EXPECT_EQ(zoneText(345), "+0545");
    EXPECT_EQ(zoneText(-5), "-0005");
    EXPECT_EQ(zoneText(840), "+1400");
}

} // namespace
