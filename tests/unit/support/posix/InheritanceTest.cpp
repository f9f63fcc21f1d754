#include "support/ChildProcess.h"
#include "support/posix/FileDescriptor.h"
#include "support/Wait.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace testsupport;

namespace {

std::vector<std::string> shell(const std::string& script) { return {"sh", "-c", script}; }

void waitForEnd(ChildProcess& child) {
    ASSERT_TRUE(waitUntil([&] { return !child.isRunning(); }, std::chrono::seconds(10)));
}

} // namespace

TEST(ChildProcess, InheritsNoDescriptorsButTheStandardOnes) {
    const FileDescriptor inheritable(::open("/dev/null", O_RDONLY));
    ASSERT_TRUE(inheritable.isOpen());
    ChildProcess child(shell("ls /proc/$$/fd; true"));
    waitForEnd(child);
    EXPECT_EQ(child.output(), "0\n1\n2\n");
}

TEST(ChildProcess, StartsWithSignalsAtTheirDefaults) {
    struct sigaction ignored {};
    ignored.sa_handler = SIG_IGN;
    struct sigaction previous {};
    ::sigaction(SIGPIPE, &ignored, &previous);
    ChildProcess child(shell("kill -PIPE $$; echo ignored"));
    ::sigaction(SIGPIPE, &previous, nullptr);
    waitForEnd(child);
    EXPECT_EQ(child.output(), "");
    EXPECT_EQ(child.exitStatus(), 128 + SIGPIPE);
}
