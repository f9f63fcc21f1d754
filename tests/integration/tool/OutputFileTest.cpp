#include "Tool.h"

#include "support/ChildProcess.h"
#include "support/MatchesPattern.h"
#include "support/NginxServer.h"
#include "support/ScriptedServer.h"
#include "support/TempDir.h"
#include "support/Wait.h"

#include <gmock/gmock.h>

#include <system_error>

using namespace testsupport;
using namespace tooltest;
using testing::ElementsAre;
using testing::IsEmpty;

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
    EXPECT_THAT(filesIn(download.folder().path()), ElementsAre(MatchesPattern(temporaryName)));
    EXPECT_EQ(download.finish(), 0);
    EXPECT_EQ(download.output(), "");
    EXPECT_EQ(download.folder().readFile("out"), "halfdone");
    EXPECT_THAT(filesIn(download.folder().path()), ElementsAre("out"));
}

TEST(ToolOutputFile, ReplacesAnExistingOneInOneStep) {
    HeldDownload download;
    download.writeExisting("old content");
    ASSERT_NO_FATAL_FAILURE(download.start([](Script script) { return script.send("done"); }));
    EXPECT_THAT(filesIn(download.folder().path()), ElementsAre(MatchesPattern(temporaryName), "out"));
    EXPECT_EQ(download.folder().readFile("out"), "old content");
    EXPECT_EQ(download.finish(), 0);
    EXPECT_EQ(download.folder().readFile("out"), "halfdone");
    EXPECT_THAT(filesIn(download.folder().path()), ElementsAre("out"));
}

TEST(ToolOutputFile, IsNotThereAfterAFailure) {
    HeldDownload download;
    ASSERT_NO_FATAL_FAILURE(download.start([](Script script) { return script.reset(); }));
    EXPECT_EQ(download.finish(), 1);
    std::vector<std::string> expected;
    for (const std::string& message : messagesOfReset(download.url(), 4))
        expected.push_back(failed(message).error);
    EXPECT_THAT(expected, testing::Contains(download.output()));
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

TEST(ToolOutputFile, IsRefusedBeforeTheTransferWhenItCannotBeMade) {
    ScriptedServer server; // would note a connection as an error
    TempDir folder;
    EXPECT_EQ(runTool({"get", "-o", folder.file("missing/out"), server.url()}),
              failed("Error creating file '" + nativeName(folder.file("missing/out")) +
                     "': No such file or directory."));
    EXPECT_EQ(runTool({"get", "-o", folder.path(), server.url()}),
              failed("Error creating file '" + nativeName(folder.path()) + "': Is a directory."));
    EXPECT_THAT(server.finish(), IsEmpty());
    EXPECT_THAT(filesIn(folder.path()), IsEmpty());
}

TEST(ToolOutputFile, WhoseNameIsTooLongIsRefusedBeforeTheTransfer) {
    ScriptedServer server; // would note a connection as an error
    TempDir folder;
    const std::string file = folder.file(std::string(300, 'a'));
    const std::string reason = std::make_error_code(std::errc::filename_too_long).message();
    EXPECT_EQ(runTool({"get", "-o", file, server.url()}),
              failed("Error creating file '" + nativeName(file) + "': " + reason + "."));
    EXPECT_THAT(filesIn(folder.path()), IsEmpty());
    EXPECT_THAT(server.finish(), IsEmpty());
}
