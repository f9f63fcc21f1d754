#include "sigil/HMAC.h"

#include <kel/Number.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

using Bytes = kel::TBuffer<unsigned char>;

std::string getHex(const Bytes& bytes) { return kel::hexEncode(bytes.getData(), bytes.getUsed()).toUTF8(); }

std::string calc(std::string_view key, std::string_view data) {
    Bytes result;
    sigil::calcHMAC_SHA1(key.data(), key.size(), data.data(), data.size(), result);
    return getHex(result);
}

TEST(HMACSHA1, ComputesTheExamplesOfRFC2202) {
    EXPECT_EQ(calc(std::string(20, '\x0b'), "Hi There"), "b617318655057264e28bc0b6fb378c8ef146be00");
    EXPECT_EQ(calc("Jefe", "what do ya want for nothing?"), "effcdf6ae5eb2fa2d27416d5f184df9c259a7c79");
    EXPECT_EQ(calc(std::string(20, '\xaa'), std::string(50, '\xdd')),
              "125d7342b9ac11cd91a39af48aa17b4f63f175d3");
    EXPECT_EQ(
        calc("\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0a\x0b\x0c\x0d\x0e\x0f\x10\x11\x12\x13\x14\x15\x16\x17"
             "\x18\x19",
             std::string(50, '\xcd')),
        "4c9007f4026250c6bc8414f9bf50c86c2d7235da");
    EXPECT_EQ(calc(std::string(20, '\x0c'), "Test With Truncation"),
              "4c1a03424b55e07fe7f27be1d58bb9324a9a5a04");
    EXPECT_EQ(calc(std::string(80, '\xaa'), "Test Using Larger Than Block-Size Key - Hash Key First"),
              "aa4ae5e15272d00e95705637ce8a3b55ed402112");
    EXPECT_EQ(calc(std::string(80, '\xaa'),
                   "Test Using Larger Than Block-Size Key and Larger Than One Block-Size Data"),
              "e8e99d0f45237d786d6bbaa7965c7808bbff1a91");
}

TEST(HMACSHA1, TakesAnEmptyKeyAndEmptyData) {
    constexpr const char* ofNothing = "fbdb1d1b18aa6c08324b7d64b71fb76370690e1d";
    EXPECT_EQ(calc("", ""), ofNothing);
    Bytes result;
    sigil::calcHMAC_SHA1(nullptr, 0, nullptr, 0, result);
    EXPECT_EQ(getHex(result), ofNothing);
    sigil::calcHMAC_SHA1(nullptr, 0, "", 0, result);
    EXPECT_EQ(getHex(result), ofNothing);
}

TEST(HMACSHA1, PadsTheKeyWithNulBytes) {
    EXPECT_EQ(calc(std::string("key\0", 4), "data"), calc("key", "data"));
    EXPECT_NE(calc(std::string("k\0ey", 4), "data"), calc("key", "data"));
}

TEST(HMACSHA1, ReplacesWhatTheResultHeld) {
    const unsigned char before[100] = {1, 2, 3};
    Bytes result(before, sizeof(before));
    sigil::calcHMAC_SHA1("Jefe", 4, "what do ya want for nothing?", 28, result);
    EXPECT_EQ(getHex(result), "effcdf6ae5eb2fa2d27416d5f184df9c259a7c79");
}

TEST(HMACSHA1, MayReadItsDataFromTheResult) {
    const std::string_view data = "what do ya want for nothing?";
    Bytes result(reinterpret_cast<const unsigned char*>(data.data()), data.size());
    sigil::calcHMAC_SHA1("Jefe", 4, result.getData(), result.getUsed(), result);
    EXPECT_EQ(getHex(result), "effcdf6ae5eb2fa2d27416d5f184df9c259a7c79");
}

} // namespace
