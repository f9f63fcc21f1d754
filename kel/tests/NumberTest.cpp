#include "kel/Number.h"
#include "kel/Error.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <random>
#include <string>

namespace {

using kel::CError;
using kel::hexDecodeCharLax;
using kel::hexEncode;
using kel::int64;
using kel::parseInt64;
using kel::parseSimpleDouble;
using kel::String;

/// The message of the CError that a function throws.
template <class Function>
String messageOf(Function function) {
    try {
        function();
    } catch (const CError& error) {
        EXPECT_EQ(error.getCode(), -1);
        EXPECT_EQ(error.getCodeDomain(), "");
        return error.getMessage();
    }
    return "(nothing thrown)";
}

String integerError(const String& text, bool allowWhiteSpace = false) {
    return messageOf([&] { static_cast<void>(parseInt64(text, allowWhiteSpace)); });
}

String doubleError(const String& text) {
    return messageOf([&] { static_cast<void>(parseSimpleDouble(text)); });
}

TEST(ParseInt64, ReadsDecimalIntegers) {
    EXPECT_EQ(parseInt64("0"), 0);
    EXPECT_EQ(parseInt64("-0"), 0);
    EXPECT_EQ(parseInt64("42"), 42);
    EXPECT_EQ(parseInt64("+42"), 42);
    EXPECT_EQ(parseInt64("-42"), -42);
    EXPECT_EQ(parseInt64("000000000000000000000000000007"), 7);
    EXPECT_EQ(parseInt64(std::wstring_view(L"123")), 123);
}

TEST(ParseInt64, ReachesBothEndsOfTheRange) {
    EXPECT_EQ(parseInt64("9223372036854775807"), std::numeric_limits<int64>::max());
    EXPECT_EQ(parseInt64("-9223372036854775808"), std::numeric_limits<int64>::min());
    EXPECT_EQ(integerError("9223372036854775808"), "Invalid integer: '9223372036854775808'.");
    EXPECT_EQ(integerError("-9223372036854775809"), "Invalid integer: '-9223372036854775809'.");
    EXPECT_EQ(integerError("18446744073709551616"), "Invalid integer: '18446744073709551616'.");
    EXPECT_EQ(integerError("18446744073709551620"), "Invalid integer: '18446744073709551620'.");
    EXPECT_EQ(integerError("99999999999999999999999999"), "Invalid integer: '99999999999999999999999999'.");
}

TEST(ParseInt64, RefusesEverythingElse) {
    for (const char* text :
         {"", "+", "-", "+-1", "--1", "1-", "1.0", "1e3", "0x10", "a", "1a", " ", " 1", "1 ", "1\n",
          "\xD9\xA1" /* an Arabic digit */, "\xEF\xBC\x91" /* a full-width digit */})
        EXPECT_EQ(integerError(text), "Invalid integer: '" + String(text) + "'.");
    EXPECT_EQ(integerError(String("1\0", 2)), "Invalid integer: '" + String("1\0", 2) + "'.");
}

TEST(ParseInt64, AllowsWhiteSpaceAroundOnlyWhenAskedTo) {
    EXPECT_EQ(parseInt64(" \t\r\n\v\f-12 \t\r\n\v\f", true), -12);
    EXPECT_EQ(parseInt64("12", true), 12);
    EXPECT_EQ(parseInt64(std::wstring_view(L" 12"), true), 12);
    EXPECT_EQ(integerError("- 12", true), "Invalid integer: '- 12'.");
    EXPECT_EQ(integerError(" 1 2 ", true), "Invalid integer: ' 1 2 '.");
    EXPECT_EQ(integerError("  ", true), "Invalid integer: '  '.");
    EXPECT_EQ(integerError("\xC2\xA0"
                           "1",
                           true),
              "Invalid integer: '\xC2\xA0"
              "1'.");
}

TEST(ParseInt64, ReadsBackWhatFromIntWrites) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 2000; ++i) {
        const auto value = static_cast<int64>(random() >> (random() % 64)) * (i % 2 == 0 ? 1 : -1);
        ASSERT_EQ(parseInt64(String::fromInt(value)), value);
    }
}

TEST(ParseSimpleDouble, ReadsDecimalFractions) {
    EXPECT_EQ(parseSimpleDouble("0"), 0.0);
    EXPECT_EQ(parseSimpleDouble("1"), 1.0);
    EXPECT_EQ(parseSimpleDouble("1.5"), 1.5);
    EXPECT_EQ(parseSimpleDouble(".5"), 0.5);
    EXPECT_EQ(parseSimpleDouble("1."), 1.0);
    EXPECT_EQ(parseSimpleDouble("+1.25"), 1.25);
    EXPECT_EQ(parseSimpleDouble("-1.25"), -1.25);
    EXPECT_EQ(parseSimpleDouble("-.25"), -0.25);
    EXPECT_EQ(parseSimpleDouble("00012.500"), 12.5);
    EXPECT_TRUE(std::signbit(parseSimpleDouble("-0")));
}

TEST(ParseSimpleDouble, RoundsToTheNearestDouble) {
    EXPECT_EQ(parseSimpleDouble("0.1"), 0.1);
    EXPECT_EQ(parseSimpleDouble("0.1000000000000000055511151231257827021181583404541015625"), 0.1);
    EXPECT_EQ(parseSimpleDouble("9007199254740993"), 9007199254740992.0);
    EXPECT_EQ(parseSimpleDouble("123456789.123456789"), 123456789.123456789);
}

TEST(ParseSimpleDouble, RefusesEverythingElse) {
    for (const char* text : {"", ".", "+", "-", "-.", "1e5", "1E5", "1.5.", "1..5", "1,5", " 1", "1 ", "+-1",
                             "0x1", "inf", "nan", "infinity", "1f", "\xD9\xA1"})
        EXPECT_EQ(doubleError(text), "Invalid number: '" + String(text) + "'.");
}

TEST(ParseSimpleDouble, RefusesWhatIsTooLargeAndGivesZeroForWhatIsTooSmall) {
    const String large = String(std::string(400, '9'));
    EXPECT_EQ(doubleError(large), "Invalid number: '" + large + "'.");
    EXPECT_EQ(doubleError("-" + large), "Invalid number: '-" + large + "'.");
    const String small = "0." + String(std::string(400, '0')) + "1";
    EXPECT_EQ(parseSimpleDouble(small), 0.0);
    EXPECT_TRUE(std::signbit(parseSimpleDouble("-" + small)));
    EXPECT_EQ(parseSimpleDouble(String(std::string(400, '0')) + "7.5"), 7.5);
}

TEST(ParseSimpleDouble, DoesNotDependOnTheLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* locale : {"de_DE.UTF-8", "C.UTF-8", ""}) {
        std::setlocale(LC_ALL, locale);
        EXPECT_EQ(parseSimpleDouble("1.5"), 1.5);
        EXPECT_EQ(doubleError("1,5"), "Invalid number: '1,5'.");
    }
    std::setlocale(LC_ALL, before.c_str());
}

TEST(HexEncode, WritesTwoLowerCaseDigitsForEachByte) {
    EXPECT_EQ(hexEncode("", 0), "");
    EXPECT_EQ(hexEncode(nullptr, 0), "");
    EXPECT_EQ(hexEncode("\x00\x01\x7F\x80\xAB\xFF", 6), "00017f80abff");
}

TEST(HexDecodeCharLax, KnowsTheDigitsOfBothCasesAndNothingElse) {
    const std::wstring lower = L"0123456789abcdef";
    const std::wstring upper = L"0123456789ABCDEF";
    for (int c = 0; c < 0x10000; ++c) {
        const auto character = static_cast<wchar_t>(c);
        std::size_t value = lower.find(character);
        if (value == std::wstring::npos) value = upper.find(character);
        ASSERT_EQ(hexDecodeCharLax(character), value == std::wstring::npos ? -1 : static_cast<int>(value))
            << c;
    }
}

TEST(HexDecodeCharLax, ReadsWhatHexEncodeWrites) {
    for (int byte = 0; byte < 256; ++byte) {
        const auto value = static_cast<unsigned char>(byte);
        const String text = hexEncode(&value, 1);
        ASSERT_EQ(text.length(), 2u);
        ASSERT_EQ(hexDecodeCharLax(text[0]) * 16 + hexDecodeCharLax(text[1]), byte);
    }
}

} // namespace
