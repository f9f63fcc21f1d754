#include "vantra/MimeMessage.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using kel::String;
using vantra::CMimeMessage;

std::string encode(const String& text) { return CMimeMessage::toEncodedWord(text).toUTF8(); }

std::string word(const std::string& payload) { return "=?utf-8?q?" + payload + "?="; }

std::string repeat(const std::string& text, std::size_t count) {
    std::string repeated;
    for (std::size_t i = 0; i < count; ++i) repeated += text;
    return repeated;
}

TEST(EncodedWord, KeepsLettersAndDigitsOfASCII) {
    EXPECT_EQ(encode("ABCDEFGHIJKLMNOPQRSTUVWXYZ"), word("ABCDEFGHIJKLMNOPQRSTUVWXYZ"));
    EXPECT_EQ(encode("abcdefghijklmnopqrstuvwxyz0123456789"), word("abcdefghijklmnopqrstuvwxyz0123456789"));
}

TEST(EncodedWord, EncodesEveryOtherASCIICharacterByItsCode) {
    static constexpr char digits[] = "0123456789ABCDEF";
    for (int code = 0; code < 128; ++code) {
        const auto c = static_cast<char>(code);
        if ((c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z')) continue;
        EXPECT_EQ(encode(String(&c, 1)), word({'=', digits[code / 16], digits[code % 16]})) << code;
    }
}

TEST(EncodedWord, WritesABlankAsAnEscapeAndNeverAsAnUnderscore) {
    EXPECT_EQ(encode("a b_c"), word("a=20b=5Fc"));
}

TEST(EncodedWord, EncodesEachByteOfACharacterOutsideASCII) {
    EXPECT_EQ(encode("\u00e9"), word("=C3=A9"));
    EXPECT_EQ(encode("\u20ac"), word("=E2=82=AC"));
    EXPECT_EQ(encode("\U0001F600"), word("=F0=9F=98=80"));
}

TEST(EncodedWord, OfTheEmptyTextIsEmpty) { EXPECT_EQ(encode(""), ""); }

TEST(EncodedWord, IsSplitIntoThreeForAHundredLettersAndAnAccent) {
    const std::string letters(100, 'a');
    EXPECT_EQ(encode(String(letters + "\u00e9")), word(std::string(46, 'a')) + "\r\n " +
                                                      word(std::string(46, 'a')) + "\r\n " +
                                                      word("aaaaaaaa=C3=A9"));
}

TEST(EncodedWord, MayHoldFortyFiveCharactersAndClosesWithOneMore) {
    EXPECT_EQ(encode(String(std::string(45, 'a'))), word(std::string(45, 'a')));
    EXPECT_EQ(encode(String(std::string(46, 'a'))), word(std::string(46, 'a')));
    EXPECT_EQ(encode(String(std::string(47, 'a'))), word(std::string(46, 'a')) + "\r\n " + word("a"));
}

TEST(EncodedWord, TakesAWholeCharacterBehindFortyFive) {
    EXPECT_EQ(encode(String(std::string(45, 'a') + "\U0001F600" + "b")),
              word(std::string(45, 'a') + "=F0=9F=98=80") + "\r\n " + word("b"));
}

TEST(EncodedWord, NeverSplitsACharacterOutsideTheBasicPlane) {
    // 12 characters of payload each: the fourth takes a word over 45.
    EXPECT_EQ(encode(String(repeat("\U0001F600", 9))), word(repeat("=F0=9F=98=80", 4)) + "\r\n " +
                                                           word(repeat("=F0=9F=98=80", 4)) + "\r\n " +
                                                           word("=F0=9F=98=80"));
}

TEST(EncodedWord, IsNoLongerThanRFC2047Allows) {
    for (const char* const unit : {"a", "-", "\u00e9", "\u20ac", "\U0001F600"}) {
        for (std::size_t ahead = 0; ahead < 50; ++ahead) {
            const std::string text = encode(String(std::string(ahead, 'a') + repeat(unit, 40)));
            for (std::size_t start = 0; start < text.size();) {
                const std::size_t end = std::min(text.find("\r\n ", start), text.size());
                EXPECT_LE(end - start, 75U) << text;
                start = end + 3;
            }
        }
    }
}

TEST(EncodedWord, ReadsAnUnpairedSurrogateAsTheReplacementCharacter) {
    const wchar_t surrogate = 0xD800;
    EXPECT_EQ(encode(String(&surrogate, 1)), word("=EF=BF=BD"));
}

} // namespace
