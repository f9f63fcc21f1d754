#include "vantra/URLEncoding.h"

#include "RandomText.h"

#include <gtest/gtest.h>

namespace {

using kel::String;
using vantra::decodeURLParams;
using vantra::encodeURLParams;

using Params = kel::TMap<String, String>;

Params decode(const String& query) {
    Params params;
    decodeURLParams(query, params);
    return params;
}

TEST(EncodeURLParams, WritesEntriesInKeyOrder) {
    EXPECT_EQ(encodeURLParams({{"b", "2"}, {"a", "x y"}}), "a=x+y&b=2");
    EXPECT_EQ(encodeURLParams({{"b", "1"}, {"B", "2"}, {"a", "3"}}), "B=2&a=3&b=1");
}

TEST(EncodeURLParams, EscapesKeysAndValues) {
    EXPECT_EQ(encodeURLParams({{"a&b", "c=d"}, {String(L"\u00E9 +"), "100%/~"}}),
              "a%26b=c%3dd&%c3%a9+%2b=100%25%2f~");
}

TEST(EncodeURLParams, WritesEmptyKeysAndValues) {
    EXPECT_EQ(encodeURLParams({{"key", ""}}), "key=");
    EXPECT_EQ(encodeURLParams({{"", "value"}}), "=value");
    EXPECT_EQ(encodeURLParams({{"", ""}, {"a", ""}}), "=&a=");
}

TEST(EncodeURLParams, GivesNothingForAnEmptyMap) { EXPECT_EQ(encodeURLParams({}), ""); }

TEST(DecodeURLParams, LetsTheLastMentionOfANameCount) {
    EXPECT_EQ(decode("a=1&b&c=x=y&a=2"), (Params{{"a", "2"}, {"b", ""}, {"c", "x=y"}}));
}

TEST(DecodeURLParams, LeavesTheMapAloneForAnEmptyQuery) {
    Params params{{"a", "1"}};
    decodeURLParams("", params);
    EXPECT_EQ(params, (Params{{"a", "1"}}));
}

TEST(DecodeURLParams, MergesIntoTheMap) {
    Params params{{"a", "1"}, {"b", "2"}};
    decodeURLParams("b=3&c=4", params);
    EXPECT_EQ(params, (Params{{"a", "1"}, {"b", "3"}, {"c", "4"}}));
}

TEST(DecodeURLParams, KeepsTheCaseOfNames) {
    EXPECT_EQ(decode("Name=1&name=2"), (Params{{"Name", "1"}, {"name", "2"}}));
}

TEST(DecodeURLParams, UnescapesNamesAndValues) {
    EXPECT_EQ(decode("a%26b+c=d%3De+f%2B"), (Params{{"a&b c", "d=e f+"}}));
    EXPECT_EQ(decode("%c3%a9=%e2%82%ac"), (Params{{String(L"\u00E9"), String(L"\u20AC")}}));
    EXPECT_EQ(decode("a%=%zz"), (Params{{"a%", "%zz"}}));
}

TEST(DecodeURLParams, TakesSeparatorsBeforeItUnescapes) {
    EXPECT_EQ(decode("a%3Db=c%26d=e"), (Params{{"a=b", "c&d=e"}}));
}

TEST(DecodeURLParams, TakesAnEmptyParameterForAnEmptyName) {
    EXPECT_EQ(decode("a=1&&b=2"), (Params{{"", ""}, {"a", "1"}, {"b", "2"}}));
    EXPECT_EQ(decode("&a=1"), (Params{{"", ""}, {"a", "1"}}));
    EXPECT_EQ(decode("&"), (Params{{"", ""}}));
    EXPECT_EQ(decode("=x"), (Params{{"", "x"}}));
    EXPECT_EQ(decode("="), (Params{{"", ""}}));
}

TEST(DecodeURLParams, AddsNothingForAFinalAmpersand) {
    EXPECT_EQ(decode("a=1&"), (Params{{"a", "1"}}));
    EXPECT_EQ(decode("a=1&&"), (Params{{"", ""}, {"a", "1"}}));
}

TEST(DecodeURLParams, TakesAQuestionMarkForPartOfTheFirstName) {
    EXPECT_EQ(decode("?a=1&b=?"), (Params{{"?a", "1"}, {"b", "?"}}));
}

TEST(DecodeURLParams, MayReadAValueOfTheMapItFills) {
    Params params{{"query", "query=a%20longer%20value%20than%20before&x=1"}};
    decodeURLParams(params["query"], params);
    EXPECT_EQ(params, (Params{{"query", "a longer value than before"}, {"x", "1"}}));
}

TEST(DecodeURLParams, UndoesEncodeURLParams) {
    encodingtest::RandomText texts;
    for (int round = 0; round < 1000; ++round) {
        Params params;
        for (int i = 0; i < round % 10; ++i) params[texts.next(20)] = texts.next(30);
        ASSERT_EQ(decode(encodeURLParams(params)), params) << encodeURLParams(params);
    }
}

} // namespace
