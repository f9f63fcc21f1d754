#include "MailTool.h"
#include "Tool.h"

#include "support/ChildProcess.h"
#include "support/posix/FileDescriptor.h"
#include "support/ScriptedFtpServer.h"
#include "support/ScriptedServer.h"
#include "support/TempDir.h"
#include "support/Wait.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>

using namespace testsupport;
using namespace tooltest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::chrono::seconds waitLimit{20};
constexpr const char* half = "HTTP/1.1 200 OK\r\nContent-Length: 8\r\n\r\nhalf";

ChildOptions toolOptions() {
    ChildOptions options;
    options.environment = toolEnvironment();
    return options;
}

/// A named pipe which this process keeps open and does not read.
class UnreadPipe {
public:
    explicit UnreadPipe(const std::string& path) {
        if (mkfifo(path.c_str(), 0600) != 0) throwErrno("make a pipe");
        end_ = checkedDescriptor(open(path.c_str(), O_RDWR | O_CLOEXEC), "open a pipe");
    }

    bool isFull() const {
        pollfd query{end_.get(), POLLOUT, 0};
        return poll(&query, 1, 0) == 0;
    }

private:
    FileDescriptor end_;
};

bool isSleeping(pid_t process) {
    const std::string status = readWholeFile("/proc/" + std::to_string(process) + "/stat");
    return status.find(") S ") != std::string::npos;
}

} // namespace

TEST(ToolInterrupt, RemovesWhatWasWrittenAndEndsByTheSignal) {
    for (const Signal signal : {Signal::interrupt, Signal::terminate, Signal::hangUp}) {
        ScriptedServer server;
        server.play(Script().expectRequest().send(half).stall());
        TempDir folder;
        ChildProcess tool({toolPath(), "get", "-o", folder.file("out"), server.url()}, toolOptions());
        ASSERT_TRUE(server.waitForRequests(1));
        ASSERT_EQ(filesIn(folder.path()).size(), 1U);

        tool.send(signal);
        ASSERT_TRUE(waitUntil([&] { return !tool.isRunning(); }, waitLimit));
        EXPECT_EQ(tool.exitStatus(), exitStatusAfter(signal));
        EXPECT_EQ(tool.output(), "");
        EXPECT_THAT(filesIn(folder.path()), IsEmpty());
        EXPECT_THAT(server.finish(), IsEmpty());
    }
}

TEST(ToolInterrupt, IsAnOrdinaryExitStatusAfterControlC) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(half).stall());
    TempDir folder;
    const std::string program = "import os, signal, subprocess, sys, time\n"
                                "tool = subprocess.Popen(sys.argv[2:])\n"
                                "while not os.listdir(sys.argv[1]): time.sleep(0.01)\n"
                                "tool.send_signal(signal.SIGINT)\n"
                                "print(tool.wait())\n"; // a negative number after the end by a signal
    CommandOptions options;
    options.environment = toolEnvironment();
    const CommandResult result = runCommand(
        {"python3", "-c", program, folder.path(), toolPath(), "get", "-o", folder.file("out"), server.url()},
        {}, options);
    EXPECT_EQ(result.standardOutput, "130\n");
    EXPECT_EQ(result.standardError, "");
}

TEST(ToolInterrupt, RemovesEveryRunningDownload) {
    for (const Signal signal : {Signal::interrupt, Signal::terminate}) {
        ScriptedServer server;
        server.play(Script().expectRequest().send(okResponse("done")).close());
        for (int i = 0; i < 3; ++i) server.play(Script().expectRequest().send(half).stall());
        TempDir folder;
        ChildProcess tool({toolPath(), "get-all", "-d", folder.path(), "--parallel", "3", server.url("/a"),
                           server.url("/b"), server.url("/c"), server.url("/d"), server.url("/e")},
                          toolOptions());
        ASSERT_TRUE(server.waitForRequests(4));
        ASSERT_TRUE(waitUntil([&] { return filesIn(folder.path()).size() == 4; }, waitLimit));
        tool.send(signal);
        ASSERT_TRUE(waitUntil([&] { return !tool.isRunning(); }, waitLimit));
        EXPECT_EQ(tool.exitStatus(), exitStatusAfter(signal));
        EXPECT_EQ(tool.output(), "");
        EXPECT_EQ(filesIn(folder.path()).size(), 1U); // the one that was complete
        EXPECT_THAT(server.finish(), IsEmpty());
    }
}

TEST(ToolInterrupt, EndsAnUpload) {
    ScriptedServer server;
    const auto latch = std::make_shared<Latch>();
    server.play(Script().expectHead().stallWithoutReading(latch).stall());
    TempDir folder;
    folder.writeFile("body", std::string(8 << 20, 'x'));
    ChildProcess tool({toolPath(), "post", server.url(), "-f", folder.file("body"), "-o", folder.file("out")},
                      toolOptions());
    ASSERT_TRUE(latch->waitUntilReached());
    tool.send(Signal::interrupt);
    ASSERT_TRUE(waitUntil([&] { return !tool.isRunning(); }, waitLimit));
    latch->release();
    EXPECT_EQ(tool.exitStatus(), 130);
    EXPECT_EQ(tool.output(), "");
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("body"));
}

TEST(ToolInterrupt, EndsTheWaitForStandardInput) {
    ScriptedServer server;
    server.play(Script().expectHead().stall());
    TempDir folder;
    const UnreadPipe pipe(folder.file("pipe"));
    ChildProcess tool({"bash", "-c", "exec \"$TOOL\" post \"$1\" -f - -o \"$3\" < \"$2\"", "bash",
                       server.url(), folder.file("pipe"), folder.file("out")},
                      toolOptions());
    ASSERT_TRUE(server.waitForConnections(1));
    tool.send(Signal::interrupt);
    ASSERT_TRUE(waitUntil([&] { return !tool.isRunning(); }, waitLimit));
    EXPECT_EQ(tool.exitStatus(), 130);
    EXPECT_EQ(tool.output(), "");
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("pipe"));
}

TEST(ToolInterrupt, StillWritesTheLog) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(half).stall());
    TempDir folder;
    ChildProcess tool(
        {toolPath(), "get", "-o", folder.file("out"), "--log", folder.file("log"), server.url()},
        toolOptions());
    ASSERT_TRUE(server.waitForRequests(1));
    tool.send(Signal::interrupt);
    ASSERT_TRUE(waitUntil([&] { return !tool.isRunning(); }, waitLimit));
    EXPECT_EQ(tool.exitStatus(), 130);
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("log"));
    EXPECT_TRUE(folder.readFile("log").ends_with("</NetRequest>\n"));
}

TEST(ToolInterrupt, WorksWhileNobodyTakesTheOutput) {
    ScriptedServer server;
    server.play(Script().expectRequest().send("HTTP/1.1 200 OK\r\n\r\n" + std::string(1 << 20, 'x')).stall());
    TempDir folder;
    const UnreadPipe pipe(folder.file("pipe"));
    ChildProcess tool(
        {"bash", "-c", "exec \"$TOOL\" get \"$1\" > \"$2\"", "bash", server.url(), folder.file("pipe")},
        toolOptions());
    ASSERT_TRUE(waitUntil([&] { return pipe.isFull() && isSleeping(tool.pid()); }, waitLimit));

    tool.send(Signal::terminate);
    ASSERT_TRUE(waitUntil([&] { return !tool.isRunning(); }, waitLimit));
    EXPECT_EQ(tool.exitStatus(), exitStatusAfter(Signal::terminate));
    EXPECT_EQ(tool.output(), "");
}

TEST(ToolInterrupt, IsIgnoredWhereTheCallerWantsItSo) {
    ScriptedServer server;
    const auto latch = std::make_shared<Latch>();
    server.play(Script().expectRequest().send(half).waitFor(latch).send("done"));
    ChildProcess tool({"bash", "-c", "trap '' HUP; exec \"$TOOL\" get \"$1\"", "bash", server.url()},
                      toolOptions());
    ASSERT_TRUE(waitUntil([&] { return tool.output() == "half"; }, waitLimit));
    tool.send(Signal::hangUp);
    latch->release();
    ASSERT_TRUE(waitUntil([&] { return !tool.isRunning(); }, waitLimit));
    EXPECT_EQ(tool.exitStatus(), 0);
    EXPECT_EQ(tool.output(), "halfdone");
}

TEST(ToolFTPInterrupt, LeavesNothingOfADownload) {
    ScriptedServer data;
    data.play(Script().send("half").stall());
    ScriptedFtpServer server;
    server.answer("EPSV", "229 Entering Extended Passive Mode (|||" + std::to_string(data.port()) + "|)\r\n");
    server.answer("RETR f", "150 here it comes\r\n");
    TempDir folder;
    ChildProcess tool({toolPath(), "ftp", "get", "-o", folder.file("out"), "ftp://" + server.host() + "/f"},
                      toolOptions());
    ASSERT_TRUE(data.waitForConnections(1));
    ASSERT_TRUE(waitUntil([&] { return filesIn(folder.path()).size() == 1; }, waitLimit));
    ASSERT_TRUE(waitUntil([&] { return server.commands().back() == "RETR f"; }, waitLimit));

    tool.send(Signal::interrupt);
    ASSERT_TRUE(waitUntil([&] { return !tool.isRunning(); }, waitLimit));
    EXPECT_EQ(tool.exitStatus(), exitStatusAfter(Signal::interrupt));
    EXPECT_EQ(tool.output(), "");
    EXPECT_THAT(filesIn(folder.path()), IsEmpty());
}

TEST(ToolMailInterrupt, EndsTheSession) {
    ScriptedServer server;
    TempDir folder;
    const auto greeted = std::make_shared<Latch>();
    server.play(Script().send("220 hello\r\n").expectAnyLine().stall(greeted));
    ChildProcess tool({toolPath(), "mail", "send", "--server", serverAt(server.port()), "--tls", "none",
                       "--from", "a@b.c", "--to", "d@e.f", "--subject", "x", "--text",
                       folder.writeFile("text", "")},
                      toolOptions());
    ASSERT_TRUE(greeted->waitUntilReached());
    tool.send(Signal::interrupt);
    ASSERT_TRUE(waitUntil([&] { return !tool.isRunning(); }, waitLimit));
    EXPECT_EQ(tool.exitStatus(), exitStatusAfter(Signal::interrupt));
    EXPECT_EQ(tool.output(), "");
}
