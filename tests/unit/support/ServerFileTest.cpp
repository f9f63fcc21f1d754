#include "support/ServerFile.h"

#include "support/Command.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

using namespace testsupport;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Of each kind that some system does not allow, and all that go through more than one encoding.
const std::string oddName = " a\\b?<>|*:\"\n\U0001F418. ";

} // namespace

TEST(ServerFile, KeepsEveryByte) {
    const TempDir folder;
    std::string content;
    for (int code = 0; code < 256; ++code) content += static_cast<char>(code);
    content += std::string(100000, 'x');
    const std::string path = folder.file(oddName);
    writeServerFile(path, content);
    EXPECT_EQ(readServerFile(path), content);
    writeServerFile(path, "");
    EXPECT_EQ(readServerFile(path), "");
}

TEST(ServerFile, MayHaveAnyName) {
    const TempDir folder;
    EXPECT_FALSE(existsOnServer(folder.file(oddName)));
    makeServerFolder(folder.file(oddName + "/deep/" + oddName));
    makeServerFolder(folder.file(oddName + "/deep"));
    EXPECT_TRUE(existsOnServer(folder.file(oddName)));
    EXPECT_TRUE(existsOnServer(folder.file(oddName + "/deep/" + oddName)));
    EXPECT_THAT(namesInServerFolder(folder.file(oddName + "/deep")), ElementsAre(oddName));
    EXPECT_THAT(namesInServerFolder(folder.file(oddName + "/deep/" + oddName)), IsEmpty());
}

TEST(ServerFile, IsFoundWithOthersInOrder) {
    const TempDir folder;
    for (const char* name : {"b", ".hidden", "a b", "-c"}) writeServerFile(folder.file(name), "");
    EXPECT_THAT(namesInServerFolder(folder.path()), ElementsAre("-c", ".hidden", "a b", "b"));
}

TEST(ServerFile, HasTheTimeThatItIsGiven) {
    const TempDir folder;
    writeServerFile(folder.file("f"), "");
    setServerFileTime(folder.file("f"), std::chrono::sys_days{std::chrono::year{2019} / 4 / 1});
    EXPECT_EQ(runCommand({"stat", "-c", "%Y", folder.file("f")}).standardOutput, "1554076800\n");
}

TEST(ServerFile, ThatCannotBeUsedIsAnError) {
    const TempDir folder;
    const std::string none = folder.file("none");
    EXPECT_THROW(readServerFile(none), std::runtime_error);
    EXPECT_THROW(namesInServerFolder(none), std::runtime_error);
    EXPECT_THROW(writeServerFile(none + "/f", "x"), std::runtime_error);
    EXPECT_THROW(setServerFileTime(none, {}), std::runtime_error);
    folder.writeFile("f", "x");
    EXPECT_THROW(makeServerFolder(folder.file("f/d")), std::runtime_error);
}
