#include "FTPFixture.h"

using testing::ElementsAre;
using testing::IsEmpty;
using vantra::CFTPClient;

namespace {

class FTPUpload : public OverFTP {
protected:
    void prepare(std::string_view path, std::string_view content, bool createMissingDirs) {
        client_->prepareUploadRequest(*request_, at(path), content.data(), static_cast<int>(content.size()),
                                      createMissingDirs);
    }
    void upload(std::string_view path, std::string_view content, bool createMissingDirs) {
        prepare(path, content, createMissingDirs);
        request_->perform();
    }
};

FOR_ALL_PEERS(FTPUpload);

TEST_P(FTPUpload, StoresAFile) {
    const std::string content(300000, 'x');
    upload("/f", content, false);
    EXPECT_EQ(readFile("/f"), content);
    upload("/f", "shorter", false);
    EXPECT_EQ(readFile("/f"), "shorter");
    upload("/f", "", false);
    EXPECT_EQ(readFile("/f"), "");
}

TEST_P(FTPUpload, StoresAFileAgainInASecondPerform) {
    upload("/f", "content", false);
    writeFile("/f", "else");
    request_->perform();
    EXPECT_EQ(readFile("/f"), "content");
}

TEST_P(FTPUpload, CreatesAllMissingDirectories) {
    makeFolder("/a");
    upload("/a/b/c/f", "content", true);
    EXPECT_EQ(readFile("/a/b/c/f"), "content");
    upload("/a/b/c/g", "more", true);
    EXPECT_EQ(readFile("/a/b/c/g"), "more");
}

TEST_P(FTPUpload, FailsInADirectoryThatIsNotThere) {
    for (const auto type :
         {CFTPClient::CWDInvalid, CFTPClient::CWDSteps, CFTPClient::CWDDirect, CFTPClient::CWDNone}) {
        client_->setOverrideCWDType(type);
        request_ = new vantra::CNetRequest();
        prepare("/a/f", "content", false);
        expectRefusedTransfer(performForError());
        EXPECT_THAT(OverFTP::namesIn(""), IsEmpty());
    }
}

TEST_P(FTPUpload, GoesToItsDirectoryAfterARefusalOfTheOneBefore) {
    for (const std::string folder : {"/a", "/b", "/c", "/d", "/e"}) {
        prepare("/none/f", "content", false);
        expectRefusedTransfer(performForError());
        upload(folder + "/sub/f", "content", true);
        EXPECT_EQ(readFile(folder + "/sub/f"), "content");
        if (GetParam().security == testsupport::FtpSecurity::none) continue;
        const kel::P<vantra::CNetStringList::CIterator> line = request_->getResponseInfo().createIterator();
        ASSERT_TRUE(line->next());
        EXPECT_TRUE(line->getEntry().startsWith(L"220")) << "no new connection: " << line->getEntry();
    }
    EXPECT_THAT(OverFTP::namesIn(""), ElementsAre("a", "b", "c", "d", "e"));
}

TEST_P(FTPUpload, StoresAFileWithAnyWayToWalk) {
    for (const auto type :
         {CFTPClient::CWDInvalid, CFTPClient::CWDSteps, CFTPClient::CWDDirect, CFTPClient::CWDNone}) {
        client_->setOverrideCWDType(type);
        const std::string content = CFTPClient::cwdTypeToString(type).toUTF8();
        upload("/f", content, false);
        EXPECT_EQ(readFile("/f"), content);
        upload("/f", content + " again", true);
        EXPECT_EQ(readFile("/f"), content + " again");
    }
}

TEST_P(FTPUpload, CreatesMissingDirectoriesStepByStep) {
    client_->setOverrideCWDType(CFTPClient::CWDSteps);
    upload("/a/b/f", "content", true);
    EXPECT_EQ(readFile("/a/b/f"), "content");
}

TEST_P(FTPUpload, CreatesOneMissingDirectoryWhenItEntersItAtOnce) {
    client_->setOverrideCWDType(CFTPClient::CWDDirect);
    upload("/a/f", "content", true);
    EXPECT_EQ(readFile("/a/f"), "content");
    prepare("/b/c/f", "content", true);
    const auto error = performForError();
    EXPECT_EQ(error.getCode(), CURLE_REMOTE_ACCESS_DENIED);
    EXPECT_EQ(error.getResponseCode(), 550);
    EXPECT_THAT(OverFTP::namesIn(""), ElementsAre("a"));
}

TEST_P(FTPUpload, CreatesNoDirectoryWhenItDoesNotWalk) {
    client_->setOverrideCWDType(CFTPClient::CWDNone);
    prepare("/a/f", "content", true);
    expectRefusedTransfer(performForError());
    EXPECT_THAT(OverFTP::namesIn(""), IsEmpty());
}

TEST_P(FTPUpload, FailsWhereNothingMayBeWritten) {
    client_->prepareUploadRequest(*request_, kel::String(server().path("/readonly/new.txt")), "x", 1, false);
    expectRefusedTransfer(performForError());
    EXPECT_EQ(testsupport::readWholeFile(server().file("/readonly/kept.txt")), "kept\n");
}

} // namespace
