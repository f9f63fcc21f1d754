#include "FTPFixture.h"

using testing::ElementsAre;
using testing::IsEmpty;
using vantra::CFTPClient;

namespace {

class FTPDirectory : public OverFTP {};

FOR_ALL_PEERS(FTPDirectory);

TEST_P(FTPDirectory, IsCreated) {
    client_->createDir(*request_, at("/a"), false);
    EXPECT_THAT(namesIn("/a"), IsEmpty());
}

TEST_P(FTPDirectory, IsNotCreatedTwice) {
    makeFolder("/a");
    const auto error = errorOf([&] { client_->createDir(*request_, at("/a"), false); });
    EXPECT_EQ(error.getCode(), CURLE_QUOTE_ERROR);
    EXPECT_EQ(error.getResponseCodeDomain(), "ftp");
    EXPECT_EQ(error.getResponseCode(), 550);
}

TEST_P(FTPDirectory, IsNotCreatedInOneThatIsNotThere) {
    const auto error = errorOf([&] { client_->createDir(*request_, at("/a/b"), false); });
    EXPECT_EQ(error.getCode(), CURLE_QUOTE_ERROR);
    EXPECT_EQ(error.getResponseCode(), 550);
    EXPECT_THAT(namesIn(""), IsEmpty());
}

TEST_P(FTPDirectory, IsCreatedWithItsParents) {
    // The directory is there when the command comes that creates it, which newer versions of libcurl send.
    const bool sendsCommand = curl_version_info(CURLVERSION_NOW)->version_num >= 0x080F00;
    const auto create = [&](std::string_view path) {
        try {
            client_->createDir(*request_, at(path), true);
            EXPECT_FALSE(sendsCommand);
        } catch (const vantra::CCURLError& error) {
            EXPECT_TRUE(sendsCommand) << error.what();
            EXPECT_EQ(error.getCode(), CURLE_QUOTE_ERROR);
        }
    };
    create("/a/b/c");
    EXPECT_THAT(namesIn("/a/b/c"), IsEmpty());
    create("/a/b/d/");
    EXPECT_THAT(namesIn("/a/b"), ElementsAre("c", "d"));
    create("/a/b/c");
    EXPECT_THAT(namesIn("/a/b"), ElementsAre("c", "d"));
}

TEST_P(FTPDirectory, IsRemovedWhenItIsEmpty) {
    makeFolder("/a");
    client_->removeDir(*request_, at("/a"));
    EXPECT_FALSE(exists("/a"));
}

TEST_P(FTPDirectory, IsNotRemovedWithContents) {
    makeFolder("/a");
    writeFile("/a/f", "content");
    const auto error = errorOf([&] { client_->removeDir(*request_, at("/a")); });
    EXPECT_EQ(error.getCode(), CURLE_QUOTE_ERROR);
    EXPECT_EQ(error.getResponseCode(), 550);
    EXPECT_EQ(readFile("/a/f"), "content");
}

TEST_P(FTPDirectory, LosesAFileThatIsDeleted) {
    writeFile("/f", "content");
    writeFile("/g", "content");
    client_->deleteFile(*request_, at("/f"));
    EXPECT_THAT(namesIn(""), ElementsAre("g"));
    EXPECT_EQ(errorOf([&] { client_->deleteFile(*request_, at("/f")); }).getResponseCode(), 550);
}

TEST_P(FTPDirectory, ChangesNothingWithoutPermission) {
    const kel::String path(server().path("/readonly/kept.txt"));
    EXPECT_EQ(errorOf([&] { client_->deleteFile(*request_, path); }).getResponseCode(), 550);
    const kel::String newFolder(server().path("/readonly/new"));
    EXPECT_EQ(errorOf([&] { client_->createDir(*request_, newFolder, false); }).getResponseCode(), 550);
    client_->prepareMoveFileRequest(*request_, path, at("/stolen"), false);
    EXPECT_EQ(performForError().getResponseCode(), 550);
    EXPECT_EQ(testsupport::readWholeFile(server().file("/readonly/kept.txt")), "kept\n");
}

} // namespace
