#include "support/TempDir.h"

#include "support/Command.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

using namespace testsupport;

TEST(TempDir, IsAnEmptyFolderOfItsUserOnly) {
    const TempDir folder;
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
    EXPECT_EQ(runCommand({"stat", "-c", "%A", folder.path()}).standardOutput, "drwx------\n");
}

TEST(TempDir, IsUnique) {
    const TempDir first;
    const TempDir second;
    EXPECT_NE(first.path(), second.path());
}

TEST(TempDir, IsRemovedWithItsContent) {
    std::string path;
    {
        const TempDir folder;
        path = folder.path();
        folder.writeFile("deep/down/file", "content");
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(TempDir, KeepsEveryByteOfAFile) {
    const TempDir folder;
    std::string content;
    for (int code = 0; code < 256; ++code) content += static_cast<char>(code);
    EXPECT_EQ(folder.writeFile("bytes", content), folder.file("bytes"));
    EXPECT_EQ(folder.readFile("bytes"), content);
}

TEST(TempDir, ReplacesAFileWrittenTwice) {
    const TempDir folder;
    folder.writeFile("file", "a long first content");
    folder.writeFile("file", "second");
    EXPECT_EQ(folder.readFile("file"), "second");
}

TEST(TempDir, ReportsAMissingFile) {
    const TempDir folder;
    try {
        folder.readFile("missing");
        FAIL() << "read a file that does not exist";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), "cannot open " + folder.path() + "/missing");
    }
}

TEST(TempDir, ReportsAFileThatCannotBeWritten) {
    const TempDir folder;
    folder.writeFile("folder/file", "");
    try {
        folder.writeFile("folder", "content");
        FAIL() << "wrote over a folder";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), "cannot write " + folder.path() + "/folder");
    }
}
