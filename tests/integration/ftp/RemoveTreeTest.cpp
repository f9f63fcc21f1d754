#include "FTPFixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class FTPRemoveTree : public OverFTP {};

FOR_ALL_PEERS(FTPRemoveTree);

TEST_P(FTPRemoveTree, RemovesTwoHundredFilesInTwentyDirectories) {
    constexpr int directories = 20;
    constexpr int filesInEach = 10;
    std::string path = "/tree";
    for (int directory = 0; directory < directories; ++directory) {
        // Every fourth one lies in the one before.
        const std::string name = "/d" + std::to_string(directory);
        path = directory % 4 == 3 ? path + name : "/tree" + name;
        makeFolder(path);
        for (int file = 0; file < filesInEach; ++file) writeFile(path + "/f" + std::to_string(file), path);
    }
    writeFile("/beside", "content");
    client_->deleteDirWithAllContents(*request_, at("/tree"));
    EXPECT_THAT(OverFTP::namesIn(""), ElementsAre("beside"));
}

TEST_P(FTPRemoveTree, RemovesAnEmptyDirectory) {
    makeFolder("/tree");
    client_->deleteDirWithAllContents(*request_, at("/tree"));
    EXPECT_THAT(OverFTP::namesIn(""), IsEmpty());
}

TEST_P(FTPRemoveTree, FailsForADirectoryThatIsNotThere) {
    const auto error = errorOf([&] { client_->deleteDirWithAllContents(*request_, at("/none")); });
    expectRefusedTransfer(error);
}

TEST_P(FTPRemoveTree, LeavesEverythingWherePermissionIsMissing) {
    const kel::String path(server().path("/readonly"));
    EXPECT_EQ(errorOf([&] { client_->deleteDirWithAllContents(*request_, path); }).getResponseCode(), 550);
    EXPECT_EQ(testsupport::readWholeFile(server().file("/readonly/kept.txt")), "kept\n");
}

} // namespace
