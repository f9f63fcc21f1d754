#include "Tool.h"

#include "support/ChildProcess.h"
#include "support/NginxServer.h"
#include "support/ScriptedServer.h"
#include "support/TempDir.h"
#include "support/Wait.h"

#include <gmock/gmock.h>

#include <filesystem>

using namespace testsupport;
using namespace tooltest;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::seconds waitLimit{20};
constexpr const char* half = "HTTP/1.1 200 OK\r\nContent-Length: 8\r\n\r\nhalf";
constexpr const char* temporaryName = "\\.vantra-[0-9a-f]{16}\\.part";

/// A tool that writes to "out" in the folder and is held by its server when it has received "half".
class HeldDownload {
public:
    HeldDownload() : latch_(std::make_shared<Latch>()) {}

    void start(Script rest(Script)) {
        server_.play(rest(Script().expectRequest().send(half).waitFor(latch_)));
        ChildOptions options;
        options.environment = toolEnvironment();
        tool_.emplace(std::vector<std::string>{toolPath(), "get", "-o", folder_.file("out"), server_.url()},
                      options);
        ASSERT_TRUE(latch_->waitUntilReached());
        ASSERT_TRUE(waitUntil([&] { return filesIn(folder_.path()).size() > existing_; }, waitLimit));
    }

    /// Lets the server go on; the tool's exit status.
    int finish() {
        latch_->release();
        EXPECT_TRUE(waitUntil([&] { return !tool_->isRunning(); }, waitLimit));
        return tool_->stop();
    }

    void writeExisting(std::string_view content) {
        folder_.writeFile("out", content);
        existing_ = 1;
    }
    const TempDir& folder() const { return folder_; }
    std::string output() const { return tool_->output(); }
    std::string url() const { return server_.url(); }

private:
    TempDir folder_;
    std::size_t existing_ = 0;
    ScriptedServer server_;
    std::shared_ptr<Latch> latch_;
    std::optional<ChildProcess> tool_;
};

} // namespace

TEST(ToolOutputFile, HoldsTheBodyByteForByte) {
    NginxServer& server = webServer();
    TempDir folder;
    EXPECT_EQ(runTool({"get", "-o", folder.file("big"), server.url("/big.bin")}), succeeded(""));
    EXPECT_EQ(runTool({"get", "--output", folder.file("empty"), server.url("/empty.txt")}), succeeded(""));
    EXPECT_EQ(folder.readFile("big"), NginxServer::bigContent());
    EXPECT_EQ(folder.readFile("empty"), "");
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("big", "empty"));
}

TEST(ToolOutputFile, IsMadeInTheCurrentFolderForANameAlone) {
    NginxServer& server = webServer();
    TempDir folder;
    EXPECT_EQ(runScript("cd \"$1\" && \"$TOOL\" get -o \xC3\xBC.txt \"$2\"",
                        {folder.path(), server.url("/hello.txt")}),
              succeeded(""));
    EXPECT_EQ(folder.readFile("\xC3\xBC.txt"), NginxServer::helloContent());
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("\xC3\xBC.txt"));
}

TEST(ToolOutputFile, AppearsWhenItIsComplete) {
    HeldDownload download;
    ASSERT_NO_FATAL_FAILURE(download.start([](Script script) { return script.send("done"); }));
    EXPECT_THAT(filesIn(download.folder().path()), ElementsAre(MatchesRegex(temporaryName)));
    EXPECT_EQ(download.finish(), 0);
    EXPECT_EQ(download.output(), "");
    EXPECT_EQ(download.folder().readFile("out"), "halfdone");
    EXPECT_THAT(filesIn(download.folder().path()), ElementsAre("out"));
}

TEST(ToolOutputFile, ReplacesAnExistingOneInOneStep) {
    HeldDownload download;
    download.writeExisting("old content");
    ASSERT_NO_FATAL_FAILURE(download.start([](Script script) { return script.send("done"); }));
    EXPECT_THAT(filesIn(download.folder().path()), ElementsAre(MatchesRegex(temporaryName), "out"));
    EXPECT_EQ(download.folder().readFile("out"), "old content");
    EXPECT_EQ(download.finish(), 0);
    EXPECT_EQ(download.folder().readFile("out"), "halfdone");
    EXPECT_THAT(filesIn(download.folder().path()), ElementsAre("out"));
}

TEST(ToolOutputFile, IsNotThereAfterAFailure) {
    HeldDownload download;
    ASSERT_NO_FATAL_FAILURE(download.start([](Script script) { return script.reset(); }));
    EXPECT_EQ(download.finish(), 1);
    EXPECT_EQ(download.output(),
              "vantra: " + download.url() +
                  ": Failure when receiving data from the peer: Recv failure: Connection reset "
                  "by peer (response code: http 200)\n");
    EXPECT_THAT(filesIn(download.folder().path()), IsEmpty());
}

TEST(ToolOutputFile, StaysAsItWasAfterAFailure) {
    HeldDownload download;
    download.writeExisting("old content");
    ASSERT_NO_FATAL_FAILURE(download.start([](Script script) { return script.reset(); }));
    EXPECT_EQ(download.finish(), 1);
    EXPECT_EQ(download.folder().readFile("out"), "old content");
    EXPECT_THAT(filesIn(download.folder().path()), ElementsAre("out"));
}

TEST(ToolOutputFile, KeepsThePermissionsOfAnExistingOne) {
    NginxServer& server = webServer();
    TempDir folder;
    const fs::perms secret = fs::perms::owner_read | fs::perms::owner_write;
    fs::permissions(folder.writeFile("out", "old"), secret);
    EXPECT_EQ(runTool({"get", "-o", folder.file("out"), server.url("/hello.txt")}), succeeded(""));
    EXPECT_EQ(folder.readFile("out"), NginxServer::helloContent());
    EXPECT_EQ(fs::status(folder.file("out")).permissions(), secret);
}

TEST(ToolOutputFile, HasThePermissionsThatTheUserWantsForNewOnes) {
    NginxServer& server = webServer();
    TempDir folder;
    EXPECT_EQ(runScript("umask 027; \"$TOOL\" get -o \"$1\" \"$2\"",
                        {folder.file("out"), server.url("/hello.txt")}),
              succeeded(""));
    EXPECT_EQ(fs::status(folder.file("out")).permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
}

TEST(ToolOutputFile, IsTheOneThatALinkNames) {
    NginxServer& server = webServer();
    TempDir folder;
    folder.writeFile("data/real", "old");
    fs::create_symlink("data/real", folder.file("link"));
    fs::create_symlink(folder.file("data/new"), folder.file("dangling"));
    EXPECT_EQ(runTool({"get", "-o", folder.file("link"), server.url("/hello.txt")}), succeeded(""));
    EXPECT_EQ(runTool({"get", "-o", folder.file("dangling"), server.url("/hello.txt")}), succeeded(""));
    EXPECT_TRUE(fs::is_symlink(folder.file("link")));
    EXPECT_TRUE(fs::is_symlink(folder.file("dangling")));
    EXPECT_EQ(folder.readFile("data/real"), NginxServer::helloContent());
    EXPECT_EQ(folder.readFile("data/new"), NginxServer::helloContent());
}

TEST(ToolOutputFile, IsRefusedWhenItsLinksGoInACircle) {
    TempDir folder;
    fs::create_symlink("two", folder.file("one"));
    fs::create_symlink("one", folder.file("two"));
    EXPECT_EQ(runTool({"get", "-o", folder.file("one"), "http://127.0.0.1:1/"}),
              failed("Error creating file '" + folder.file("one") + "': Too many levels of symbolic links."));
}

TEST(ToolOutputFile, IsRefusedBeforeTheTransferWhenItCannotBeMade) {
    ScriptedServer server; // would note a connection as an error
    TempDir folder;
    EXPECT_EQ(runTool({"get", "-o", folder.file("missing/out"), server.url()}),
              failed("Error creating file '" + folder.file("missing/out") + "': No such file or directory."));
    EXPECT_EQ(runTool({"get", "-o", folder.path(), server.url()}),
              failed("Error creating file '" + folder.path() + "': Is a directory."));
    EXPECT_THAT(server.finish(), IsEmpty());
    EXPECT_THAT(filesIn(folder.path()), IsEmpty());
}

TEST(ToolOutputFile, IsWrittenDirectlyWhenItIsADevice) {
    NginxServer& server = webServer();
    EXPECT_EQ(runTool({"get", "-o", "/dev/null", server.url("/big.bin")}), succeeded(""));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    EXPECT_EQ(runTool({"get", "-o", "/dev/stdout", server.url("/hello.txt")}),
              succeeded(NginxServer::helloContent()));
    EXPECT_EQ(runTool({"get", "-o", "/dev/full", server.url("/big.bin")}),
              failed("Error writing file '/dev/full': No space left on device."));
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST(ToolOutputFile, IsGivenUpWhenItCannotBeWritten) {
    NginxServer& server = webServer();
    TempDir folder;
    folder.writeFile("out", "old");
    // A limit on the size of files is the nearest thing to a full disk that a test can have.
    EXPECT_EQ(runScript("trap '' XFSZ; ulimit -f 64; \"$TOOL\" get -o \"$1\" \"$2\"",
                        {folder.file("out"), server.url("/big.bin")}),
              failed("Error writing file '" + folder.file("out") + "': File too large."));
    EXPECT_EQ(folder.readFile("out"), "old");
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("out"));
}

TEST(ToolOutputFile, WhoseNameIsTooLongIsRefusedBeforeTheTransfer) {
    ScriptedServer server; // would note a connection as an error
    TempDir folder;
    const std::string file = folder.file(std::string(300, 'a'));
    EXPECT_EQ(runTool({"get", "-o", file, server.url()}),
              failed("Error creating file '" + file + "': File name too long."));
    EXPECT_THAT(filesIn(folder.path()), IsEmpty());
    EXPECT_THAT(server.finish(), IsEmpty());
}
