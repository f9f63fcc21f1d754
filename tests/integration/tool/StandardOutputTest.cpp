#include "Tool.h"

#include "support/NginxServer.h"

#include <gmock/gmock.h>

using namespace testsupport;
using namespace tooltest;

TEST(ToolStandardOutput, EndsQuietlyWhenNobodyReadsOn) {
    NginxServer& server = webServer();
    const Outcome expected{0, "tool 1\n", ""};
    EXPECT_EQ(runScript("\"$TOOL\" get \"$1\" | head -c 1 > /dev/null; echo \"tool ${PIPESTATUS[0]}\"",
                        {server.url("/big.bin")}),
              expected);
}

TEST(ToolStandardOutput, FailsWhenItIsFull) {
    NginxServer& server = webServer();
    const std::string message = "Error writing to standard output: No space left on device.";
    EXPECT_EQ(runScript("\"$TOOL\" get \"$1\" > /dev/full", {server.url("/hello.txt")}), failed(message));
    EXPECT_EQ(runScript("\"$TOOL\" get --include \"$1\" > /dev/full", {server.url("/empty.txt")}),
              failed(message));
    EXPECT_EQ(runScript("\"$TOOL\" --help > /dev/full", {}), failed(message));
}

TEST(ToolStandardOutput, FailsWhenItIsClosed) {
    NginxServer& server = webServer();
    EXPECT_EQ(runScript("\"$TOOL\" get \"$1\" >&-", {server.url("/hello.txt")}),
              failed("Error writing to standard output: Bad file descriptor."));
}

TEST(ToolStandardOutput, IsNotNeededForAFile) {
    NginxServer& server = webServer();
    EXPECT_EQ(runScript("f=$(mktemp); \"$TOOL\" get -o \"$f\" \"$1\" >&- <&- 2>&- && cat \"$f\"; rm \"$f\"",
                        {server.url("/hello.txt")}),
              succeeded(NginxServer::helloContent()));
}
