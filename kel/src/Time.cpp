#include "kel/Time.h"

#include "kel/Error.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <limits>

namespace kel {

namespace {

constexpr int64 microsecondsPerSecond = 1000000;
constexpr int64 secondsPerMinute = 60;
constexpr int64 secondsPerHour = 3600;
constexpr int64 secondsPerDay = 86400;
constexpr int64 daysPerWeek = 7;
constexpr int64 monthsPerYear = 12;
// The calendar repeats after 400 years, which are whole weeks.
constexpr int64 yearsPerEra = 400;
constexpr int64 daysPerEra = 146097;
constexpr int64 daysFromYearZeroTo1970 = 719468; // from the 1st of March

constexpr int64 earliest = std::numeric_limits<int64>::min();
constexpr int64 latest = std::numeric_limits<int64>::max();
// The greatest value is taken for the infinite span.
constexpr int64 longestFiniteSpan = latest - 1;

std::atomic<CTime::NowFunction> nowFunction{nullptr};

constexpr int64 floorDivide(int64 dividend, int64 divisor) noexcept {
    const int64 quotient = dividend / divisor;
    return dividend % divisor < 0 ? quotient - 1 : quotient;
}

constexpr int64 floorModulo(int64 dividend, int64 divisor) noexcept {
    const int64 remainder = dividend % divisor;
    return remainder < 0 ? remainder + divisor : remainder;
}

constexpr int64 addSaturating(int64 a, int64 b) noexcept {
    if (b > 0 && a > latest - b) return latest;
    if (b < 0 && a < earliest - b) return earliest;
    return a + b;
}

constexpr int64 subtractSaturating(int64 a, int64 b) noexcept {
    if (b < 0 && a > latest + b) return latest;
    if (b > 0 && a < earliest + b) return earliest;
    return a - b;
}

/// @param factor positive.
constexpr int64 multiplySaturating(int64 value, int64 factor) noexcept {
    if (value > latest / factor) return latest;
    if (value < earliest / factor) return earliest;
    return value * factor;
}

struct Date {
    int64 year;
    int month; // 1 to 12
    int day;   // 1 to 31
};

/// Days from 1970-01-01. Years run from March to February here, so that a leap day is the last day of its
/// year.
constexpr int64 daysFromDate(int64 year, int64 month, int64 day) noexcept {
    const int64 monthFromMarch = month - 3;
    const int64 marchYear = year + floorDivide(monthFromMarch, monthsPerYear);
    const int64 marchMonth = floorModulo(monthFromMarch, monthsPerYear);
    const int64 era = floorDivide(marchYear, yearsPerEra);
    const int64 yearOfEra = floorModulo(marchYear, yearsPerEra);
    const int64 dayOfYear = (153 * marchMonth + 2) / 5 + day - 1;
    const int64 dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * daysPerEra + dayOfEra - daysFromYearZeroTo1970;
}

constexpr Date dateFromDays(int64 days) noexcept {
    const int64 shifted = days + daysFromYearZeroTo1970;
    const int64 era = floorDivide(shifted, daysPerEra);
    const int64 dayOfEra = floorModulo(shifted, daysPerEra);
    const int64 yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / (daysPerEra - 1)) / 365;
    const int64 dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int64 marchMonth = (5 * dayOfYear + 2) / 153;
    const int64 day = dayOfYear - (153 * marchMonth + 2) / 5 + 1;
    const int64 month = marchMonth < 10 ? marchMonth + 3 : marchMonth - 9;
    const int64 year = era * yearsPerEra + yearOfEra + (month <= 2 ? 1 : 0);
    return {year, static_cast<int>(month), static_cast<int>(day)};
}

/// Decimal, filled with zeros to `width` places, the sign included.
String padded(int64 value, std::size_t width) {
    const String text = String::fromInt(value);
    const bool negative = value < 0;
    String result = negative ? "-" : "";
    for (std::size_t length = text.length(); length < width; ++length) result += L'0';
    return result.append(text.view().substr(negative ? 1 : 0));
}

} // namespace

// A DLL exports a constant of a class only where it is defined.
constexpr int CTimeFields::weekDayUnknown; // NOLINT(readability-redundant-declaration)

CTimeSpan CTimeSpan::fromMicroseconds(int64 microseconds) {
    return CTimeSpan(std::min(microseconds, longestFiniteSpan));
}

CTimeSpan CTimeSpan::fromMilliseconds(int64 milliseconds) {
    return fromMicroseconds(multiplySaturating(milliseconds, 1000));
}

CTimeSpan CTimeSpan::fromSeconds(double seconds) {
    if (std::isnan(seconds)) return CTimeSpan();
    if (seconds == std::numeric_limits<double>::infinity()) return infinite();
    const double microseconds = std::round(seconds * static_cast<double>(microsecondsPerSecond));
    // 2^63 and its negative are doubles, the greatest 64-bit integer is not.
    const double bound = std::ldexp(1.0, 63);
    if (microseconds >= bound) return CTimeSpan(longestFiniteSpan);
    if (microseconds < -bound) return CTimeSpan(earliest);
    return fromMicroseconds(static_cast<int64>(microseconds));
}

double CTimeSpan::getSeconds() const noexcept {
    if (isInfinite()) return std::numeric_limits<double>::infinity();
    return static_cast<double>(microseconds_) / static_cast<double>(microsecondsPerSecond);
}

CTime CTime::fromCTime(std::time_t seconds) {
    return CTime(multiplySaturating(seconds, microsecondsPerSecond));
}

CTime CTime::now() {
    if (const NowFunction function = nowFunction.load(std::memory_order_acquire)) return function();
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return CTime(std::chrono::duration_cast<std::chrono::microseconds>(sinceEpoch).count());
}

CTime::NowFunction CTime::setNowFunction(NowFunction function) {
    return nowFunction.exchange(function, std::memory_order_acq_rel);
}

std::time_t CTime::toCTime() const noexcept {
    return static_cast<std::time_t>(floorDivide(microseconds_, microsecondsPerSecond));
}

CTimeSpan operator-(const CTime& later, const CTime& earlier) {
    return CTimeSpan::fromMicroseconds(subtractSaturating(later.microseconds_, earlier.microseconds_));
}

CTime operator+(const CTime& time, const CTimeSpan& span) {
    return CTime(span.isInfinite() ? latest : addSaturating(time.microseconds_, span.getMicroseconds()));
}

CTimeFields::CTimeFields(const CTime& time, int zoneOffsetMinutes) : zoneOffsetMinutes_(zoneOffsetMinutes) {
    const int64 secondsUTC = floorDivide(time.getMicroseconds(), microsecondsPerSecond);
    const int64 seconds = secondsUTC + zoneOffsetMinutes * secondsPerMinute;
    const Date date = dateFromDays(floorDivide(seconds, secondsPerDay));
    const int64 secondOfDay = floorModulo(seconds, secondsPerDay);
    year_ = date.year;
    month_ = date.month;
    day_ = date.day;
    hour_ = static_cast<int>(secondOfDay / secondsPerHour);
    minute_ = static_cast<int>(secondOfDay % secondsPerHour / secondsPerMinute);
    second_ = static_cast<int>(secondOfDay % secondsPerMinute);
    microsecond_ = static_cast<int>(floorModulo(time.getMicroseconds(), microsecondsPerSecond));
}

void CTimeFields::setDate(int64 year, int month, int day, int weekDay) {
    if (weekDay < weekDayUnknown || weekDay >= daysPerWeek)
        throw CInvalidArgError("CTimeFields::setDate", "invalid week day: " + String::fromInt(weekDay));
    year_ = year;
    month_ = month;
    day_ = day;
    weekDay_ = weekDay;
}

void CTimeFields::setTime(int hour, int minute, int second) {
    hour_ = hour;
    minute_ = minute;
    second_ = second;
    microsecond_ = 0;
}

void CTimeFields::setSecondFraction(double fraction) {
    const bool isFraction = fraction >= 0 && fraction < 1; // false for not-a-number, too
    if (!isFraction) throw CInvalidArgError("CTimeFields::setSecondFraction", "not a fraction of a second");
    const auto rounded = static_cast<int>(std::lround(fraction * static_cast<double>(microsecondsPerSecond)));
    microsecond_ = std::min(rounded, static_cast<int>(microsecondsPerSecond - 1));
}

int CTimeFields::getWeekDay() const {
    if (weekDay_ != weekDayUnknown) return weekDay_;
    constexpr int64 weekDayOf1970 = 4;
    const int64 days = daysFromDate(floorModulo(year_, yearsPerEra), month_, day_);
    return static_cast<int>(floorModulo(days + weekDayOf1970, daysPerWeek));
}

CTime CTimeFields::toTime() const {
    // No carry from the other fields reaches back from beyond these years into those that a CTime can hold.
    constexpr int64 farthestYear = 10000000000;
    const int64 days = daysFromDate(std::clamp(year_, -farthestYear, farthestYear), month_, day_);
    const int64 minutes = static_cast<int64>(minute_) - zoneOffsetMinutes_;
    const int64 seconds =
        days * secondsPerDay + hour_ * secondsPerHour + minutes * secondsPerMinute + second_;
    // Both summands have one sign, so that neither of them alone leaves a range that the sum stays in.
    const bool isBefore1970 = seconds < 0;
    const int64 wholeSeconds = isBefore1970 ? seconds + 1 : seconds;
    const int64 fraction = isBefore1970 ? microsecond_ - microsecondsPerSecond : microsecond_;
    return CTime::fromMicroseconds(
        addSaturating(multiplySaturating(wholeSeconds, microsecondsPerSecond), fraction));
}

String CTimeFields::toISODateTime(int fractionDigits) const {
    constexpr int mostDigits = 6;
    if (fractionDigits < 0 || fractionDigits > mostDigits)
        throw CInvalidArgError("CTimeFields::toISODateTime",
                               "invalid number of fractional digits: " + String::fromInt(fractionDigits));
    String text = padded(year_, 4) + "-" + padded(month_, 2) + "-" + padded(day_, 2) + "T" +
                  padded(hour_, 2) + ":" + padded(minute_, 2) + ":" + padded(second_, 2);
    if (fractionDigits > 0)
        text += "." + padded(microsecond_, mostDigits).substr(0, static_cast<std::size_t>(fractionDigits));
    return text;
}

String CTimeFields::toInternetTimestamp() const {
    if (zoneOffsetMinutes_ != 0) return CTimeFields(toTime()).toInternetTimestamp();
    return getEnglishWeekDayAbbr() + ", " + padded(day_, 2) + " " + getEnglishMonthAbbr() + " " +
           padded(year_, 4) + " " + padded(hour_, 2) + ":" + padded(minute_, 2) + ":" + padded(second_, 2) +
           " GMT";
}

String CTimeFields::getEnglishWeekDayAbbr() const {
    static constexpr std::array names = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    return names[static_cast<std::size_t>(getWeekDay())];
}

String CTimeFields::getEnglishMonthAbbr() const {
    static constexpr std::array names = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    if (month_ < 1 || month_ > static_cast<int>(names.size()))
        throw CError("Invalid month: " + String::fromInt(month_) + ".");
    return names[static_cast<std::size_t>(month_ - 1)];
}

String CTimeFields::getInternetZoneText() const {
    const int64 offset = zoneOffsetMinutes_;
    const int64 magnitude = offset < 0 ? -offset : offset;
    return (offset < 0 ? "-" : "+") + padded(magnitude / 60, 2) + padded(magnitude % 60, 2);
}

} // namespace kel
