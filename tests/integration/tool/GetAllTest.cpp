#include "Tool.h"

#include "support/ChildProcess.h"
#include "support/Ports.h"
#include "support/ScriptedServer.h"
#include "support/TempDir.h"
#include "support/Wait.h"

#include <gmock/gmock.h>

#include <sstream>

using namespace testsupport;
using namespace tooltest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

namespace {

constexpr std::chrono::seconds waitLimit{20};

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

std::string heldHalf() { return "HTTP/1.1 200 OK\r\nContent-Length: 8\r\n\r\nhalf"; }

} // namespace

TEST(ToolGetAll, WritesEachURLToAFile) {
    NginxServer& server = webServer();
    TempDir folder;
    EXPECT_EQ(runTool({"get-all", "-d", folder.path(), server.url("/hello.txt"), server.url("/big.bin"),
                       server.url("/empty.txt"), server.url("/r302")}),
              succeeded(""));
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("big.bin", "empty.txt", "hello.txt", "r302"));
    EXPECT_EQ(folder.readFile("hello.txt"), NginxServer::helloContent());
    EXPECT_TRUE(folder.readFile("big.bin") == NginxServer::bigContent());
    EXPECT_EQ(folder.readFile("empty.txt"), "");
    EXPECT_EQ(folder.readFile("r302"), NginxServer::helloContent());
}

TEST(ToolGetAll, WritesToTheCurrentFolderUnlessToldOtherwise) {
    TempDir folder;
    EXPECT_EQ(
        runScript("cd \"$1\" && \"$TOOL\" get-all \"$2\"", {folder.path(), webServer().url("/hello.txt")}),
        succeeded(""));
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("hello.txt"));
}

TEST(ToolGetAll, OverwritesNoFile) {
    NginxServer& server = webServer();
    TempDir folder;
    folder.writeFile("hello.txt", "precious");
    folder.writeFile("hello (3).txt", "precious too");
    EXPECT_EQ(runTool({"get-all", "-d", folder.path(), server.url("/hello.txt"),
                       server.url("/hello.txt?again"), server.url("/noranges/hello.txt")}),
              succeeded(""));
    EXPECT_THAT(filesIn(folder.path()),
                ElementsAre("hello (2).txt", "hello (3).txt", "hello (4).txt", "hello (5).txt", "hello.txt"));
    EXPECT_EQ(folder.readFile("hello.txt"), "precious");
    EXPECT_EQ(folder.readFile("hello (3).txt"), "precious too");
    for (const char* name : {"hello (2).txt", "hello (4).txt", "hello (5).txt"})
        EXPECT_EQ(folder.readFile(name), NginxServer::helloContent());
}

TEST(ToolGetAll, OverwritesNoFileThatComesUpMeanwhile) {
    ScriptedServer server;
    const auto latch = std::make_shared<Latch>();
    server.play(Script().expectRequest().send(heldHalf()).waitFor(latch).send("done").close());
    TempDir folder;
    ChildOptions options;
    options.environment = toolEnvironment();
    ChildProcess tool({toolPath(), "get-all", "-d", folder.path(), server.url("/a.txt")}, options);
    ASSERT_TRUE(latch->waitUntilReached());
    folder.writeFile("a.txt", "precious");
    folder.writeFile("a (2).txt", "precious too");
    latch->release();
    ASSERT_TRUE(waitUntil([&] { return !tool.isRunning(); }, waitLimit));
    EXPECT_EQ(tool.stop(), 0);
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("a (2).txt", "a (3).txt", "a.txt"));
    EXPECT_EQ(folder.readFile("a.txt"), "precious");
    EXPECT_EQ(folder.readFile("a (2).txt"), "precious too");
    EXPECT_EQ(folder.readFile("a (3).txt"), "halfdone");
}

TEST(ToolGetAll, TakesTheNameThatTheServerGives) {
    ScriptedServer server;
    TempDir folder;
    for (const char* name :
         {"report.pdf", "../../up.txt", "C:\\\\windows\\\\down.txt", ".bashrc", "..", "n\x07ul?"}) {
        server.play(Script().expectRequest().send(
            okResponse(name, "Content-Disposition: attachment; filename=\"" + std::string(name) + "\"\r\n")));
        EXPECT_EQ(runTool({"get-all", "-d", folder.path(), server.url("/path/other")}), succeeded(""));
    }
    EXPECT_THAT(filesIn(folder.path()),
                ElementsAre("_bashrc", "down.txt", "index.html", "n_ul_", "report.pdf", "up.txt"));
    EXPECT_EQ(folder.readFile("report.pdf"), "report.pdf");
    EXPECT_EQ(folder.readFile("up.txt"), "../../up.txt");
}

TEST(ToolGetAll, DoesNotLeaveItsFolder) {
    ScriptedServer server;
    TempDir folder;
    for (int i = 0; i < 3; ++i) server.play(Script().expectRequest().send(okResponse("x")));
    EXPECT_EQ(
        runTool({"get-all", "-d", folder.file(""), "--parallel", "1", server.url("/a/%2e%2e%2f%2e%2e%2fup"),
                 server.url("/a/%2e%2e%5cdown"), server.url("/")}),
        succeeded(""));
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("down", "index.html", "up"));
}

TEST(ToolGetAll, GoesOnAfterAFailureAndCountsThem) {
    NginxServer& server = webServer();
    const RefusedPort port;
    ScriptedServer broken;
    broken.play(Script().expectRequest().send(heldHalf()).reset());
    TempDir folder;
    const std::string refusedURL = "http://127.0.0.1:" + std::to_string(port.port()) + "/refused";
    const Outcome outcome = runTool({"get-all", "-d", folder.path(), server.url("/s404"), refusedURL,
                                     broken.url("/reset"), server.url("/hello.txt")});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.output, "");
    std::vector<std::string> resets;
    for (const std::string& message : messagesOfReset(broken.url("/reset"), 4))
        resets.push_back("vantra: " + message);
    std::vector<std::string> lines = linesOf(outcome.error);
    ASSERT_EQ(lines.size(), 4U) << outcome.error;
    EXPECT_EQ(lines.back(), "vantra: 3 of 4 transfers failed.");
    lines.pop_back();
    EXPECT_THAT(
        lines, UnorderedElementsAre(StartsWith("vantra: " + server.url("/s404") + ": HTTP/1.1 404 Not Found"),
                                    StartsWith("vantra: " + refusedURL + ": Couldn't connect to server"),
                                    testing::AnyOfArray(resets)));
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("hello.txt"));
}

TEST(ToolGetAll, FetchesHundredsOfFiles) {
    NginxServer& server = webServer();
    TempDir folder;
    std::vector<std::string> arguments{"get-all", "-d", folder.path(), "--parallel", "100"};
    for (int i = 0; i < 300; ++i) arguments.push_back(server.url("/hello.txt?" + std::to_string(i)));
    EXPECT_EQ(runTool(arguments), succeeded(""));
    const std::vector<std::string> names = filesIn(folder.path());
    EXPECT_EQ(names.size(), 300U);
    for (const std::string& name : names) EXPECT_EQ(folder.readFile(name), NginxServer::helloContent());
}

TEST(ToolGetAll, RunsNoMoreAtATimeThanAsked) {
    ScriptedServer server;
    const auto first = std::make_shared<Latch>();
    const auto second = std::make_shared<Latch>();
    for (const auto& latch : {first, second})
        server.play(Script().expectRequest().waitFor(latch).send(okResponse("x")).close());
    server.play(Script().expectRequest().send(okResponse("y")).close());
    TempDir folder;
    ChildOptions options;
    options.environment = toolEnvironment();
    ChildProcess tool({toolPath(), "get-all", "-d", folder.path(), "--parallel", "2", server.url("/a"),
                       server.url("/b"), server.url("/c")},
                      options);
    ASSERT_TRUE(first->waitUntilReached());
    ASSERT_TRUE(second->waitUntilReached());
    EXPECT_FALSE(server.waitForConnections(3, std::chrono::milliseconds(500)));
    first->release();
    EXPECT_TRUE(server.waitForRequests(3));
    second->release();
    ASSERT_TRUE(waitUntil([&] { return !tool.isRunning(); }, waitLimit));
    EXPECT_EQ(tool.stop(), 0);
    EXPECT_EQ(tool.output(), "");
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("a", "b", "c"));
}

TEST(ToolGetAll, LogsEveryTransfer) {
    NginxServer& server = webServer();
    TempDir folder;
    const Outcome outcome = runTool({"get-all", "-d", folder.path(), "--log", folder.file("log"),
                                     server.url("/hello.txt"), server.url("/s404")});
    EXPECT_EQ(outcome.exitStatus, 1);
    const std::string log = folder.readFile("log");
    EXPECT_THAT(log, StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<NetRequests>\n"));
    EXPECT_THAT(log, HasSubstr("<NetRequest httpMethod=\"\" url=\"" + server.url("/hello.txt") + "\">"));
    EXPECT_THAT(log, HasSubstr("<NetRequest httpMethod=\"\" url=\"" + server.url("/s404") + "\">"));
}

TEST(ToolGetAll, RefusesArgumentsThatAreNone) {
    const std::string url = "http://127.0.0.1:1/";
    TempDir folder;
    EXPECT_EQ(runTool({"get-all"}), refused("URL is required"));
    EXPECT_EQ(runTool({"get-all", url, "nonsense"}),
              refused("URL: has no scheme; begin it with http://, https://, ftp:// or ftps://"));
    for (const char* count : {"", "0", "-1", "201", "many", "1.5"})
        EXPECT_EQ(runTool({"get-all", url, "--parallel", count}),
                  refused("--parallel: '" + std::string(count) + "' is not a number from 1 to 200"));
    EXPECT_EQ(runTool({"get-all", url, "-d", ""}), refused("--directory: must not be empty"));
    EXPECT_EQ(runTool({"get-all", url, "-d", folder.file("missing")}),
              failed("Error creating a file in folder '" + nativeName(folder.file("missing")) +
                     "': No such file or directory."));
    EXPECT_EQ(runTool({"get-all", url, "-d", folder.writeFile("file", "")}),
              failed("Error creating a file in folder '" + nativeName(folder.file("file")) +
                     "': Not a directory."));
}
