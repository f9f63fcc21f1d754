#include "FTPServers.h"

#include <gtest/gtest.h>

#include <string>

using namespace testsupport;
using namespace tooltest;

namespace {

/// A name with letters that few code pages have, and one from outside of Unicode's basic plane.
const std::string name = "Gr\u00f6\u00dfe \u65e5\u672c \u20ac \U0001F418.bin";
const std::string escapedName = "Gr%C3%B6%C3%9Fe%20%E6%97%A5%E6%9C%AC%20%E2%82%AC%20%F0%9F%90%98.bin";

} // namespace

TEST_P(ToolFtp, TakesFileNamesWithAnyLetters) {
    const std::string content("\0\r\n\xff\x1a more", 10);
    EXPECT_EQ(runFtp({"put", url("/" + escapedName), local_.writeFile(name, content)}), succeeded(""));
    EXPECT_EQ(readFile("/" + name), content);
    EXPECT_EQ(runFtp({"get", "-o", local_.file("copy " + name), url("/" + escapedName)}), succeeded(""));
    EXPECT_EQ(local_.readFile("copy " + name), content);
}
