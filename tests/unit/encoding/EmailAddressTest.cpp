#include "vantra/HeaderValues.h"

#include <gtest/gtest.h>

namespace {

using kel::String;
using vantra::isValidEmailAddress;

TEST(EmailAddress, HasASingleAtSignAndADotBehindIt) {
    EXPECT_TRUE(isValidEmailAddress("jane@example.org"));
    EXPECT_TRUE(isValidEmailAddress("jane.doe+list@mail.example.org"));
    EXPECT_TRUE(isValidEmailAddress("a@b.c"));
}

TEST(EmailAddress, IsNotEmpty) { EXPECT_FALSE(isValidEmailAddress("")); }

TEST(EmailAddress, DoesNotStartWithTheAtSign) {
    EXPECT_FALSE(isValidEmailAddress("@example.org"));
    EXPECT_FALSE(isValidEmailAddress("@"));
    EXPECT_FALSE(isValidEmailAddress("@jane@example.org"));
}

TEST(EmailAddress, HasAnAtSign) {
    EXPECT_FALSE(isValidEmailAddress("jane"));
    EXPECT_FALSE(isValidEmailAddress("jane.example.org"));
}

TEST(EmailAddress, HasNoSecondAtSign) {
    EXPECT_FALSE(isValidEmailAddress("jane@doe@example.org"));
    EXPECT_FALSE(isValidEmailAddress("jane@@example.org"));
    EXPECT_FALSE(isValidEmailAddress("jane@example.org@"));
}

TEST(EmailAddress, NeedsADotBehindTheAtSignAndNotBeforeIt) {
    EXPECT_FALSE(isValidEmailAddress("jane@example"));
    EXPECT_FALSE(isValidEmailAddress("jane.doe@example"));
    EXPECT_FALSE(isValidEmailAddress("jane@"));
}

TEST(EmailAddress, MayEndInADotOrHaveSeveralInARow) {
    EXPECT_TRUE(isValidEmailAddress("jane@example."));
    EXPECT_TRUE(isValidEmailAddress("jane@."));
    EXPECT_TRUE(isValidEmailAddress("jane@example..org"));
    EXPECT_TRUE(isValidEmailAddress(".@.."));
}

TEST(EmailAddress, HoldsNoBlankQuoteOrAngleBracketAnywhere) {
    for (const wchar_t c : {L' ', L'"', L'<', L'>'}) {
        const String forbidden(&c, 1);
        EXPECT_FALSE(isValidEmailAddress(forbidden + "jane@example.org")) << forbidden;
        EXPECT_FALSE(isValidEmailAddress("ja" + forbidden + "ne@example.org")) << forbidden;
        EXPECT_FALSE(isValidEmailAddress("jane@exam" + forbidden + "ple.org")) << forbidden;
        EXPECT_FALSE(isValidEmailAddress("jane@example.org" + forbidden)) << forbidden;
    }
    EXPECT_FALSE(isValidEmailAddress("Jane <jane@example.org>"));
}

TEST(EmailAddress, HoldsNoControlCharacterAnywhere) {
    for (wchar_t c = 0; c < 0x20; ++c) {
        const String control(&c, 1);
        EXPECT_FALSE(isValidEmailAddress(control + "jane@example.org")) << static_cast<int>(c);
        EXPECT_FALSE(isValidEmailAddress("jane@example.org" + control)) << static_cast<int>(c);
    }
}

TEST(EmailAddress, MayHoldEveryOtherCharacter) {
    for (wchar_t c = 0x21; c < 0x180; ++c) {
        const bool isForbidden = c == L'"' || c == L'<' || c == L'>' || c == L'@';
        EXPECT_EQ(isValidEmailAddress("jane" + String(&c, 1) + "@example.org"), !isForbidden)
            << static_cast<int>(c);
    }
    EXPECT_TRUE(isValidEmailAddress(String(L"j\u00E4ne\U0001F600@b\u00FCcher.example")));
    EXPECT_TRUE(isValidEmailAddress(String(L"\u4E2D\u6587@\u4F8B\u3048.jp")));
}

} // namespace
