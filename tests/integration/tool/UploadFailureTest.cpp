#include "Tool.h"

#include "support/ChildProcess.h"
#include "support/ScriptedServer.h"
#include "support/TempDir.h"
#include "support/Wait.h"

#include <gmock/gmock.h>

#include <filesystem>

using namespace testsupport;
using namespace tooltest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::seconds waitLimit{20};
constexpr std::uintmax_t hugeSize = std::uintmax_t{64} << 20; // more than the system keeps on its way

} // namespace

TEST(ToolUploadFile, IsRefusedBeforeTheTransferWhenItCannotBeRead) {
    ScriptedServer server; // would note a connection as an error
    TempDir folder;
    const std::string output = folder.file("answer");
    for (const char* verb : {"put", "post"}) {
        EXPECT_EQ(runTool({verb, server.url(), "-o", output, "-f", folder.file("missing")}),
                  failed("Error opening file '" + nativeName(folder.file("missing")) +
                         "': No such file or directory."));
        EXPECT_EQ(runTool({verb, server.url(), "-o", output, "-f", folder.path()}),
                  failed("Error opening file '" + nativeName(folder.path()) + "': Is a directory."));
    }
    EXPECT_THAT(filesIn(folder.path()), IsEmpty());
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ToolUploadFile, ThatBecomesShorterWhileItIsSentIsAnError) {
    ScriptedServer server;
    const auto latch = std::make_shared<Latch>();
    server.play(
        Script().expectHead().send("HTTP/1.1 100 Continue\r\n\r\n").stallWithoutReading(latch).stall());
    TempDir folder;
    fs::resize_file(folder.writeFile("body", ""), hugeSize);
    ChildOptions options;
    options.environment = toolEnvironment();
    ChildProcess tool(
        {toolPath(), "put", server.url(), "-f", folder.file("body"), "-o", folder.file("answer")}, options);
    ASSERT_TRUE(latch->waitUntilReached());
    fs::resize_file(folder.file("body"), 1);
    latch->release();
    ASSERT_TRUE(waitUntil([&] { return !tool.isRunning(); }, waitLimit));
    EXPECT_EQ(tool.stop(), 1);
    EXPECT_EQ(tool.output(), "vantra: Error reading file '" + nativeName(folder.file("body")) +
                                 "': it became shorter while it was read.\n");
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("body"));
}

TEST(ToolUploadFile, IsSentAsLongAsItWasAtTheStart) {
    ScriptedServer server;
    const auto latch = std::make_shared<Latch>();
    server.play(Script()
                    .expectHead()
                    .send("HTTP/1.1 100 Continue\r\n\r\n")
                    .stallWithoutReading(latch)
                    .expectBody()
                    .send(okResponse("done")));
    TempDir folder;
    fs::resize_file(folder.writeFile("body", ""), hugeSize);
    ChildOptions options;
    options.environment = toolEnvironment();
    ChildProcess tool({toolPath(), "put", server.url(), "-f", folder.file("body")}, options);
    ASSERT_TRUE(latch->waitUntilReached());
    fs::resize_file(folder.file("body"), hugeSize + 1000);
    latch->release();
    ASSERT_TRUE(waitUntil([&] { return !tool.isRunning(); }, waitLimit));
    EXPECT_EQ(tool.stop(), 0);
    EXPECT_EQ(server.requests().at(0).body.size(), hugeSize);
}

TEST(ToolUploadFile, MayBeRefusedByTheServerWhileItIsSent) {
    ScriptedServer server;
    server.play(Script().expectHead().send(
        "HTTP/1.1 413 Content Too Large\r\nContent-Length: 8\r\nConnection: close\r\n\r\ntoo much"));
    TempDir folder;
    fs::resize_file(folder.writeFile("body", ""), hugeSize);
    EXPECT_EQ(runTool({"put", server.url(), "-f", folder.file("body")}),
              failed(server.url() + ": HTTP/1.1 413 Content Too Large: too much"));
}
