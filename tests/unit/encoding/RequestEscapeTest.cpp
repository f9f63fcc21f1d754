#include "vantra/NetRequest.h"
#include "vantra/URLEncoding.h"

#include "CurlSeams.h"
#include "PlainError.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using encodingtest::CurlSeams;
using encodingtest::expectPlainError;
using kel::P;
using kel::String;
using vantra::CNetRequest;

class RequestEscape : public testing::Test {
protected:
    String escape(const String& text) const { return request_->urlEscape(text); }

    const P<CNetRequest> request_ = new CNetRequest();
};

TEST_F(RequestEscape, KeepsJustTheUnreservedCharacters) {
    const String unreserved = "-.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~";
    EXPECT_EQ(escape(unreserved), unreserved);
    EXPECT_EQ(escape("!\"#$%&'()*+,/:;<=>?@[\\]^`{|}"),
              "%21%22%23%24%25%26%27%28%29%2A%2B%2C%2F%3A%3B%3C%3D%3E%3F%40%5B%5C%5D%5E%60%7B%7C%7D");
}

TEST_F(RequestEscape, WritesDigitsInUpperCaseAndNoPlusUnlikeTheFreeFunction) {
    EXPECT_EQ(escape("a b/c~"), "a%20b%2Fc~");
    EXPECT_EQ(vantra::urlEscape("a b/c~", false), "a%20b%2fc~");
}

TEST_F(RequestEscape, EscapesTheBytesOfUTF8) {
    EXPECT_EQ(escape(String(L"\u00E9")), "%C3%A9");
    EXPECT_EQ(escape(String(L"x\U0001F600y")), "x%F0%9F%98%80y");
    const wchar_t surrogate = 0xD800;
    EXPECT_EQ(escape(String(&surrogate, 1)), "%EF%BF%BD");
}

TEST_F(RequestEscape, EscapesNULCharacters) {
    EXPECT_EQ(escape(String("a\0b", 3)), "a%00b");
    EXPECT_EQ(escape(String("\0", 1)), "%00");
}

TEST_F(RequestEscape, LeavesTheEmptyTextEmpty) { EXPECT_EQ(escape(""), ""); }

TEST_F(RequestEscape, TakesLongTexts) {
    const std::string blanks(100000, ' ');
    std::string expected;
    for (std::size_t i = 0; i < blanks.size(); ++i) expected += "%20";
    EXPECT_TRUE(escape(String(blanks)) == String(expected));
}

TEST_F(RequestEscape, UsesItsOwnHandleAndReleasesWhatLibcurlGives) {
    const CurlSeams seams;
    EXPECT_EQ(escape("a/b"), "a%2Fb");
    EXPECT_EQ(seams.escapeHandles, std::vector<const CURL*>{request_->getHandle()});
    EXPECT_EQ(seams.escaped.size(), 1U);
    EXPECT_EQ(seams.freed, seams.escaped);
}

TEST_F(RequestEscape, SaysThatLibcurlGaveNothing) {
    CurlSeams seams;
    seams.escapeFails = true;
    expectPlainError([&] { static_cast<void>(escape("a/b")); }, "Error URL-escaping a string.");
    EXPECT_TRUE(seams.freed.empty());
}

} // namespace
