#include "Tool.h"

#include "support/FilePath.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

using namespace testsupport;
using namespace tooltest;

namespace {

/// The path of a file with its drive, and with backslashes.
std::string fullPath(const std::string& file) {
    std::string path = nameOf(std::filesystem::current_path().root_name()) + file;
    std::ranges::replace(path, '/', '\\');
    return path;
}

} // namespace

TEST(ToolWindowsPath, MayHaveADriveAndBackslashes) {
    NginxServer& server = webServer();
    const TempDir folder;
    EXPECT_EQ(runTool({"get", "-o", fullPath(folder.file("a b")), server.url("/hello.txt")}), succeeded(""));
    EXPECT_EQ(folder.readFile("a b"), NginxServer::helloContent());
    EXPECT_EQ(runTool({"put", "-f", fullPath(folder.file("a b")), server.url("/put/drive")}), succeeded(""));
    EXPECT_EQ(server.fileContent("put/drive"), NginxServer::helloContent());
}

TEST(ToolWindowsPath, IsNamedInMessagesAsItWasGiven) {
    const TempDir folder;
    const std::string missing = fullPath(folder.file("missing"));
    EXPECT_EQ(runTool({"put", "-f", missing, "http://127.0.0.1:1/"}),
              failed("Error opening file '" + missing + "': No such file or directory."));
}
