#include "support/HttpRequest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

using namespace testsupport;
using testing::ElementsAre;

TEST(HttpRequest, IsTakenApartLineByLine) {
    const HttpRequest request =
        parseRequestHead("PUT /a?b=c HTTP/1.1\r\nHost: one\r\nX-Empty:\r\nx-two:  b \r\n\r\n");
    EXPECT_EQ(request.startLine, "PUT /a?b=c HTTP/1.1");
    EXPECT_EQ(request.method(), "PUT");
    EXPECT_EQ(request.target(), "/a?b=c");
    EXPECT_THAT(request.headerLines, ElementsAre("Host: one", "X-Empty:", "x-two:  b "));
}

TEST(HttpRequest, FindsHeadersInAnyCase) {
    const HttpRequest request =
        parseRequestHead("GET / HTTP/1.1\r\nCookie: a\r\nX-Empty:\r\ncookie:\tb \r\n\r\n");
    EXPECT_EQ(request.header("COOKIE"), "a");
    EXPECT_THAT(request.headers("Cookie"), ElementsAre("a", "b"));
    EXPECT_EQ(request.header("X-Empty"), "");
    EXPECT_EQ(request.header("X-Missing"), std::nullopt);
    EXPECT_EQ(request.header("Cook"), std::nullopt);
}

TEST(HttpRequest, IsRefusedWithoutARequestLine) {
    EXPECT_THROW(parseRequestHead("GET /\r\n\r\n"), std::runtime_error);
    EXPECT_THROW(parseRequestHead("\r\n"), std::runtime_error);
    EXPECT_THROW(parseRequestHead("GET /a b HTTP/1.1\r\n\r\n"), std::runtime_error);
}

TEST(HttpRequest, IsRefusedWithAHeaderWithoutAColon) {
    EXPECT_THROW(parseRequestHead("GET / HTTP/1.1\r\nHost\r\n\r\n"), std::runtime_error);
}

TEST(OkResponse, HasALengthTheHeadersAndTheBody) {
    EXPECT_EQ(okResponse("body", "X-One: 1\r\nX-Two: 2\r\n"),
              "HTTP/1.1 200 OK\r\nContent-Length: 4\r\nX-One: 1\r\nX-Two: 2\r\n\r\nbody");
    EXPECT_EQ(okResponse(""), "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
}
