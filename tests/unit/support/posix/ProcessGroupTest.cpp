#include "support/posix/ProcessGroup.h"

#include "support/ChildProcess.h"
#include "support/posix/Spawn.h"
#include "support/Wait.h"

#include <chrono>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>

using namespace testsupport;

TEST(ProcessGroup, RunsAsLongAsOneOfItsProcesses) {
    ChildProcess child({"sh", "-c", "sleep 1000 & wait"});
    EXPECT_TRUE(isGroupRunning(child.pid()));
    child.stop();
    EXPECT_FALSE(isGroupRunning(child.pid()));
}

TEST(ProcessGroup, DoesNotCountAProcessThatNobodyHasWaitedFor) {
    const pid_t child = spawn({{"sleep", "1000"}, {}, {}, -1, -1, -1, SIGKILL});
    EXPECT_TRUE(isGroupRunning(child));
    ::kill(child, SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return !isGroupRunning(child); }, std::chrono::seconds(10)));
    EXPECT_EQ(::kill(child, 0), 0);
    EXPECT_EQ(::waitpid(child, nullptr, 0), child);
}

TEST(ProcessGroup, CountsAProcessWhoseFirstThreadHasEnded) {
    // The first thread ends by the system call itself, which leaves the process to the second one.
    ChildProcess child({"/usr/bin/python3", "-I", "-S", "-c",
                        "import ctypes, threading, time\n"
                        "threading.Thread(target=time.sleep, args=(1000,)).start()\n"
                        "print('ready', flush=True)\n"
                        "ctypes.CDLL(None).pthread_exit(None)\n"});
    ASSERT_TRUE(waitUntil([&] { return child.output() == "ready\n"; }, std::chrono::seconds(10)));
    const auto firstThreadState = [&] {
        const std::string path = "/proc/" + std::to_string(child.pid()) + "/stat";
        std::ifstream file(path);
        std::string line;
        std::getline(file, line);
        return line.at(line.rfind(')') + 2);
    };
    ASSERT_TRUE(waitUntil([&] { return firstThreadState() == 'Z'; }, std::chrono::seconds(10)));
    EXPECT_TRUE(isGroupRunning(child.pid()));
    child.stop();
    EXPECT_FALSE(isGroupRunning(child.pid()));
}
