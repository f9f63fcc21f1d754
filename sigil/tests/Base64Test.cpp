#include "sigil/Base64.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace {

std::string encode(std::string_view bytes) {
    return sigil::base64Encode(bytes.data(), bytes.size()).toUTF8();
}

/// The definition, three bytes at a time.
std::string encodeByDefinition(std::string_view bytes) {
    constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        unsigned int group = 0;
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        for (std::size_t k = 0; k < 3; ++k)
            group = group << 8U | (k < count ? static_cast<unsigned char>(bytes[i + k]) : 0U);
        for (std::size_t k = 0; k < 4; ++k)
            text += k <= count ? alphabet[group >> (18U - 6U * k) & 63U] : '=';
    }
    return text;
}

TEST(Base64, EncodesTheExamplesOfRFC4648) {
    EXPECT_EQ(encode(""), "");
    EXPECT_EQ(encode("f"), "Zg==");
    EXPECT_EQ(encode("fo"), "Zm8=");
    EXPECT_EQ(encode("foo"), "Zm9v");
    EXPECT_EQ(encode("foob"), "Zm9vYg==");
    EXPECT_EQ(encode("fooba"), "Zm9vYmE=");
    EXPECT_EQ(encode("foobar"), "Zm9vYmFy");
}

TEST(Base64, UsesTheStandardAlphabet) {
    EXPECT_EQ(encode(std::string("\0\0\0", 3)), "AAAA");
    EXPECT_EQ(encode("\xff\xff\xff"), "////");
    EXPECT_EQ(encode("\xfb\xef\xbe"), "++++");
    std::string everyByte;
    for (int value = 0; value < 256; ++value) everyByte += static_cast<char>(value);
    EXPECT_EQ(encode(everyByte), encodeByDefinition(everyByte));
}

TEST(Base64, TakesANullPointerForNothing) { EXPECT_EQ(sigil::base64Encode(nullptr, 0).toUTF8(), ""); }

TEST(Base64, EncodesTheDigestOfNothing) {
    EXPECT_EQ(
        encode(std::string_view("\xd4\x1d\x8c\xd9\x8f\x00\xb2\x04\xe9\x80\x09\x98\xec\xf8\x42\x7e", 16)),
        "1B2M2Y8AsgTpgAmY7PhCfg==");
}

TEST(Base64, EncodesLongDataOnOneLine) {
    std::string bytes;
    unsigned int value = 1;
    // Around a multiple of the size up to which the data is encoded in one go.
    for (std::size_t i = 0; i < 3 * 49'152; ++i) {
        value = value * 1'103'515'245U + 12'345U;
        bytes += static_cast<char>(value >> 16U & 0xFFU);
    }
    for (const std::size_t size : {std::size_t{49'151}, std::size_t{49'152}, std::size_t{49'153},
                                   std::size_t{98'305}, std::size_t{147'455}, bytes.size()}) {
        const std::string_view part(bytes.data(), size);
        EXPECT_TRUE(encode(part) == encodeByDefinition(part)) << size << " bytes";
    }
}

std::string encodeLines(std::string_view bytes) {
    kel::TBuffer<unsigned char> lines;
    sigil::appendBase64Lines(lines, bytes.data(), bytes.size());
    return {reinterpret_cast<const char*>(lines.getData()), lines.getUsed()};
}

TEST(Base64Lines, AreAsLongAsRFC2045Allows) {
    EXPECT_EQ(encodeLines(std::string(171, 'a')), encode(std::string(57, 'a')) + "\r\n" +
                                                      encode(std::string(57, 'a')) + "\r\n" +
                                                      encode(std::string(57, 'a')));
    EXPECT_EQ(encodeLines(std::string(57, 'a')).size(), 76U);
}

TEST(Base64Lines, EndWithoutALineBreak) {
    EXPECT_EQ(encodeLines(""), "");
    EXPECT_EQ(encodeLines("f"), "Zg==");
    EXPECT_EQ(encodeLines(std::string(56, 'a')), encode(std::string(56, 'a')));
    EXPECT_EQ(encodeLines(std::string(58, 'a')), encode(std::string(57, 'a')) + "\r\nYQ==");
}

TEST(Base64Lines, AreAppended) {
    kel::TBuffer<unsigned char> lines(reinterpret_cast<const unsigned char*>("> "), 2);
    sigil::appendBase64Lines(lines, "foo", 3);
    sigil::appendBase64Lines(lines, nullptr, 0);
    EXPECT_EQ(std::string(lines.begin(), lines.end()), "> Zm9v");
}

TEST(Base64Lines, HoldEveryByteOnce) {
    std::string bytes;
    for (int i = 0; i < 1000; ++i) bytes += static_cast<char>(i * 7);
    std::string joined;
    for (const char c : encodeLines(bytes))
        if (c != '\r' && c != '\n') joined += c;
    EXPECT_EQ(joined, encodeByDefinition(bytes));
}

} // namespace
