#include "vantra/URLEncoding.h"

#include "RandomText.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace {

using kel::String;
using vantra::urlEscape;
using vantra::urlUnescape;

/// Escapes byte by byte, as plainly as it can be written.
String escapePlainly(const String& text, bool spaceAsPlus) {
    static constexpr std::string_view unreserved =
        "-.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~";
    std::string escaped;
    for (const char c : text.toUTF8()) {
        char escape[4];
        std::snprintf(escape, sizeof escape, "%%%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
        if (unreserved.find(c) != std::string_view::npos)
            escaped += c;
        else if (c == ' ' && spaceAsPlus)
            escaped += '+';
        else
            escaped += escape;
    }
    return String(escaped);
}

String repeat(const String& text, int count) {
    String repeated;
    for (int i = 0; i < count; ++i) repeated += text;
    return repeated;
}

TEST(URLEscape, WritesABlankAsAskedFor) {
    EXPECT_EQ(urlEscape("a b/c~", true), "a+b%2fc~");
    EXPECT_EQ(urlEscape("a b/c~", false), "a%20b%2fc~");
}

TEST(URLEscape, EscapesThePlusItselfEitherWay) {
    EXPECT_EQ(urlEscape("1+1", true), "1%2b1");
    EXPECT_EQ(urlEscape("1+1", false), "1%2b1");
}

TEST(URLEscape, EscapesThePercentSign) { EXPECT_EQ(urlEscape("100%", false), "100%25"); }

TEST(URLEscape, EscapesTheAsterisk) { EXPECT_EQ(urlEscape("*", false), "%2a"); }

TEST(URLEscape, LeavesTheEmptyTextEmpty) {
    EXPECT_EQ(urlEscape("", false), "");
    EXPECT_EQ(urlEscape(String(), true), "");
}

TEST(URLEscape, KeepsJustTheUnreservedCharacters) {
    const String unreserved = "-.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~";
    EXPECT_EQ(urlEscape(unreserved, false), unreserved);
    EXPECT_EQ(urlEscape(unreserved, true), unreserved);
    EXPECT_EQ(urlEscape("!\"#$%&'()*+,/:;<=>?@[\\]^`{|}", true),
              "%21%22%23%24%25%26%27%28%29%2a%2b%2c%2f%3a%3b%3c%3d%3e%3f%40%5b%5c%5d%5e%60%7b%7c%7d");
}

TEST(URLEscape, WritesDigitsInLowerCase) {
    EXPECT_EQ(urlEscape("/", false), "%2f");
    EXPECT_EQ(urlEscape(String(L"\u00FF"), false), "%c3%bf");
}

TEST(URLEscape, EscapesTheBytesOfUTF8) {
    EXPECT_EQ(urlEscape(String(L"\u00E9"), false), "%c3%a9");
    EXPECT_EQ(urlEscape(String(L"\u20AC 5"), true), "%e2%82%ac+5");
    EXPECT_EQ(urlEscape(String(L"x\U0001F600y"), false), "x%f0%9f%98%80y");
}

TEST(URLEscape, EscapesControlCharactersAndNUL) {
    EXPECT_EQ(urlEscape(String("a\0b\r\n\t\x7f", 7), true), "a%00b%0d%0a%09%7f");
}

TEST(URLEscape, EscapesAnUnpairedSurrogateAsTheReplacementCharacter) {
    const wchar_t text[] = {L'a', L' ', 0xD800, L'b'};
    EXPECT_EQ(urlEscape(String(text, 4), true), "a+%ef%bf%bdb");
}

TEST(URLEscape, TreatsEveryByteByTheSameRule) {
    for (wchar_t c = 0; c < 0x800; ++c) {
        const String text(&c, 1);
        EXPECT_EQ(urlEscape(text, false), escapePlainly(text, false));
        EXPECT_EQ(urlEscape(text, true), escapePlainly(text, true));
    }
}

TEST(URLEscape, TreatsTextsOfEveryLengthByTheSameRule) {
    for (int count = 0; count < 1200; count += 7) {
        const String ascii = repeat("a/ ", count) + "z";
        EXPECT_EQ(urlEscape(ascii, true), escapePlainly(ascii, true)) << count;
        const String mixed = repeat("x", count) + String(L"\u00E9") + repeat("y z", count);
        EXPECT_EQ(urlEscape(mixed, false), escapePlainly(mixed, false)) << count;
    }
}

TEST(URLUnescape, ReadsAPlusAsAskedFor) {
    EXPECT_EQ(urlUnescape("a+b%2Fc", true), "a b/c");
    EXPECT_EQ(urlUnescape("a+b%2Fc", false), "a+b/c");
}

TEST(URLUnescape, ReadsDigitsOfEitherCase) {
    EXPECT_EQ(urlUnescape("%2f%2F%6a%6A%6b", false), "//jjk");
    EXPECT_EQ(urlUnescape("%41%5A%7e", false), "AZ~");
}

TEST(URLUnescape, KeepsIncompleteEscapes) {
    for (const char* const text :
         {"%", "%4", "%g1", "%1g", "%zz", "%%", "%%4", "a%", "a%4", "% 41", "%+1", "%-1"}) {
        EXPECT_EQ(urlUnescape(text, false), text);
    }
    EXPECT_EQ(urlUnescape("%zz", true), "%zz");
    EXPECT_EQ(urlUnescape("%+1", true), "% 1");
}

TEST(URLUnescape, GoesOnRightBehindAPercentSignThatStays) {
    EXPECT_EQ(urlUnescape("%%41", false), "%A");
    EXPECT_EQ(urlUnescape("%4%41", false), "%4A");
    EXPECT_EQ(urlUnescape("%g%41%", false), "%gA%");
}

TEST(URLUnescape, DoesNotUnescapeTwice) {
    EXPECT_EQ(urlUnescape("%2541", false), "%41");
    EXPECT_EQ(urlUnescape("%252B", true), "%2B");
    EXPECT_EQ(urlUnescape("%2B", true), "+");
}

TEST(URLUnescape, ReadsTheBytesAsUTF8) {
    EXPECT_EQ(urlUnescape("%c3%a9", false), String(L"\u00E9"));
    EXPECT_EQ(urlUnescape("%E2%82%ac", true), String(L"\u20AC"));
    EXPECT_EQ(urlUnescape("x%f0%9f%98%80y", false), String(L"x\U0001F600y"));
}

TEST(URLUnescape, ReplacesIllFormedUTF8) {
    EXPECT_EQ(urlUnescape("a%ffb", false), String(L"a\uFFFDb"));
    EXPECT_EQ(urlUnescape("%c3", false), String(L"\uFFFD"));
    EXPECT_EQ(urlUnescape("%c3x", false), String(L"\uFFFDx"));
    EXPECT_EQ(urlUnescape("%e2%82%", false), String(L"\uFFFD%"));
}

TEST(URLUnescape, ReplacesAnUnpairedSurrogate) {
    const wchar_t text[] = {0xDC00, L'%', L'4', L'1'};
    EXPECT_EQ(urlUnescape(String(text, 4), false), String(L"\uFFFDA"));
}

TEST(URLUnescape, KeepsCharactersOutsideASCII) {
    EXPECT_EQ(urlUnescape(String(L"\u00E9+%41\u20AC\U0001F600%c3%a9"), true),
              String(L"\u00E9 A\u20AC\U0001F600\u00E9"));
    EXPECT_EQ(urlUnescape(String(L"\u00E9%c3"), true), String(L"\u00E9\uFFFD"));
}

TEST(URLUnescape, TakesNoDigitsOutsideASCII) {
    const String fullWidth(L"%\uFF14\uFF11");
    EXPECT_EQ(urlUnescape(fullWidth, false), fullWidth);
    const String sameLowByte(L"%\u0134\u0131");
    EXPECT_EQ(urlUnescape(sameLowByte, false), sameLowByte);
}

TEST(URLUnescape, GivesANULCharacterForItsEscape) {
    EXPECT_EQ(urlUnescape("a%00b", false), String("a\0b", 3));
    EXPECT_EQ(urlUnescape("%00", false).length(), 1u);
}

TEST(URLUnescape, LeavesTheEmptyTextEmpty) {
    EXPECT_EQ(urlUnescape("", true), "");
    EXPECT_EQ(urlUnescape(String(), false), "");
}

TEST(URLUnescape, ReadsAnEscapeAtEveryPosition) {
    for (int position = 0; position < 2000; ++position) {
        const String start = repeat("p", position);
        ASSERT_EQ(urlUnescape(start + "%2Fq%", false), start + "/q%") << position;
    }
}

TEST(URLUnescape, ReadsCharactersOutsideASCIIAtEveryPosition) {
    for (int position = 0; position < 2000; position += 3) {
        const String start = repeat("p", position);
        ASSERT_EQ(urlUnescape(start + "%c3%a9+", true), start + String(L"\u00E9 ")) << position;
        ASSERT_EQ(urlUnescape(start + String(L"\u00E9%41"), true), start + String(L"\u00E9A")) << position;
    }
}

TEST(URLUnescape, UndoesURLEscape) {
    encodingtest::RandomText texts;
    for (int round = 0; round < 5000; ++round) {
        const String text = texts.next(round % 100 == 0 ? 3000 : 40);
        for (const bool plus : {false, true}) {
            const String escaped = urlEscape(text, plus);
            ASSERT_EQ(escaped, escapePlainly(text, plus));
            ASSERT_EQ(urlUnescape(escaped, plus), text);
        }
    }
}

TEST(URLUnescape, FindsNothingToDoInTextWithoutEscapes) {
    encodingtest::RandomText texts;
    for (int round = 0; round < 2000; ++round) {
        const String text = texts.next(60).replaceAll("%", "-");
        ASSERT_EQ(urlUnescape(text, false), text);
        ASSERT_EQ(urlUnescape(text, true), text.replaceAll("+", " "));
    }
}

} // namespace
