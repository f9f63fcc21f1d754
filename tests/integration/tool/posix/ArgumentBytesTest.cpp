// Arguments are bytes on a POSIX system, which need not be text.
#include "Tool.h"

#include <gtest/gtest.h>

using namespace tooltest;

TEST(ToolArgumentBytes, MustBeUTF8) {
    EXPECT_EQ(runTool({"get", "http://example.org/\xFC"}), refused("URL: is not valid UTF-8"));
    const auto getWith = [](const std::string& option, const std::string& value) {
        return runTool({"get", option, value, "http://127.0.0.1:1/"});
    };
    EXPECT_EQ(getWith("-o", "\xFC"), refused("--output: is not valid UTF-8"));
    EXPECT_EQ(getWith("--header", "X: \xFC"), refused("--header: is not valid UTF-8"));
}

TEST(ToolArgumentBytes, MustBeUTF8InAMailToo) {
    const std::vector<std::string> start{"mail", "send", "--server", "127.0.0.1:1", "--tls", "none"};
    const auto runWith = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), start.begin(), start.end());
        return runTool(arguments);
    };
    EXPECT_EQ(runWith({"--to", "\xFF@b.c", "--from", "a@b.c", "--subject", "x", "--text", "/dev/null"}),
              refused("--to: is not valid UTF-8"));
    EXPECT_EQ(runWith({"--to", "d@e.f", "--from", "a@b.c", "--subject", "\xFF", "--text", "/dev/null"}),
              refused("--subject: is not valid UTF-8"));
}
