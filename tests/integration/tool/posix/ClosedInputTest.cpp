#include "Tool.h"

#include <gtest/gtest.h>

using namespace tooltest;

TEST(ToolLogin, NamesStandardInputThatCannotBeRead) {
    EXPECT_EQ(runScript("\"$TOOL\" get --user u --password-file - http://127.0.0.1:1/ <&-", {}),
              failed("Error reading standard input: Bad file descriptor."));
}
