#include "sigil/Digest.h"

#include <kel/Error.h>
#include <kel/Number.h>
#include <kel/P.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace {

std::string getHex(const sigil::IDigestType& digest) {
    return kel::hexEncode(digest.getDigest().getData(), digest.getDigest().getUsed()).toUTF8();
}

std::string calcMD5(std::string_view text) {
    sigil::CDigestType_MD5 digest;
    digest.update(text.data(), text.size());
    digest.finish();
    return getHex(digest);
}

template <class Action>
std::string getErrorMessage(Action action) {
    try {
        action();
    } catch (const kel::CError& error) {
        return error.what();
    }
    return "no error";
}

TEST(DigestMD5, ComputesTheExamplesOfRFC1321) {
    EXPECT_EQ(calcMD5(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(calcMD5("a"), "0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(calcMD5("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(calcMD5("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(calcMD5("abcdefghijklmnopqrstuvwxyz"), "c3fcd3d76192e4007dfb496cca67e13b");
    EXPECT_EQ(calcMD5("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
              "d174ab98d277d9f5a5611c2c9f419d9f");
    EXPECT_EQ(calcMD5("12345678901234567890123456789012345678901234567890123456789012345678901234567890"),
              "57edf4a22be3c955ac49da2e2107b67a");
}

TEST(DigestMD5, IsTheSameHoweverTheBytesAreFed) {
    const std::string text(1'000'000, 'a');
    EXPECT_EQ(calcMD5(text), "7707d6ae4e027c70eea2a935c2296f21");
    sigil::CDigestType_MD5 digest;
    for (std::size_t done = 0; done < text.size(); done += 999)
        digest.update(text.data() + done, std::min<std::size_t>(999, text.size() - done));
    digest.finish();
    EXPECT_EQ(getHex(digest), "7707d6ae4e027c70eea2a935c2296f21");
}

TEST(DigestMD5, TakesNulBytesAndNothing) {
    sigil::CDigestType_MD5 digest;
    digest.update(nullptr, 0);
    digest.update("\0", 1);
    digest.update(nullptr, 0);
    digest.finish();
    EXPECT_EQ(getHex(digest), "93b885adfe0da089cdf634904fd59f71");
}

TEST(DigestMD5, WithoutAnyUpdateIsThatOfNothing) {
    sigil::CDigestType_MD5 digest;
    digest.finish();
    EXPECT_EQ(getHex(digest), "d41d8cd98f00b204e9800998ecf8427e");
}

TEST(DigestMD5, StartsAnewAfterReset) {
    const kel::P<sigil::IDigestType> digest = new sigil::CDigestType_MD5();
    digest->update("abc", 3);
    digest->finish();
    EXPECT_EQ(digest->getDigest().getUsed(), 16U);
    digest->reset();
    digest->update("a", 1);
    digest->finish();
    EXPECT_EQ(getHex(*digest), "0cc175b9c0f1b6a831c399e269772661");
}

TEST(DigestMD5, ForgetsWhatWasFedBeforeReset) {
    sigil::CDigestType_MD5 digest;
    digest.update("never finished", 14);
    digest.reset();
    digest.update("abc", 3);
    digest.finish();
    EXPECT_EQ(getHex(digest), "900150983cd24fb0d6963f7d28e17f72");
}

TEST(DigestMD5, TakesNothingMoreOnceFinished) {
    sigil::CDigestType_MD5 digest;
    digest.update("abc", 3);
    digest.finish();
    EXPECT_EQ(getErrorMessage([&] { digest.update("d", 1); }), "The digest is finished.");
    EXPECT_EQ(getErrorMessage([&] { digest.finish(); }), "The digest is finished.");
    EXPECT_EQ(getHex(digest), "900150983cd24fb0d6963f7d28e17f72");
    digest.reset();
    EXPECT_EQ(getErrorMessage([&] { digest.update("d", 1); }), "no error");
}

TEST(DigestMD5, SeveralComputationsDoNotMeet) {
    sigil::CDigestType_MD5 first;
    sigil::CDigestType_MD5 second;
    first.update("a", 1);
    second.update("message ", 8);
    first.update("bc", 2);
    second.update("digest", 6);
    second.finish();
    first.finish();
    EXPECT_EQ(getHex(first), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(getHex(second), "f96b697d7cb7938d525a2f31aaf161d0");
}

} // namespace
