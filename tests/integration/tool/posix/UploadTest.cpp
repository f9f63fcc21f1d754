// Files of a POSIX system that the command uploads: without a size, without the right to read them, removed.
#include "Tool.h"

#include "support/ChildProcess.h"
#include "support/ScriptedServer.h"
#include "support/TempDir.h"
#include "support/Wait.h"

#include <gmock/gmock.h>

#include <filesystem>

using namespace testsupport;
using namespace tooltest;
using testing::IsEmpty;

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::seconds waitLimit{20};

} // namespace

TEST(ToolUpload, PutsStandardInputAndOtherThingsWithoutASize) {
    NginxServer& server = webServer();
    EXPECT_EQ(runTool({"put", server.url("/put/tool-input"), "-f", "-"}, "input"), succeeded(""));
    EXPECT_EQ(server.fileContent("put/tool-input"), "input");
    EXPECT_EQ(runScript("\"$TOOL\" put \"$1\" -f <(printf piped)", {server.url("/put/tool-pipe")}),
              succeeded(""));
    EXPECT_EQ(server.fileContent("put/tool-pipe"), "piped");
    // A file that seems to be empty until it is read.
    EXPECT_EQ(runTool({"put", server.url("/put/tool-proc"), "-f", "/proc/sys/kernel/ostype"}), succeeded(""));
    EXPECT_EQ(server.fileContent("put/tool-proc"), "Linux\n");
}

TEST(ToolUploadFile, IsRefusedBeforeTheTransferWhenItsContentCannotBeRead) {
    ScriptedServer server; // would note a connection as an error
    TempDir folder;
    for (const char* verb : {"put", "post"})
        EXPECT_EQ(runTool({verb, server.url(), "-o", folder.file("answer"), "-f", "/proc/self/mem"}),
                  failed("Error reading file '/proc/self/mem': Input/output error."));
    EXPECT_THAT(filesIn(folder.path()), IsEmpty());
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ToolUploadFile, IsRefusedWithoutTheRightToReadIt) {
    TempDir folder;
    fs::permissions(folder.writeFile("body", "secret"), fs::perms::none);
    EXPECT_EQ(runScript(withoutRootsRights() + "\"$TOOL\" put \"$1\" -f \"$2\"",
                        {"http://127.0.0.1:1/", folder.file("body")}),
              failed("Error opening file '" + folder.file("body") + "': Permission denied."));
}

TEST(ToolUploadFile, IsSentToItsEndWhenItIsRemovedMeanwhile) {
    ScriptedServer server;
    const auto latch = std::make_shared<Latch>();
    server.play(Script()
                    .expectHead()
                    .send("HTTP/1.1 100 Continue\r\n\r\n")
                    .waitFor(latch)
                    .expectBody()
                    .send(okResponse("done")));
    TempDir folder;
    folder.writeFile("body", std::string(2 << 20, 'x'));
    ChildOptions options;
    options.environment = toolEnvironment();
    ChildProcess tool({toolPath(), "put", server.url(), "-f", folder.file("body")}, options);
    ASSERT_TRUE(latch->waitUntilReached());
    fs::remove(folder.file("body"));
    latch->release();
    ASSERT_TRUE(waitUntil([&] { return !tool.isRunning(); }, waitLimit));
    EXPECT_EQ(tool.stop(), 0);
    EXPECT_EQ(tool.output(), "done");
    EXPECT_TRUE(server.requests().at(0).body == std::string(2 << 20, 'x'));
}
