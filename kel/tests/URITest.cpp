#include "kel/URI.h"
#include "kel/Number.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using kel::CURI;
using kel::String;

std::string unescape(const String& text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.length(); ++i) {
        if (text[i] != L'%') {
            bytes += static_cast<char>(text[i]);
            continue;
        }
        const int value = kel::hexDecodeCharLax(text[i + 1]) * 16 + kel::hexDecodeCharLax(text[i + 2]);
        bytes += static_cast<char>(value);
        i += 2;
    }
    return bytes;
}

TEST(URIEscape, KeepsUnreservedCharacters) {
    const String unreserved = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    EXPECT_EQ(CURI::escape(unreserved), unreserved);
    EXPECT_EQ(CURI::escape(""), "");
}

TEST(URIEscape, EscapesEveryOtherASCIICharacter) {
    EXPECT_EQ(CURI::escape(" !\"#$%&'()*+,/:;<=>?@[\\]^`{|}"),
              "%20%21%22%23%24%25%26%27%28%29%2A%2B%2C%2F%3A%3B%3C%3D%3E%3F%40%5B%5C%5D%5E%60%7B%7C%7D");
    EXPECT_EQ(CURI::escape(String("\0\t\x7F", 3)), "%00%09%7F");
}

TEST(URIEscape, EscapesTheBytesOfUTF8) {
    EXPECT_EQ(CURI::escape(L"\u00E4\u20AC"), "%C3%A4%E2%82%AC");
    EXPECT_EQ(CURI::escape(String::fromUTF32(U"\U0001F600")), "%F0%9F%98%80");
}

TEST(URIEscape, WritesLowerCaseDigitsWhenAskedTo) {
    EXPECT_EQ(CURI::escape(L"/\u00E4Z", true), "%2f%c3%a4Z");
    EXPECT_EQ(CURI::escape(L"/\u00E4Z", false), "%2F%C3%A4Z");
}

TEST(URIEscape, KeepsFurtherCharactersWhenAskedTo) {
    EXPECT_EQ(CURI::escape("/a b/c?d%", false, "/"), "/a%20b/c%3Fd%25");
    EXPECT_EQ(CURI::escape("/a b/c?d%", false, "%?/"), "/a%20b/c?d%");
}

TEST(URIEscape, KeepsNoPartOfACharacterOutsideASCII) {
    EXPECT_EQ(CURI::escape(L"\u00E4\u00E5", false, L"\u00E4"), "%C3%A4%C3%A5");
}

TEST(URIEscape, LosesNothing) {
    std::u32string all;
    for (char32_t c = 0; c < 0x3000; ++c) all += c;
    const String text = String::fromUTF32(all);
    EXPECT_EQ(unescape(CURI::escape(text)), text.toUTF8());
    EXPECT_EQ(unescape(CURI::escape(text, true)), text.toUTF8());
}

} // namespace
