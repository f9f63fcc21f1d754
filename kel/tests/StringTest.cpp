#include "kel/String.h"
#include "../src/UTF.h"
#include "kel/Error.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <compare>
#include <limits>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace {

using kel::CError;
using kel::String;

constexpr char32_t lastCodePoint = 0x10FFFF;

bool isSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

/// Every code point there is, in order.
std::u32string allCodePoints() {
    std::u32string all;
    for (char32_t c = 0; c <= lastCodePoint; ++c)
        if (!isSurrogate(c)) all += c;
    return all;
}

std::u32string randomText(std::mt19937& random, std::size_t length) {
    static constexpr char32_t limits[] = {0x80, 0x800, 0x10000, 0x110000};
    std::u32string text;
    while (text.size() < length) {
        // Mostly ASCII, so that runs of it come in every length.
        const std::size_t kind = random() % 4 == 0 ? random() % 4 : 0;
        const auto c = static_cast<char32_t>(random() % limits[kind]);
        if (!isSurrogate(c)) text += c;
    }
    return text;
}

/// UTF-8 as RFC 3629 §3 tells it, written once more and as plainly as can be.
std::string encodePlainly(char32_t c) {
    const auto byte = [](char32_t value) { return static_cast<char>(static_cast<unsigned char>(value)); };
    if (c < 0x80) return {byte(c)};
    if (c < 0x800) return {byte(0xC0 + c / 64), byte(0x80 + c % 64)};
    if (c < 0x10000) return {byte(0xE0 + c / 4096), byte(0x80 + c / 64 % 64), byte(0x80 + c % 64)};
    return {byte(0xF0 + c / 262144), byte(0x80 + c / 4096 % 64), byte(0x80 + c / 64 % 64),
            byte(0x80 + c % 64)};
}

std::string encodePlainly(const std::u32string& text) {
    std::string bytes;
    for (const char32_t c : text) bytes += encodePlainly(c);
    return bytes;
}

/// Ill-formed bytes, and what they are when each maximal ill-formed part is replaced.
const std::vector<std::pair<std::string, std::u32string>>& illFormedExamples() {
    static const std::vector<std::pair<std::string, std::u32string>> examples = {
        {"\x80", U"\uFFFD"},
        {"\xBF", U"\uFFFD"},
        {"a\x80z", U"a\uFFFDz"},
        // Overlong forms.
        {"\xC0\x80", U"\uFFFD\uFFFD"},
        {"\xC1\xBF", U"\uFFFD\uFFFD"},
        {"\xE0\x80\x80", U"\uFFFD\uFFFD\uFFFD"},
        {"\xE0\x9F\xBF", U"\uFFFD\uFFFD\uFFFD"},
        {"\xF0\x80\x80\x80", U"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xF0\x8F\xBF\xBF", U"\uFFFD\uFFFD\uFFFD\uFFFD"},
        // Surrogates.
        {"\xED\xA0\x80", U"\uFFFD\uFFFD\uFFFD"},
        {"\xED\xBF\xBF", U"\uFFFD\uFFFD\uFFFD"},
        {"\xED\xA0\x80\xED\xB0\x80", U"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
        // Above U+10FFFF.
        {"\xF4\x90\x80\x80", U"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xF5\x80\x80\x80", U"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xF8\x88\x80\x80\x80", U"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xFE", U"\uFFFD"},
        {"\xFF\xFF", U"\uFFFD\uFFFD"},
        // Cut off, at the end and before something else.
        {"\xC3", U"\uFFFD"},
        {"\xE2\x82", U"\uFFFD"},
        {"\xF0\x9F\x98", U"\uFFFD"},
        {"\xC3\x28", U"\uFFFD("},
        {"\xE2\x28\xA1", U"\uFFFD(\uFFFD"},
        {"\xE2\x82\x28", U"\uFFFD("},
        {"\xF0\x9F\x98\x28", U"\uFFFD("},
        {"\xF0\x9F\xE2\x82\xAC", U"\uFFFD\u20AC"},
        {"\xC3\xC3\xA4", U"\uFFFD\u00E4"},
        // The examples of the Unicode standard, §3.9, tables 3-8 to 3-11.
        {"\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41", U"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA"},
        {"\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41", U"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA"},
        {"\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42", U"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA\uFFFD\uFFFDB"},
        {"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41", U"\uFFFD\uFFFD\uFFFD\uFFFDA"},
    };
    return examples;
}

/// Lengths around the sizes at which decoding goes another way.
const std::vector<std::size_t> paddingLengths = {0, 1, 7, 8, 9, 15, 16, 505, 511, 512, 513, 1023, 1024, 5000};

TEST(StringUTF8, RoundTripsEveryCodePointByItself) {
    for (char32_t c = 0; c <= lastCodePoint; ++c) {
        if (isSurrogate(c)) continue;
        const std::string bytes = encodePlainly(c);
        const String text = String::fromUTF8(bytes);
        ASSERT_EQ(text.toUTF32(), std::u32string(1, c));
        ASSERT_EQ(text.toUTF8(), bytes) << static_cast<std::uint32_t>(c);
        ASSERT_EQ(text, String::fromUTF32({&c, 1}));
    }
}

TEST(StringUTF8, RoundTripsATextOfAllCodePoints) {
    const std::u32string all = allCodePoints();
    const std::string bytes = encodePlainly(all);
    const String text = String::fromUTF8(bytes);
    EXPECT_TRUE(text.toUTF32() == all);
    EXPECT_TRUE(text.toUTF8() == bytes);
    EXPECT_TRUE(String::fromUTF32(all) == text);
    EXPECT_TRUE(String::fromUTF8Lax(bytes) == text);
}

TEST(StringUTF8, RoundTripsRandomTextsOfEveryLength) {
    std::mt19937 random(1);
    for (std::size_t length = 0; length < 1600; ++length) {
        const std::u32string codePoints = randomText(random, length);
        const std::string bytes = encodePlainly(codePoints);
        const String text = String::fromUTF8(bytes);
        ASSERT_TRUE(text.toUTF32() == codePoints) << length;
        ASSERT_TRUE(text.toUTF8() == bytes) << length;
        ASSERT_TRUE(String::fromUTF8Lax(bytes) == text) << length;
    }
}

TEST(StringUTF8, RefusesIllFormedBytesWhereverTheyStand) {
    for (const auto& [bytes, replaced] : illFormedExamples())
        for (const std::size_t length : paddingLengths) {
            const std::string padding(length, 'p');
            // Behind a text that ends with ASCII a cut-off sequence stays cut off.
            const std::string all = padding + bytes + padding;
            EXPECT_THROW(String::fromUTF8(all), CError);
            String text = "before";
            EXPECT_FALSE(String::tryFromUTF8(all, text));
            EXPECT_EQ(text, "before");
        }
}

TEST(StringUTF8, SaysWhatIsWrongWithIllFormedBytes) {
    const auto expectError = [](auto function) {
        try {
            function();
            ADD_FAILURE() << "nothing thrown";
        } catch (const CError& error) {
            EXPECT_EQ(error.getMessage(), "Invalid UTF-8 text.");
            EXPECT_EQ(error.getCode(), -1);
            EXPECT_EQ(error.getCodeDomain(), "");
        }
    };
    expectError([] { String::fromUTF8("\xFF"); });
    expectError([] { const String text("\xFF"); });
    expectError([] { const String text("a\xFF", 2); });
    expectError([] { const String text(std::string("\xFF")); });
    expectError([] { const String text(std::string_view("\xFF")); });
}

TEST(StringUTF8, ReplacesEachMaximalIllFormedPartWhenLax) {
    for (const auto& [bytes, replaced] : illFormedExamples())
        for (const std::size_t length : paddingLengths) {
            const std::string padding(length, 'p');
            const std::u32string widePadding(length, U'p');
            const String text = String::fromUTF8Lax(padding + bytes + padding);
            EXPECT_TRUE(text.toUTF32() == widePadding + replaced + widePadding);
        }
}

TEST(StringUTF8, AgreesWithItsLaxFormAboutRandomBytes) {
    static constexpr unsigned char likely[] = {0x00, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F,
                                               0xA0, 0xBF, 0xC0, 0xC2, 0xDF, 0xE0, 0xE1,
                                               0xED, 0xEF, 0xF0, 0xF1, 0xF4, 0xF5, 0xFF};
    std::mt19937 random(2);
    int wellFormed = 0;
    for (int round = 0; round < 200000; ++round) {
        std::string bytes(random() % 6, '\0');
        for (char& byte : bytes) byte = static_cast<char>(likely[random() % sizeof likely]);
        const String lax = String::fromUTF8Lax(bytes);
        String strict;
        const bool isWellFormed = String::tryFromUTF8(bytes, strict);
        // No byte here starts U+FFFD, so that it can only come from a replacement.
        const bool isReplaced = lax.find(static_cast<wchar_t>(0xFFFD)) != String::npos;
        ASSERT_EQ(isWellFormed, !isReplaced);
        if (!isWellFormed) continue;
        ++wellFormed;
        ASSERT_EQ(strict, lax);
        ASSERT_EQ(strict.toUTF8(), bytes);
    }
    EXPECT_GT(wellFormed, 1000);
}

TEST(StringUTF8, ReusesTheMemoryOfItsTarget) {
    String text;
    text.reserve(2000);
    const wchar_t* const memory = text.view().data();
    for (const std::size_t length : {0u, 10u, 512u, 513u, 2000u}) {
        const std::string bytes(length, 'x');
        ASSERT_TRUE(String::tryFromUTF8(bytes, text));
        EXPECT_EQ(text.toUTF8(), bytes);
        EXPECT_EQ(text.view().data(), memory);
    }
}

TEST(StringUTF8, KeepsNulCharacters) {
    const std::string_view bytes("\0a\0\xC3\xA4\0", 6);
    const String text = String::fromUTF8(bytes);
    EXPECT_EQ(text.length(), 5u);
    EXPECT_EQ(text.toUTF8(), bytes);
    EXPECT_EQ(String(bytes.data(), bytes.size()), text);
    EXPECT_EQ(String("a\0b"), "a");
}

TEST(StringUTF8, DoesNotDependOnTheLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(String("\xC3\xA4"), L"\u00E4");
    EXPECT_EQ(String(L"\u00E4").toUTF8(), "\xC3\xA4");
    std::setlocale(LC_ALL, before.c_str());
}

TEST(StringUTF8, ReplacesUnpairedSurrogatesWhenWritten) {
    const wchar_t high = static_cast<wchar_t>(0xD83D);
    const wchar_t low = static_cast<wchar_t>(0xDE00);
    const String text = String() + String(&high, 1) + "a" + String(&low, 1) + String(&high, 1);
    EXPECT_EQ(text.toUTF8(), "\xEF\xBF\xBD"
                             "a\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(text.toUTF32(), U"\uFFFDa\uFFFD\uFFFD");
}

TEST(StringUTF8, IsWhatIsStreamed) {
    std::ostringstream stream;
    stream << String(L"a\u00E4\u20AC") << String();
    EXPECT_EQ(stream.str(), "a\xC3\xA4\xE2\x82\xAC");
}

/// Both widths of wide characters, whichever of them wchar_t has here.
template <class Unit>
class UTF : public testing::Test {
protected:
    using Text = std::basic_string<Unit>;

    static Text encode(const std::u32string& codePoints) {
        Text text;
        for (const char32_t c : codePoints) {
            Unit units[2];
            const Unit* const end = kel::utf::writeUnits(c, units);
            for (const Unit* at = units; at != end; ++at) text += *at;
        }
        return text;
    }

    static std::u32string decode(const Text& text) {
        std::u32string codePoints;
        const Unit* at = text.data();
        while (at != text.data() + text.size())
            codePoints += kel::utf::readUnits(at, text.data() + text.size());
        return codePoints;
    }

    static std::string toUTF8(const Text& text) {
        const Unit* const end = text.data() + text.size();
        std::string bytes(kel::utf::measureUTF8(text.data(), end), '\0');
        EXPECT_EQ(kel::utf::writeUTF8(text.data(), end, bytes.data()), bytes.data() + bytes.size());
        return bytes;
    }

    static Text fromUTF8(const std::string& bytes, std::size_t chunkLength) {
        const auto* at = reinterpret_cast<const unsigned char*>(bytes.data());
        const auto* const end = at + bytes.size();
        std::vector<Unit> chunk(chunkLength);
        Text text;
        while (at != end) {
            const Unit* const chunkEnd = kel::utf::decodeSome(
                at, end, chunk.data(), chunk.data() + chunk.size(), kel::utf::OnIllFormed::Replace);
            text.append(chunk.data(), static_cast<std::size_t>(chunkEnd - chunk.data()));
        }
        return text;
    }
};

using Units = testing::Types<char16_t, char32_t>;
TYPED_TEST_SUITE(UTF, Units);

TYPED_TEST(UTF, RoundTripsAllCodePoints) {
    const std::u32string all = allCodePoints();
    const auto text = this->encode(all);
    EXPECT_TRUE(this->decode(text) == all);
    const std::string bytes = encodePlainly(all);
    EXPECT_TRUE(this->toUTF8(text) == bytes);
    EXPECT_TRUE(this->fromUTF8(bytes, 512) == text);
}

TYPED_TEST(UTF, DecodesThroughChunksOfEverySize) {
    std::mt19937 random(3);
    for (std::size_t chunkLength = 2; chunkLength < 40; ++chunkLength)
        for (int round = 0; round < 50; ++round) {
            const std::u32string codePoints = randomText(random, random() % 100);
            const std::string bytes = encodePlainly(codePoints);
            ASSERT_TRUE(this->decode(this->fromUTF8(bytes, chunkLength)) == codePoints);
            ASSERT_TRUE(this->toUTF8(this->encode(codePoints)) == bytes);
        }
}

TYPED_TEST(UTF, ReplacesWhatIsNoCodePoint) {
    const std::basic_string<TypeParam> unpaired = {0xDC00, 'a', 0xD800, 'b', 0xD800};
    EXPECT_TRUE(this->decode(unpaired) == U"\uFFFDa\uFFFDb\uFFFD");
    EXPECT_EQ(this->toUTF8(unpaired), "\xEF\xBF\xBD"
                                      "a\xEF\xBF\xBD"
                                      "b\xEF\xBF\xBD");
}

TEST(UTFUnits, FormSurrogatePairsOnlyWhereTheyHave16Bits) {
    char16_t narrow[2];
    EXPECT_EQ(kel::utf::writeUnits(U'\U0001F600', narrow), narrow + 2);
    EXPECT_EQ(narrow[0], 0xD83D);
    EXPECT_EQ(narrow[1], 0xDE00);
    char32_t wide[2];
    EXPECT_EQ(kel::utf::writeUnits(U'\U0001F600', wide), wide + 1);
    EXPECT_EQ(wide[0], U'\U0001F600');
    const char32_t pair[] = {0xD83D, 0xDE00};
    const char32_t* at = pair;
    EXPECT_EQ(kel::utf::readUnits(at, pair + 2), U'\uFFFD');
    EXPECT_EQ(at, pair + 1);
    const char16_t reversed[] = {0xD83D, 0xD83D, 0xDE00};
    const char16_t* atReversed = reversed;
    EXPECT_EQ(kel::utf::readUnits(atReversed, reversed + 3), U'\uFFFD');
    EXPECT_EQ(kel::utf::readUnits(atReversed, reversed + 3), U'\U0001F600');
}

TEST(UTFUnits, ReplaceValuesAboveTheLastCodePoint) {
    const char32_t values[] = {0x110000, 0xFFFFFFFF};
    const char32_t* at = values;
    EXPECT_EQ(kel::utf::readUnits(at, values + 2), U'\uFFFD');
    EXPECT_EQ(kel::utf::readUnits(at, values + 2), U'\uFFFD');
}

TEST(String, IsEmptyByDefault) {
    const String text;
    EXPECT_TRUE(text.isEmpty());
    EXPECT_EQ(text.length(), 0u);
    EXPECT_EQ(text, "");
    EXPECT_EQ(text.toUTF8(), "");
    EXPECT_EQ(text.view(), std::wstring_view());
}

TEST(String, IsMadeFromEveryKindOfText) {
    const String expected = L"a\u00E4";
    EXPECT_EQ(String("a\xC3\xA4"), expected);
    EXPECT_EQ(String("a\xC3\xA4 and more", 3), expected);
    EXPECT_EQ(String(std::string("a\xC3\xA4")), expected);
    EXPECT_EQ(String(std::string_view("a\xC3\xA4")), expected);
    EXPECT_EQ(String(L"a\u00E4 and more", 2), expected);
    EXPECT_EQ(String(std::wstring(L"a\u00E4")), expected);
    EXPECT_EQ(String(std::wstring_view(L"a\u00E4")), expected);
    EXPECT_EQ(String(wxString(L"a\u00E4")), expected);
    EXPECT_EQ(expected.toWxString(), wxString(L"a\u00E4"));
    EXPECT_FALSE(expected.isEmpty());
    EXPECT_EQ(expected.length(), 2u);
    EXPECT_EQ(expected[0], L'a');
    EXPECT_EQ(expected[1], L'\u00E4');
}

TEST(String, IsEmptyWhenMadeFromNull) {
    EXPECT_EQ(String(static_cast<const char*>(nullptr)), "");
    EXPECT_EQ(String(static_cast<const char*>(nullptr), 0), "");
    EXPECT_EQ(String(static_cast<const wchar_t*>(nullptr)), "");
    EXPECT_EQ(String(static_cast<const wchar_t*>(nullptr), 0), "");
    EXPECT_EQ(String(std::wstring_view()), "");
    EXPECT_EQ(String(std::string_view()), "");
}

TEST(String, CopiesAndMoves) {
    String original = "a text that is too long to be kept inside the object itself";
    const String copy = original;
    const wchar_t* const memory = original.view().data();
    String moved = std::move(original);
    EXPECT_EQ(moved, copy);
    EXPECT_EQ(moved.view().data(), memory);
    EXPECT_EQ(original, ""); // NOLINT(bugprone-use-after-move)
    String target = "old";
    target = std::move(moved);
    EXPECT_EQ(target, copy);
    EXPECT_EQ(target.view().data(), memory);
    EXPECT_EQ(moved, ""); // NOLINT(bugprone-use-after-move)
    String& same = target;
    target = std::move(same);
    EXPECT_EQ(target, copy);
    target = same;
    EXPECT_EQ(target, copy);
    moved = copy;
    EXPECT_EQ(moved, copy);
    static_assert(std::is_nothrow_move_constructible_v<String> && std::is_nothrow_move_assignable_v<String>);
}

TEST(String, CanBeCleared) {
    String text = "abc";
    text.clear();
    EXPECT_TRUE(text.isEmpty());
    EXPECT_EQ(text, "");
}

TEST(String, ReadsAndWritesLatin1) {
    std::string bytes;
    for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
    const String text = String::fromLatin1(bytes);
    ASSERT_EQ(text.length(), 256u);
    for (std::size_t i = 0; i < 256; ++i) EXPECT_EQ(text[i], static_cast<wchar_t>(i));
    EXPECT_EQ(text.toLatin1(), bytes);
    std::string longBytes;
    for (int i = 0; i < 5; ++i) longBytes += bytes;
    EXPECT_EQ(String::fromLatin1(longBytes).toLatin1(), longBytes);
    EXPECT_EQ(String::fromLatin1(""), "");
}

TEST(String, ReplacesEachCharacterOutsideLatin1Once) {
    const String text = String::fromUTF32(U"a\u0100\u20AC\U0001F600\u00FF");
    EXPECT_EQ(text.toLatin1(), "a???\xFF");
    EXPECT_EQ(text.toLatin1('_'), "a___\xFF");
}

TEST(String, ReplacesWhatIsNoCodePointInUTF32) {
    const std::u32string codePoints = {U'a', 0xD800, 0xDFFF, 0x110000, 0xFFFFFFFF, 0x10FFFF};
    EXPECT_EQ(String::fromUTF32(codePoints).toUTF32(), U"a\uFFFD\uFFFD\uFFFD\uFFFD\U0010FFFF");
}

TEST(String, WritesIntegers) {
    EXPECT_EQ(String::fromInt(0), "0");
    EXPECT_EQ(String::fromInt(-42), "-42");
    EXPECT_EQ(String::fromInt(std::numeric_limits<kel::int64>::max()), "9223372036854775807");
    EXPECT_EQ(String::fromInt(std::numeric_limits<kel::int64>::min()), "-9223372036854775808");
    EXPECT_EQ(String::fromUInt(0), "0");
    EXPECT_EQ(String::fromUInt(std::numeric_limits<kel::uint64>::max()), "18446744073709551615");
}

TEST(String, Finds) {
    const String text = "abcabc";
    EXPECT_EQ(text.find("bc"), 1u);
    EXPECT_EQ(text.find("bc", 1), 1u);
    EXPECT_EQ(text.find("bc", 2), 4u);
    EXPECT_EQ(text.find("bc", 5), String::npos);
    EXPECT_EQ(text.find("bc", 100), String::npos);
    EXPECT_EQ(text.find("cb"), String::npos);
    EXPECT_EQ(text.find(""), 0u);
    EXPECT_EQ(text.find("", 6), 6u);
    EXPECT_EQ(text.find("", 7), String::npos);
    EXPECT_EQ(text.find(L'c'), 2u);
    EXPECT_EQ(text.find(L'c', 3), 5u);
    EXPECT_EQ(text.find(L'x'), String::npos);
    EXPECT_EQ(text.find(L'a', 100), String::npos);
    EXPECT_EQ(text.findLast(L'a'), 3u);
    EXPECT_EQ(text.findLast(L'x'), String::npos);
    EXPECT_EQ(String().findLast(L'x'), String::npos);
    EXPECT_TRUE(text.contains("cab"));
    EXPECT_TRUE(text.contains(""));
    EXPECT_FALSE(text.contains("CAB"));
}

TEST(String, KnowsHowItStartsAndEnds) {
    const String text = "http://x";
    EXPECT_TRUE(text.startsWith("http:"));
    EXPECT_TRUE(text.startsWith(L"http:"));
    EXPECT_TRUE(text.startsWith(String("http:")));
    EXPECT_TRUE(text.startsWith(std::wstring_view(L"http:")));
    EXPECT_TRUE(text.startsWith(""));
    EXPECT_TRUE(text.startsWith(text));
    EXPECT_FALSE(text.startsWith("HTTP:"));
    EXPECT_FALSE(text.startsWith("http://xy"));
    EXPECT_TRUE(text.endsWith("//x"));
    EXPECT_TRUE(text.endsWith(L"//x"));
    EXPECT_TRUE(text.endsWith(String("//x")));
    EXPECT_TRUE(text.endsWith(std::wstring_view(L"//x")));
    EXPECT_TRUE(text.endsWith(""));
    EXPECT_TRUE(text.endsWith(text));
    EXPECT_FALSE(text.endsWith("//X"));
    EXPECT_FALSE(text.endsWith("xhttp://x"));
}

TEST(String, ComparesElementByElement) {
    EXPECT_TRUE(String("a") < String("b"));
    EXPECT_TRUE(String("B") < String("a"));
    EXPECT_TRUE(String("a") < String("ab"));
    EXPECT_TRUE(String("") < String("\0", 1));
    EXPECT_TRUE(String("z") < String(L"\u00E4"));
    EXPECT_TRUE(String("b") > "a");
    EXPECT_TRUE("a" <= String("a"));
    EXPECT_TRUE(String("a") != String("A"));
    EXPECT_FALSE(String("a\0b", 3) == String("a\0c", 3));
    EXPECT_EQ(String("a") <=> String("a"), std::strong_ordering::equal);
}

TEST(String, ComparesASCIILettersWithoutRegardToTheirCaseWhenAskedTo) {
    EXPECT_TRUE(String("Content-LENGTH").equalsNoCase("content-length"));
    EXPECT_TRUE(String("").equalsNoCase(""));
    EXPECT_FALSE(String("a").equalsNoCase("ab"));
    EXPECT_FALSE(String("@[`{").equalsNoCase("`{@["));
    EXPECT_FALSE(String(L"\u00C4").equalsNoCase(L"\u00E4"));
    EXPECT_TRUE(String(L"X\u00E4").equalsNoCase(L"x\u00E4"));
    EXPECT_FALSE(String(L"\u212A").equalsNoCase("k")) << "the Kelvin sign is no letter of ASCII";
}

TEST(String, CutsParts) {
    const String text = "abcdef";
    EXPECT_EQ(text.substr(0), "abcdef");
    EXPECT_EQ(text.substr(2), "cdef");
    EXPECT_EQ(text.substr(2, 2), "cd");
    EXPECT_EQ(text.substr(2, 100), "cdef");
    EXPECT_EQ(text.substr(2, 0), "");
    EXPECT_EQ(text.substr(6), "");
    EXPECT_EQ(text.substr(7), "");
    EXPECT_EQ(text.substr(String::npos), "");
}

TEST(String, TrimsWhiteSpaceAtItsEnds) {
    const String text = " \t\r\n\v\fa b \t\r\n\v\f";
    EXPECT_EQ(text.trim(), "a b");
    EXPECT_EQ(text.trimLeft(), "a b \t\r\n\v\f");
    EXPECT_EQ(text.trimRight(), " \t\r\n\v\fa b");
    EXPECT_EQ(String(" \t ").trim(), "");
    EXPECT_EQ(String(" \t ").trimLeft(), "");
    EXPECT_EQ(String(" \t ").trimRight(), "");
    EXPECT_EQ(String("").trim(), "");
    EXPECT_EQ(String("a").trim(), "a");
    EXPECT_EQ(String(L"\u00A0a\u2003").trim(), L"\u00A0a\u2003");
    EXPECT_EQ(String("\0 a", 3).trim(), String("\0 a", 3));
}

TEST(String, TrimsViewsWithoutCopying) {
    const std::wstring_view text = L"  a ";
    EXPECT_EQ(kel::trimView(text), L"a");
    EXPECT_EQ(kel::trimView(text).data(), text.data() + 2);
    EXPECT_EQ(kel::trimLeftView(text), L"a ");
    EXPECT_EQ(kel::trimRightView(text), L"  a");
    EXPECT_EQ(kel::trimView({}), L"");
}

TEST(String, CountsSixCharactersAsWhiteSpace) {
    std::u32string found;
    for (char32_t c = 0; c < 0x10000; ++c)
        if (kel::isWhiteSpace(static_cast<wchar_t>(c))) found += c;
    EXPECT_EQ(found, U"\t\n\v\f\r ");
}

TEST(String, ChangesTheCaseOfASCIILettersOnly) {
    EXPECT_EQ(String(L"Az@[`{\u00C4\u00E4\u0130\u0131").toLower(), L"az@[`{\u00C4\u00E4\u0130\u0131");
    EXPECT_EQ(String(L"Az@[`{\u00C4\u00E4\u0130\u0131").toUpper(), L"AZ@[`{\u00C4\u00E4\u0130\u0131");
    EXPECT_EQ(String("").toLower(), "");
    const String upper(std::string(1500, 'X'));
    EXPECT_EQ(upper.toLower(), String(std::string(1500, 'x')));
    EXPECT_EQ(upper.toLower().toUpper(), upper);
    EXPECT_EQ(kel::toLowerASCII(L'Q'), L'q');
    EXPECT_EQ(kel::toLowerASCII(L'\u00C4'), L'\u00C4');
}

TEST(String, ReplacesEveryOccurrenceFromLeftToRight) {
    EXPECT_EQ(String("a.b.c").replaceAll(".", ", "), "a, b, c");
    EXPECT_EQ(String("aaa").replaceAll("aa", "b"), "ba");
    EXPECT_EQ(String("aa").replaceAll("a", "aa"), "aaaa");
    EXPECT_EQ(String("abc").replaceAll("b", ""), "ac");
    EXPECT_EQ(String("abc").replaceAll("x", "y"), "abc");
    EXPECT_EQ(String("abc").replaceAll("", "y"), "abc");
    EXPECT_EQ(String("").replaceAll("x", "y"), "");
    EXPECT_EQ(String("x").replaceAll("x", "y"), "y");
}

TEST(String, Appends) {
    String text = "a";
    text += "b";
    text += String(L"\u00E4");
    text += L'c';
    text.append(L"de").append(std::wstring_view(L"\0f", 2));
    EXPECT_EQ(text, String(std::wstring_view(L"ab\u00E4cde\0f", 8)));
    String twice = "abc";
    twice += twice;
    EXPECT_EQ(twice, "abcabc");
    twice.append(twice.view().substr(1, 2));
    EXPECT_EQ(twice, "abcabcbc");
}

TEST(String, Concatenates) {
    const String left = "left";
    EXPECT_EQ(left + String("-right"), "left-right");
    EXPECT_EQ(left + "-right", "left-right");
    EXPECT_EQ("right-" + left, "right-left");
    EXPECT_EQ("https://" + String("Example.ORG").toLower() + "/" + String::fromInt(42),
              "https://example.org/42");
    EXPECT_EQ(left, "left");
}

TEST(String, IsAKeyOfMapsAndHashedSets) {
    std::map<String, int> map{{"b", 2}, {"a", 1}};
    EXPECT_EQ(map.begin()->first, "a");
    std::unordered_set<String> set{"a", "b", "a"};
    EXPECT_EQ(set.size(), 2u);
    EXPECT_TRUE(set.contains("b"));
    EXPECT_FALSE(set.contains("c"));
}

} // namespace
