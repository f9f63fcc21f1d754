#include "support/ChildProcess.h"

#include "support/Command.h"
#include "support/NginxServer.h"
#include "support/Ports.h"
#include "support/ScriptedServer.h"
#include "support/ServerStart.h"
#include "support/TempDir.h"
#include "support/Wait.h"
#include "unit/support/Processes.h"

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>

using namespace testsupport;

namespace {

constexpr std::chrono::seconds limit{10};
constexpr int crasherExitStatus = 3;

std::vector<std::string> shell(const std::string& script) { return {"sh", "-c", script}; }

/// A server which listens on a port, as short as it gets.
std::vector<std::string> listenerOn(std::uint16_t port) {
    return {"/usr/bin/python3", "-I", "-S", "-c",
            "import socket, time\n"
            "s = socket.socket()\n"
            "s.bind(('127.0.0.1', " +
                std::to_string(port) +
                "))\n"
                "s.listen()\n"
                "time.sleep(1000)\n"};
}

void waitForEnd(ChildProcess& child) {
    ASSERT_TRUE(waitUntil([&] { return !child.isRunning(); }, limit));
}

} // namespace

TEST(ChildProcess, CollectsBothOutputs) {
    ChildProcess child(shell("echo out; echo err >&2"));
    waitForEnd(child);
    EXPECT_EQ(child.output(), "out\nerr\n");
    EXPECT_EQ(child.exitStatus(), 0);
}

TEST(ChildProcess, AppendsItsOutputToAFile) {
    const TempDir folder;
    ChildOptions options;
    options.outputFile = folder.writeFile("log", "before\n");
    ChildProcess child(shell("echo after"), options);
    waitForEnd(child);
    EXPECT_EQ(folder.readFile("log"), "before\nafter\n");
    EXPECT_EQ(child.output(), "before\nafter\n");
}

TEST(ChildProcess, UsesTheFolderAndTheEnvironmentGiven) {
    const TempDir folder;
    ChildOptions options;
    options.workingDirectory = folder.path();
    options.environment = {{"ADDED", "a value"}, {"HOME", std::nullopt}, {"PATH", "/replaced"}};
    ChildProcess child(shell("pwd; echo \"$ADDED,${HOME-none},$PATH\""), options);
    waitForEnd(child);
    EXPECT_EQ(child.output(), folder.path() + "\na value,none,/replaced\n");
}

TEST(ChildProcess, HasNoInput) {
    ChildProcess child({"cat"});
    waitForEnd(child);
    EXPECT_EQ(child.exitStatus(), 0);
}

TEST(ChildProcess, TellsTheExitStatusOnlyAfterTheEnd) {
    ChildProcess child({"sleep", "1000"});
    EXPECT_TRUE(child.isRunning());
    EXPECT_EQ(child.exitStatus(), std::nullopt);
    EXPECT_EQ(child.stop(), exitStatusAfter(Signal::terminate));
    EXPECT_FALSE(child.isRunning());
    EXPECT_EQ(child.exitStatus(), exitStatusAfter(Signal::terminate));
}

TEST(ChildProcess, StopKeepsTheStatusOfAChildThatEndedBefore) {
    ChildProcess child(shell("exit 7"));
    waitForEnd(child);
    EXPECT_EQ(child.stop(), 7);
    EXPECT_EQ(child.stop(), 7);
}

TEST(ChildProcess, StopLetsTheChildEndInOrder) {
    ChildProcess child(shell("trap 'echo bye; exit 5' TERM; echo ready; while :; do sleep 0.01; done"));
    ASSERT_TRUE(waitUntil([&] { return child.output() == "ready\n"; }, limit));
    EXPECT_EQ(child.stop(), 5);
    EXPECT_EQ(child.output(), "ready\nbye\n");
}

TEST(ChildProcess, StopKillsAChildThatDoesNotEnd) {
    ChildOptions options;
    options.stopLimit = std::chrono::milliseconds(100);
    ChildProcess child(shell("trap '' TERM; echo ready; while :; do sleep 0.01; done"), options);
    ASSERT_TRUE(waitUntil([&] { return child.output() == "ready\n"; }, limit));
    EXPECT_EQ(child.stop(), exitStatusAfter(Signal::kill));
}

TEST(ChildProcess, StopEndsWhatTheChildHasStarted) {
    ChildProcess child(shell("sleep 1000 & echo $!; wait"));
    ASSERT_TRUE(waitUntil([&] { return child.output().ends_with('\n'); }, limit));
    const pid_t grandchild = std::stoi(child.output());
    EXPECT_TRUE(isProcessAlive(grandchild));
    child.stop();
    EXPECT_FALSE(isProcessAlive(grandchild));
}

TEST(ChildProcess, IsStoppedByTheDestructor) {
    pid_t process = 0;
    {
        const ChildProcess child({"sleep", "1000"});
        process = child.pid();
        EXPECT_TRUE(isProcessAlive(process));
    }
    EXPECT_FALSE(isProcessAlive(process));
}

TEST(ChildProcess, OutlivesTheThreadThatStartedIt) {
    std::unique_ptr<ChildProcess> child;
    std::thread([&] { child = std::make_unique<ChildProcess>(shell("sleep 0.3; exit 4")); }).join();
    waitForEnd(*child);
    EXPECT_EQ(child->exitStatus(), 4);
}

TEST(ChildProcess, DiesWithACrashingParent) {
    const CommandResult crasher = runCommand({SUPPORT_CRASHER, "child"});
    ASSERT_EQ(crasher.exitStatus, crasherExitStatus) << crasher.standardError;
    const pid_t child = std::stoi(crasher.standardOutput);
    EXPECT_TRUE(waitUntil([&] { return !isProcessAlive(child); }, limit));
}

TEST(ChildProcess, DiesWithItsWorkersWhenTheParentCrashes) {
    const TempDir folder;
    CommandOptions options;
    options.environment["TMPDIR"] = folder.path();
    const CommandResult crasher = runCommand({SUPPORT_CRASHER, "nginx"}, {}, options);
    ASSERT_EQ(crasher.exitStatus, crasherExitStatus) << crasher.standardError;
    std::istringstream line(crasher.standardOutput);
    pid_t master = 0;
    std::uint16_t port = 0;
    ASSERT_TRUE(line >> master >> port);
    EXPECT_TRUE(waitUntil([&] { return !isProcessAlive(master) && !acceptsConnections(port); }, limit));
}

TEST(ChildProcess, ReportsAProgramThatCannotBeStarted) {
    const TempDir folder;
    try {
        ChildProcess child({folder.writeFile("not-a-program", "")});
        FAIL() << "started a file that is no program";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), "cannot start " + folder.file("not-a-program") + ": Permission denied");
    }
}

TEST(ChildProcess, ReportsAFolderThatDoesNotExist) {
    ChildOptions options;
    options.workingDirectory = "/no/such/folder";
    try {
        ChildProcess child({"true"}, options);
        FAIL() << "started a program in a folder that does not exist";
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), testing::EndsWith("No such file or directory"));
    }
}

TEST(ChildProcess, WaitsForAPort) {
    const std::uint16_t port = freePort();
    ChildProcess child(listenerOn(port));
    child.waitForPort(port);
    EXPECT_TRUE(acceptsConnections(port));
}

TEST(ChildProcess, ReportsAnEarlyDeathWhileWaitingForAPort) {
    const std::uint16_t port = freePort();
    ChildProcess child(shell("echo cannot read the configuration; exit 3"));
    try {
        child.waitForPort(port);
        FAIL() << "nothing can listen there";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), "sh (process " + std::to_string(child.pid()) +
                                    ") ended with status 3 before it accepted connections on port " +
                                    std::to_string(port) + "; its output: cannot read the configuration\n");
    }
}

TEST(ChildProcess, ReportsAChildThatDoesNotListenInTime) {
    const std::uint16_t port = freePort();
    ChildProcess child(shell("echo thinking; exec sleep 1000"));
    ASSERT_TRUE(waitUntil([&] { return child.output() == "thinking\n"; }, limit));
    try {
        child.waitForPort(port, std::chrono::milliseconds(50));
        FAIL() << "nothing listens there";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), "sh (process " + std::to_string(child.pid()) +
                                    ") did not accept connections on port " + std::to_string(port) +
                                    " within 50 ms; its output: thinking\n");
    }
}

TEST(ChildProcess, NoticesThatItsPortBelongsToSomebodyElse) {
    ScriptedServer other([](ScriptedConnection& connection) { connection.waitForEnd(); });
    ChildProcess child(shell("echo 'bind() failed (98: Address already in use)'; exec sleep 1000"));
    ASSERT_TRUE(waitUntil([&] { return child.output().ends_with('\n'); }, limit));
    EXPECT_THROW(child.waitForPort(other.port()), PortTaken);
}

TEST(StartServer, TriesOtherPortsWhenOneIsTaken) {
    ScriptedServer other([](ScriptedConnection& connection) { connection.waitForEnd(); });
    std::vector<std::vector<std::uint16_t>> attempts;
    const StartedServer server = startServer(1, [&](const std::vector<std::uint16_t>& ports) {
        attempts.push_back(ports);
        return std::make_unique<ChildProcess>(listenerOn(attempts.size() == 1 ? other.port() : ports.at(0)));
    });
    ASSERT_EQ(attempts.size(), 2U);
    EXPECT_NE(attempts[0], attempts[1]);
    EXPECT_EQ(server.ports, attempts[1]);
    EXPECT_TRUE(acceptsConnections(server.ports.at(0)));
}

TEST(StartServer, GivesUpWhenEveryPortIsTaken) {
    ScriptedServer other([](ScriptedConnection& connection) { connection.waitForEnd(); });
    int attempts = 0;
    const auto launch = [&](const std::vector<std::uint16_t>&) {
        ++attempts;
        return std::make_unique<ChildProcess>(listenerOn(other.port()));
    };
    EXPECT_THROW(startServer(1, launch), PortTaken);
    EXPECT_EQ(attempts, 5);
}
