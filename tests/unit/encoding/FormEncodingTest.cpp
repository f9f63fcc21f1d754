#include "vantra/URLEncoding.h"

#include "RandomText.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using kel::CProps;
using kel::String;
using vantra::formURLEncode;

using Params = std::map<String, String>;

TEST(FormURLEncode, WritesDigitsInTheCaseAskedFor) {
    EXPECT_EQ(formURLEncode("a/b", true), "a%2fb");
    EXPECT_EQ(formURLEncode("a/b", false), "a%2Fb");
}

TEST(FormURLEncode, WritesABlankAsPlus) {
    EXPECT_EQ(formURLEncode("a b  c", true), "a+b++c");
    EXPECT_EQ(formURLEncode("a b  c", false), "a+b++c");
}

TEST(FormURLEncode, EscapesWhatWouldReadAsABlank) {
    EXPECT_EQ(formURLEncode("1+1", false), "1%2B1");
    EXPECT_EQ(formURLEncode("a%20b", false), "a%2520b");
}

TEST(FormURLEncode, KeepsJustTheUnreservedCharacters) {
    const String unreserved = "-.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~";
    EXPECT_EQ(formURLEncode(unreserved, false), unreserved);
    EXPECT_EQ(formURLEncode("!\"#$%&'()*,:;<=>?@[\\]^`{|}", false),
              "%21%22%23%24%25%26%27%28%29%2A%2C%3A%3B%3C%3D%3E%3F%40%5B%5C%5D%5E%60%7B%7C%7D");
}

TEST(FormURLEncode, EscapesTheBytesOfUTF8) {
    EXPECT_EQ(formURLEncode(String(L"\u00E9\U0001F600"), true), "%c3%a9%f0%9f%98%80");
}

TEST(FormURLEncode, LeavesTheEmptyTextEmpty) { EXPECT_EQ(formURLEncode("", true), ""); }

TEST(FormURLEncode, JoinsAMapInKeyOrder) {
    const Params params{{"b c", "x y"}, {"a", "/&="}, {"d", ""}};
    EXPECT_EQ(formURLEncode(params, true), "a=%2f%26%3d&b+c=x+y&d=");
    EXPECT_EQ(formURLEncode(params, false), "a=%2F%26%3D&b+c=x+y&d=");
}

TEST(FormURLEncode, WritesAnEmptyName) {
    EXPECT_EQ(formURLEncode(Params{{"", ""}, {"a", "1"}}, false), "=&a=1");
}

TEST(FormURLEncode, GivesNothingForAnEmptyMap) {
    EXPECT_EQ(formURLEncode(Params(), true), "");
    EXPECT_EQ(formURLEncode(CProps(), false), "");
}

TEST(FormURLEncode, WritesNamedTextsLikeAMap) {
    const CProps props = CProps().add("b c", "x y").add("a", "/&=");
    EXPECT_EQ(formURLEncode(props, true), "a=%2f%26%3d&b+c=x+y");
    EXPECT_EQ(formURLEncode(props, false), "a=%2F%26%3D&b+c=x+y");
}

TEST(FormURLEncode, IsUndoneByDecodeURLParams) {
    encodingtest::RandomText texts;
    for (int round = 0; round < 500; ++round) {
        Params params;
        for (int i = 0; i < round % 10; ++i) params[texts.next(20)] = texts.next(30);
        kel::TMap<String, String> decoded;
        vantra::decodeURLParams(formURLEncode(params, round % 2 == 0), decoded);
        ASSERT_EQ(Params(decoded.begin(), decoded.end()), params);
    }
}

} // namespace
