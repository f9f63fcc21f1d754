#include "vantra/HTTPStatusLine.h"

#include <kel/Error.h>

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <typeinfo>
#include <utility>

namespace {

using kel::CError;
using kel::String;
using vantra::getInfoFromHTTPStatusLine;
using vantra::getStatusCodeFromHTTPStatusLine;
using vantra::parseHTTPStatusLine;

/// Code and reason; each of the three functions says the same.
std::pair<int, String> parse(const String& line) {
    std::pair<int, String> parts{-2, "unset"};
    parseHTTPStatusLine(line, parts.first, parts.second);
    EXPECT_EQ(getStatusCodeFromHTTPStatusLine(line), parts.first);
    EXPECT_EQ(getInfoFromHTTPStatusLine(line), parts.second);
    return parts;
}

using Parts = std::pair<int, String>;

template <class Action>
void expectPlainError(Action action, const String& message) {
    try {
        action();
        ADD_FAILURE() << "no error '" << message << "'";
    } catch (const CError& error) {
        EXPECT_EQ(typeid(error), typeid(CError));
        EXPECT_EQ(error.getMessage(), message);
        EXPECT_EQ(error.getCodeDomain(), "");
        EXPECT_EQ(error.getCode(), -1);
        EXPECT_TRUE(error.getParams().isEmpty());
        EXPECT_EQ(error.getCause().get(), nullptr);
    }
}

/// Each of the three functions throws it, and the outputs stay.
void expectRejected(const String& line, const String& message) {
    int code = 7;
    String info = "before";
    expectPlainError([&] { parseHTTPStatusLine(line, code, info); }, message);
    EXPECT_EQ(code, 7);
    EXPECT_EQ(info, "before");
    expectPlainError([&] { getStatusCodeFromHTTPStatusLine(line); }, message);
    expectPlainError([&] { getInfoFromHTTPStatusLine(line); }, message);
}

TEST(HTTPStatusLine, SplitsIntoCodeAndReason) {
    EXPECT_EQ(parse("HTTP/1.1 200 OK\r\n"), Parts(200, "OK"));
    EXPECT_EQ(parse("HTTP/1.1 404 Not Found"), Parts(404, "Not Found"));
    EXPECT_EQ(parse("HTTP/1.0 301 Moved"), Parts(301, "Moved"));
}

TEST(HTTPStatusLine, MayLackAReason) {
    EXPECT_EQ(parse("HTTP/1.1 200"), Parts(200, ""));
    EXPECT_EQ(parse("HTTP/2 200"), Parts(200, ""));
    EXPECT_EQ(parse("HTTP/2 200 "), Parts(200, ""));
    EXPECT_EQ(parse("HTTP/2 200 \r\n"), Parts(200, ""));
}

TEST(HTTPStatusLine, IsRecognisedInAnyCase) {
    EXPECT_EQ(parse("http/1.0 301 Moved"), Parts(301, "Moved"));
    EXPECT_EQ(parse("hTtP/1.0 301 Moved"), Parts(301, "Moved"));
}

TEST(HTTPStatusLine, TrimsTheReasonButNotInside) {
    EXPECT_EQ(parse("HTTP/1.1 404 \t Not  Found \r\n"), Parts(404, "Not  Found"));
}

TEST(HTTPStatusLine, KeepsAReasonOutsideASCII) {
    EXPECT_EQ(parse(String(L"HTTP/1.1 404 Nicht gefunden \u2013 \U0001F600")),
              Parts(404, String(L"Nicht gefunden \u2013 \U0001F600")));
    EXPECT_EQ(parse(String("HTTP/1.1 404 a\0b", 16)), Parts(404, String("a\0b", 3)));
}

TEST(HTTPStatusLine, NeedNotNameAVersion) { EXPECT_EQ(parse("HTTP/ 200 OK"), Parts(200, "OK")); }

TEST(HTTPStatusLine, TakesEveryIntegerForACode) {
    EXPECT_EQ(parse("HTTP/1.1 0 None"), Parts(0, "None"));
    EXPECT_EQ(parse("HTTP/1.1 -1 Odd"), Parts(-1, "Odd"));
    EXPECT_EQ(parse("HTTP/1.1 0404 Odd"), Parts(404, "Odd"));
    EXPECT_EQ(parse("HTTP/1.1 2147483647 Odd"), Parts(INT_MAX, "Odd"));
    EXPECT_EQ(parse("HTTP/1.1 4294967496 Odd"), Parts(200, "Odd"));
}

TEST(HTTPStatusLine, TakesAReasonOf64KiB) {
    const String reason(std::string(64 * 1024, 'r'));
    EXPECT_EQ(parse("HTTP/1.1 200 " + reason), Parts(200, reason));
}

TEST(HTTPStatusLine, MustStartWithHTTP) {
    for (const char* const line :
         {"ICY 200 OK", "HTTPS/1.1 200 OK", " HTTP/1.1 200 OK", "HTTP 200 OK", "HTT", ""})
        expectRejected(line, "Invalid HTTP status line: '" + String(line) + "'");
}

TEST(HTTPStatusLine, MustHoldABlank) {
    for (const char* const line : {"HTTP/1.1", "HTTP/", "HTTP/1.1\t200\tOK", "http/1.1\r\n"})
        expectRejected(line, "Invalid HTTP status line: '" + String(line) + "'");
}

TEST(HTTPStatusLine, QuotesARejectedLineWhole) {
    const String line(L"ICY \u20AC 'x'\r\n");
    expectRejected(line, "Invalid HTTP status line: '" + line + "'");
    const String withNUL("ICY\0 200", 8);
    expectRejected(withNUL, "Invalid HTTP status line: '" + withNUL + "'");
}

TEST(HTTPStatusLine, RejectsACodeThatIsNoInteger) {
    expectRejected("HTTP/1.1 OK", "Invalid integer: 'OK'.");
    expectRejected("HTTP/1.1 2x0 OK", "Invalid integer: '2x0'.");
    expectRejected("HTTP/1.1 200.5 OK", "Invalid integer: '200.5'.");
    expectRejected("HTTP/1.1 99999999999999999999 OK", "Invalid integer: '99999999999999999999'.");
    expectRejected(String(L"HTTP/1.1 \u0662\u0660\u0660 OK"),
                   String(L"Invalid integer: '\u0662\u0660\u0660'."));
}

TEST(HTTPStatusLine, DoesNotTrimTheCode) {
    expectRejected("HTTP/1.1 200\r\n", "Invalid integer: '200\r\n'.");
    expectRejected("HTTP/1.1 \t200 OK", "Invalid integer: '\t200'.");
    expectRejected("HTTP/1.1 200\tOK", "Invalid integer: '200\tOK'.");
}

TEST(HTTPStatusLine, TakesTheTextBetweenTwoBlanksForTheCodeEvenIfEmpty) {
    expectRejected("HTTP/1.1 ", "Invalid integer: ''.");
    expectRejected("HTTP/1.1  200 OK", "Invalid integer: ''.");
}

TEST(HTTPStatusLine, MayBeReplacedByItsReason) {
    String line = "HTTP/1.1 404 Not Found";
    int code = 0;
    parseHTTPStatusLine(line, code, line);
    EXPECT_EQ(code, 404);
    EXPECT_EQ(line, "Not Found");
}

} // namespace
