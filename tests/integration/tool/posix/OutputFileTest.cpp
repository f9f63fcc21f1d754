// Files of a POSIX system to which the command writes: with permissions, links, devices, and a limit on
// sizes.
#include "Tool.h"

#include "support/TempDir.h"

#include <gmock/gmock.h>

#include <filesystem>

using namespace testsupport;
using namespace tooltest;
using testing::ElementsAre;
using testing::StartsWith;

namespace fs = std::filesystem;

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

TEST(ToolLog, ThatCannotBeWrittenIsAnError) {
    NginxServer& server = webServer();
    TempDir folder;
    EXPECT_EQ(runTool({"get", "-o", folder.file("out"), "--log", "/dev/full", server.url("/hello.txt")}),
              failed("Error writing file '/dev/full': No space left on device."));
    const Outcome both = runTool({"get", "--log", "/dev/full", server.url("/s404")});
    EXPECT_EQ(both.exitStatus, 1);
    EXPECT_THAT(both.error, StartsWith("vantra: Error writing file '/dev/full': No space left on device.\n"
                                       "vantra: " +
                                       server.url("/s404") + ": HTTP/1.1 404 Not Found"));
}
