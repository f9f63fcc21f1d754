#include "support/AccessLog.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

using namespace testsupport;

namespace {

/// A line with the values that the tests look at, and empty texts for the rest.
std::string line(const std::string& uri, const std::string& status) {
    return "{\"method\":\"GET\",\"uri\":\"" + uri +
           "\",\"protocol\":\"HTTP/"
           "1.1\",\"host\":\"\",\"authorization\":\"\",\"userAgent\":\"\",\"accept\":\"\","
           "\"acceptEncoding\":\"\",\"range\":\"bytes=0-1\",\"referer\":\"\",\"cookie\":\"\",\"contentType\":"
           "\"\","
           "\"contentLength\":\"\",\"transferEncoding\":\"\",\"expect\":\"\",\"tlsProtocol\":\"\","
           "\"clientCertificate\":\"\",\"status\":" +
           status + ",\"connection\":12,\"requestOfConnection\":3}";
}

} // namespace

TEST(AccessLog, ReadsTextsAndNumbers) {
    const AccessLogEntry entry = parseAccessLogLine(line("/a?b", "206"));
    EXPECT_EQ(entry.method, "GET");
    EXPECT_EQ(entry.uri, "/a?b");
    EXPECT_EQ(entry.protocol, "HTTP/1.1");
    EXPECT_EQ(entry.range, "bytes=0-1");
    EXPECT_EQ(entry.expect, "");
    EXPECT_EQ(entry.status, 206);
    EXPECT_EQ(entry.connection, 12U);
    EXPECT_EQ(entry.requestOfConnection, 3U);
}

TEST(AccessLog, ReadsEscapes) {
    EXPECT_EQ(parseAccessLogLine(line(R"(\"\\\n\r\t\b\f\u001F\/)", "200")).uri, "\"\\\n\r\t\b\f\x1f/");
}

TEST(AccessLog, RefusesOtherLines) {
    EXPECT_THROW(parseAccessLogLine(""), std::runtime_error);
    EXPECT_THROW(parseAccessLogLine("{"), std::runtime_error);
    EXPECT_THROW(parseAccessLogLine("{\"method\":\"GET"), std::runtime_error);
    EXPECT_THROW(parseAccessLogLine("{\"method\":\"\\u00"), std::runtime_error);
    EXPECT_THROW(parseAccessLogLine(line("/", "x")), std::runtime_error);
    EXPECT_THROW(parseAccessLogLine("{\"method\":\"GET\"}"), std::runtime_error);
}
