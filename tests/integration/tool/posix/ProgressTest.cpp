#include "Terminal.h"
#include "Tool.h"

#include "support/ChildProcess.h"
#include "support/ScriptedServer.h"
#include "support/TempDir.h"
#include "support/Wait.h"

#include <gmock/gmock.h>

using namespace testsupport;
using namespace tooltest;
using testing::MatchesRegex;

namespace {

constexpr std::chrono::seconds waitLimit{20};

/// A download of 8 bytes that the server holds after the first 4, with the terminal as standard error.
class HeldDownload {
public:
    explicit HeldDownload(const std::string& head = "HTTP/1.1 200 OK\r\nContent-Length: 8\r\n\r\n",
                          const std::string& terminalType = "xterm",
                          const std::vector<std::string>& arguments = {})
        : latch_(std::make_shared<Latch>()) {
        server_.play(Script().expectRequest().send(head + "half").waitFor(latch_).send("done").close());
        ChildOptions options;
        options.environment = toolEnvironment();
        options.environment["TERM"] = terminalType;
        std::vector<std::string> command{"bash",
                                         "-c",
                                         "exec \"$TOOL\" get -o \"$1\" \"$2\" \"${@:4}\" 2>\"$3\"",
                                         "bash",
                                         folder_.file("out"),
                                         server_.url(),
                                         terminal_.path()};
        command.insert(command.end(), arguments.begin(), arguments.end());
        tool_.emplace(command, options);
    }

    /// What is shown while the download is held.
    std::string waitForScreen(const std::string& pattern) const {
        waitUntil([&] { return testing::Matches(MatchesRegex(pattern))(terminal_.screen()); }, waitLimit);
        return terminal_.screen();
    }
    bool waitUntilHeld() const { return latch_->waitUntilReached(); }
    int finish() {
        latch_->release();
        EXPECT_TRUE(waitUntil([&] { return !tool_->isRunning(); }, waitLimit));
        return tool_->stop();
    }

    const Terminal& terminal() const { return terminal_; }
    std::string url() const { return server_.url(); }
    std::string content() const { return folder_.readFile("out"); }

private:
    Terminal terminal_;
    TempDir folder_;
    ScriptedServer server_;
    std::shared_ptr<Latch> latch_;
    std::optional<ChildProcess> tool_;
};

} // namespace

TEST(ToolProgress, ShowsBytesAndRateOnTheTerminalUntilTheEnd) {
    HeldDownload download;
    const std::string line = " 50%        4 B /        8 B +[0-9]+ B/s  " + download.url() + "\n";
    EXPECT_THAT(download.waitForScreen(line), MatchesRegex(line));
    EXPECT_EQ(download.finish(), 0);
    EXPECT_EQ(download.content(), "halfdone");
    EXPECT_EQ(download.waitForScreen(""), "");
}

TEST(ToolProgress, ShowsNoTotalThatIsNotKnown) {
    HeldDownload download("HTTP/1.1 200 OK\r\n\r\n");
    const std::string line = "            4 B +[0-9]+ B/s  " + download.url() + "\n";
    EXPECT_THAT(download.waitForScreen(line), MatchesRegex(line));
    EXPECT_EQ(download.finish(), 0);
}

TEST(ToolProgress, GivesWayToAMessage) {
    HeldDownload download("HTTP/1.1 404 Not Found\r\nContent-Length: 8\r\n\r\n");
    ASSERT_TRUE(download.waitUntilHeld());
    EXPECT_EQ(download.finish(), 1);
    const std::string message = "vantra: " + download.url() + ": HTTP/1.1 404 Not Found: halfdone\n";
    EXPECT_EQ(download.waitForScreen(message), message);
}

TEST(ToolProgress, IsNotShownOnATerminalThatCannotMoveItsCursor) {
    for (const char* type : {"dumb", ""}) {
        HeldDownload download("HTTP/1.1 200 OK\r\nContent-Length: 8\r\n\r\n", type);
        ASSERT_TRUE(download.waitUntilHeld());
        EXPECT_EQ(download.finish(), 0);
        EXPECT_EQ(download.terminal().written(), "");
    }
}

TEST(ToolProgress, IsNotShownToAUserWhoWantsQuiet) {
    HeldDownload download("HTTP/1.1 404 Not Found\r\nContent-Length: 8\r\n\r\n", "xterm", {"--quiet"});
    ASSERT_TRUE(download.waitUntilHeld());
    EXPECT_EQ(download.finish(), 1);
    const std::string message = "vantra: " + download.url() + ": HTTP/1.1 404 Not Found: halfdone\n";
    EXPECT_EQ(download.waitForScreen(message), message);
    EXPECT_EQ(download.terminal().written().find('\x1b'), std::string::npos);
}

TEST(ToolProgress, IsNotShownWhenTheBodyGoesToATerminal) {
    NginxServer& server = webServer();
    const Terminal error;
    const Terminal output;
    EXPECT_EQ(runScript("TERM=xterm \"$TOOL\" get \"$1\" 2>\"$2\" >\"$3\"",
                        {server.url("/hello.txt"), error.path(), output.path()}),
              succeeded(""));
    EXPECT_TRUE(waitUntil([&] { return output.screen() == NginxServer::helloContent(); }, waitLimit));
    EXPECT_EQ(error.written(), "");
}

TEST(ToolProgress, HasALineForEachTransferThatGetAllRuns) {
    ScriptedServer server;
    const auto latch = std::make_shared<Latch>();
    for (int i = 0; i < 2; ++i)
        server.play(Script()
                        .expectRequest()
                        .send("HTTP/1.1 200 OK\r\nContent-Length: 8\r\n\r\nhalf")
                        .waitFor(latch)
                        .send("done")
                        .close());
    server.play(Script().expectRequest().send("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n").close());
    TempDir folder;
    const Terminal terminal;
    ChildOptions options;
    options.environment = toolEnvironment();
    options.environment["TERM"] = "xterm";
    ChildProcess tool({"bash", "-c", "exec \"$TOOL\" get-all --parallel 2 -d \"${@:2}\" 2>\"$1\"", "bash",
                       terminal.path(), folder.path(), server.url("/one"), server.url("/two"),
                       server.url("/three")},
                      options);
    const std::string screen = " 50%        4 B /        8 B +[0-9]+ B/s  one\n"
                               " 50%        4 B /        8 B +[0-9]+ B/s  two\n"
                               "0 of 3 done\n";
    EXPECT_TRUE(
        waitUntil([&] { return testing::Matches(MatchesRegex(screen))(terminal.screen()); }, waitLimit))
        << terminal.screen();
    latch->release();
    ASSERT_TRUE(waitUntil([&] { return !tool.isRunning(); }, waitLimit));
    EXPECT_EQ(tool.stop(), 1);
    const std::string rest =
        "vantra: " + server.url("/three") + ": HTTP/1.1 404 Not Found\nvantra: 1 of 3 transfers failed.\n";
    EXPECT_TRUE(waitUntil([&] { return terminal.screen() == rest; }, waitLimit)) << terminal.screen();
}
