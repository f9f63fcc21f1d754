#include "vantra/HeaderValues.h"

#include <gtest/gtest.h>

#include <ostream>
#include <utility>

namespace {

using kel::String;
using vantra::parseContentDispositionHeader;

using Params = kel::TMap<String, String>;

struct Disposition {
    String type;
    Params params;

    friend bool operator==(const Disposition&, const Disposition&) = default;
    friend std::ostream& operator<<(std::ostream& stream, const Disposition& disposition) {
        stream << "'" << disposition.type << "'";
        for (const auto& [name, value] : disposition.params)
            stream << " '" << name << "' -> '" << value << "'";
        return stream;
    }
};

Disposition parse(const String& header) {
    Params params;
    const String type = parseContentDispositionHeader(header, params);
    return {type, params};
}

TEST(ContentDisposition, MayBeATypeAlone) {
    EXPECT_EQ(parse("inline"), (Disposition{"inline", {}}));
    EXPECT_EQ(parse("attachment;"), (Disposition{"attachment", {}}));
    EXPECT_EQ(parse(""), (Disposition{"", {}}));
}

TEST(ContentDisposition, HasNamesInLowerCaseAndValuesAsTheyAre) {
    EXPECT_EQ(parse("ATTACHMENT ; Name=\"x\""), (Disposition{"attachment", {{"name", "x"}}}));
    EXPECT_EQ(parse("Attachment; FileName=\"A B.TXT\""),
              (Disposition{"attachment", {{"filename", "A B.TXT"}}}));
}

TEST(ContentDisposition, KeepsBlanksInQuotes) {
    EXPECT_EQ(parse("attachment; filename=\"a b.txt\""),
              (Disposition{"attachment", {{"filename", "a b.txt"}}}));
    EXPECT_EQ(parse("attachment; filename=\"  \""), (Disposition{"attachment", {{"filename", "  "}}}));
}

TEST(ContentDisposition, IgnoresWhiteSpaceAroundItsParts) {
    EXPECT_EQ(parse(" \tform-data\t ;  name \t=\t \"a\" \r\n; b=\"c\"  "),
              (Disposition{"form-data", {{"b", "c"}, {"name", "a"}}}));
}

TEST(ContentDisposition, DropsAnUnquotedParameter) {
    EXPECT_EQ(parse("attachment; filename=a.txt"), (Disposition{"attachment", {}}));
    EXPECT_EQ(parse("attachment; filename='a.txt'"), (Disposition{"attachment", {}}));
    EXPECT_EQ(parse("attachment; filename*=UTF-8''a.txt"), (Disposition{"attachment", {}}));
}

TEST(ContentDisposition, StopsAtAnUnquotedParameter) {
    EXPECT_EQ(parse("form-data; a=\"1\"; b=2; c=\"3\""), (Disposition{"form-data", {{"a", "1"}}}));
}

TEST(ContentDisposition, StopsAtAnOpenQuote) {
    EXPECT_EQ(parse("form-data; a=\"1\"; b=\"2; c=3"), (Disposition{"form-data", {{"a", "1"}}}));
    EXPECT_EQ(parse("form-data; a=\""), (Disposition{"form-data", {}}));
}

TEST(ContentDisposition, StopsBehindAQuoteWithoutSemicolon) {
    EXPECT_EQ(parse("form-data; a=\"1\" b=\"2\""), (Disposition{"form-data", {{"a", "1"}}}));
    EXPECT_EQ(parse("form-data; a=\"1\"x; b=\"2\""), (Disposition{"form-data", {{"a", "1"}}}));
}

TEST(ContentDisposition, StopsWithoutAnEqualsSign) {
    EXPECT_EQ(parse("form-data; a=\"1\"; b"), (Disposition{"form-data", {{"a", "1"}}}));
    EXPECT_EQ(parse("form-data; a; b"), (Disposition{"form-data", {}}));
}

TEST(ContentDisposition, TakesAllBeforeTheEqualsSignForTheName) {
    EXPECT_EQ(parse("form-data; a; b=\"1\""), (Disposition{"form-data", {{"a; b", "1"}}}));
    EXPECT_EQ(parse("form-data; =\"1\""), (Disposition{"form-data", {{"", "1"}}}));
}

TEST(ContentDisposition, KnowsNoEscapesInQuotes) {
    EXPECT_EQ(parse("attachment; filename=\"a\\\"b\""), (Disposition{"attachment", {{"filename", "a\\"}}}));
    EXPECT_EQ(parse("attachment; filename=\"C:\\a%20b+c\""),
              (Disposition{"attachment", {{"filename", "C:\\a%20b+c"}}}));
}

TEST(ContentDisposition, TakesSeparatorsInQuotesForPartOfTheValue) {
    EXPECT_EQ(parse("form-data; a=\"1;b=2\"; c=\"=\""),
              (Disposition{"form-data", {{"a", "1;b=2"}, {"c", "="}}}));
}

TEST(ContentDisposition, MayHaveEmptyValues) {
    EXPECT_EQ(parse("form-data; a=\"\""), (Disposition{"form-data", {{"a", ""}}}));
}

TEST(ContentDisposition, LetsTheLastMentionOfANameCount) {
    EXPECT_EQ(parse("form-data; a=\"1\"; A=\"2\""), (Disposition{"form-data", {{"a", "2"}}}));
}

TEST(ContentDisposition, KeepsCharactersOutsideASCII) {
    EXPECT_EQ(parse(String(L"attachment; filename=\"\u00C9 \U0001F600.txt\"")),
              (Disposition{"attachment", {{"filename", String(L"\u00C9 \U0001F600.txt")}}}));
}

TEST(ContentDisposition, AddsToTheMap) {
    Params params{{"a", "old"}, {"b", "kept"}};
    EXPECT_EQ(parseContentDispositionHeader("form-data; a=\"new\"; c=\"3\"", params), "form-data");
    EXPECT_EQ(params, (Params{{"a", "new"}, {"b", "kept"}, {"c", "3"}}));
}

TEST(ContentDisposition, MayBeAValueOfTheMapItFills) {
    const String header = "attachment; content-disposition=\"a longer value than it was before\"; name=\"x\"";
    Params headers{{"content-disposition", header}};
    EXPECT_EQ(parseContentDispositionHeader(headers["content-disposition"], headers), "attachment");
    EXPECT_EQ(headers, (Params{{"content-disposition", "a longer value than it was before"}, {"name", "x"}}));
}

} // namespace
