/// @file kel/Time.h
/// Points in time, spans of time, and the fields of a date.
#pragma once

#include "kel/Export.h"
#include "kel/Int64.h"
#include "kel/String.h"

#include <compare>
#include <ctime>

namespace kel {

/// A length of time in microseconds, negative ones included, or infinite.
class KEL_API CTimeSpan {
public:
    constexpr CTimeSpan() = default;
    /// The greatest value means infinite.
    constexpr explicit CTimeSpan(int64 microseconds) : microseconds_(microseconds) {}
    /// @{
    /// The factories saturate at the longest finite span instead of overflowing.
    [[nodiscard]] static CTimeSpan fromMicroseconds(int64 microseconds);
    [[nodiscard]] static CTimeSpan fromMilliseconds(int64 milliseconds);
    /// @}

    /// Rounded to the nearest microsecond. Infinity gives the infinite span; not-a-number gives zero.
    [[nodiscard]] static CTimeSpan fromSeconds(double seconds);
    /// @{
    /// Longer than every other span; for time limits it means none.
    [[nodiscard]] static constexpr CTimeSpan infinite() { return CTimeSpan(infiniteValue); }

    [[nodiscard]] constexpr bool isInfinite() const noexcept { return microseconds_ == infiniteValue; }
    /// @}
    /// The greatest value for the infinite span.
    [[nodiscard]] constexpr int64 getMicroseconds() const noexcept { return microseconds_; }
    /// Truncated toward zero.
    [[nodiscard]] constexpr int64 getMilliseconds() const noexcept { return microseconds_ / 1000; }
    /// Infinity for the infinite span.
    [[nodiscard]] double getSeconds() const noexcept;

    friend constexpr auto operator<=>(const CTimeSpan&,
                                      const CTimeSpan&) = default; // NOLINT(modernize-use-nullptr)

private:
    static constexpr int64 infiniteValue = INT64_MAX;
    int64 microseconds_ = 0;
};

/// A point in time: microseconds since 1970-01-01 00:00:00 UTC, which is also the default value.
class KEL_API CTime {
public:
    constexpr CTime() = default;
    /// From microseconds since 1970, negative ones before it.
    [[nodiscard]] static constexpr CTime fromMicroseconds(int64 microseconds) { return CTime(microseconds); }
    /// From seconds since 1970 (saturating).
    [[nodiscard]] static CTime fromCTime(std::time_t seconds);
    /// The present, from the system's clock or the function put in its place.
    [[nodiscard]] static CTime now();

    /// What tells the present in place of the system's clock.
    using NowFunction = CTime (*)();
    /// Replaces the clock of the whole process, for tests; null puts the system's back. Returns the one
    /// before.
    static NowFunction setNowFunction(NowFunction function);

    /// Since 1970, negative before it.
    [[nodiscard]] constexpr int64 getMicroseconds() const noexcept { return microseconds_; }
    /// Whole seconds since 1970, rounded down.
    [[nodiscard]] std::time_t toCTime() const noexcept;

    friend constexpr auto operator<=>(const CTime&, const CTime&) = default; // NOLINT(modernize-use-nullptr)
    /// Saturating.
    friend KEL_API CTimeSpan operator-(const CTime& later, const CTime& earlier);
    friend KEL_API CTime operator+(const CTime& time, const CTimeSpan& span);

private:
    constexpr explicit CTime(int64 microseconds) : microseconds_(microseconds) {}
    int64 microseconds_ = 0;
};

/// A date and a time of day in the proleptic Gregorian calendar, with the zone they are told in. Fields are
/// stored as given; out-of-range ones are carried over by toTime() (the 32nd of January is the 1st of
/// February).
class KEL_API CTimeFields {
public:
    /// 1970-01-01 00:00:00 UTC.
    CTimeFields() = default;
    /// The fields of `time` in a zone that lies `zoneOffsetMinutes` east of UTC.
    explicit CTimeFields(const CTime& time, int zoneOffsetMinutes = 0);

    /// No day of the week: it is worked out from the date.
    static constexpr int weekDayUnknown = -1;

    /// @param month 1 to 12. @param day 1 to 31. @param weekDay 0 for Sunday to 6 for Saturday, or
    /// weekDayUnknown to have it worked out from the date. @throws CInvalidArgError for any other week day.
    void setDate(int64 year, int month, int day, int weekDay = weekDayUnknown);
    /// @param second 0 to 60. The fraction of the second becomes zero.
    void setTime(int hour, int minute, int second);
    /// @param fraction of a second, 0 up to but not including 1; rounded to microseconds, at most 999999 of
    /// them.
    /// @throws CInvalidArgError for any other value.
    void setSecondFraction(double fraction);
    /// The zone that date and time are told in; they stay as they are. Default: 0, UTC.
    void setZoneOffsetMinutes(int minutesEastOfUTC) { zoneOffsetMinutes_ = minutesEastOfUTC; }

    /// @{
    /// As given: month and day from 1, out-of-range values included.
    [[nodiscard]] int64 getYear() const noexcept { return year_; }
    [[nodiscard]] int getMonth() const noexcept { return month_; }
    [[nodiscard]] int getDay() const noexcept { return day_; }
    /// @}

    /// 0 for Sunday to 6 for Saturday.
    [[nodiscard]] int getWeekDay() const;
    /// @{
    /// As given, out-of-range values included.
    [[nodiscard]] int getHour() const noexcept { return hour_; }
    [[nodiscard]] int getMinute() const noexcept { return minute_; }
    [[nodiscard]] int getSecond() const noexcept { return second_; }
    /// @}

    /// 0 to 999999.
    [[nodiscard]] int getMicrosecond() const noexcept { return microsecond_; }
    /// Minutes east of UTC.
    [[nodiscard]] int getZoneOffsetMinutes() const noexcept { return zoneOffsetMinutes_; }

    /// The point in time that the fields name, their zone taken into account (saturating).
    [[nodiscard]] CTime toTime() const;

    /// "2019-04-01T09:05:07.250" with the given number of fractional digits (0 to 6, truncated; 0 drops the
    /// point). A zone other than UTC is not shown; a year outside 0 to 9999 is shown as it is ("-001",
    /// "10000").
    /// @throws CInvalidArgError for another number of digits.
    [[nodiscard]] String toISODateTime(int fractionDigits) const;
    /// "Sun, 06 Nov 1994 08:49:37 GMT" (RFC 9110 §5.6.7), converted to UTC first where the zone is another.
    /// @throws CError as getEnglishMonthAbbr().
    [[nodiscard]] String toInternetTimestamp() const;
    /// "Sun" to "Sat" of the date.
    [[nodiscard]] String getEnglishWeekDayAbbr() const;
    /// "Jan" to "Dec". @throws CError "Invalid month: 13." for a month outside 1 to 12.
    [[nodiscard]] String getEnglishMonthAbbr() const;
    /// "+0000", "-0330": sign, two digits of hours, two of minutes (RFC 5322 §3.3).
    [[nodiscard]] String getInternetZoneText() const;

private:
    int64 year_ = 1970;
    int month_ = 1;
    int day_ = 1;
    int weekDay_ = weekDayUnknown;
    int hour_ = 0;
    int minute_ = 0;
    int second_ = 0;
    int microsecond_ = 0;
    int zoneOffsetMinutes_ = 0;
};

} // namespace kel
