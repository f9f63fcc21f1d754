#include "Doubles.h"
#include "FTPWire.h"
#include "Thrown.h"

#include "vantra/FTPGetInfoResult.h"

#include "support/Wait.h"

#include <kel/MTRand.h>
#include <kel/Mutex.h>

namespace vantra::test {

namespace {

using kel::CMTRand;
using kel::CMutexLock;
using kel::P;

/// The first version of libcurl that sends pre-commands before the listing of a directory, too.
constexpr unsigned int firstToListAfterPreCommands = 0x080F00;

TEST_F(FTPWire, DownloadsAFile) {
    server_.sendAsData("0123456789");
    client_.prepareDownloadRequest(*request_, "/d/f", 0, -1);
    request_->perform();
    EXPECT_EQ(getBody(*request_), "0123456789");
    EXPECT_EQ(takeConversation(), "EPSV\r\nTYPE I\r\nSIZE d/f\r\nRETR d/f\r\n");
}

TEST_F(FTPWire, DownloadsFromAPositionOn) {
    server_.sendAsData("56789");
    client_.prepareDownloadRequest(*request_, "/d/f", 5, -1);
    request_->perform();
    EXPECT_EQ(getBody(*request_), "56789");
    EXPECT_EQ(takeConversation(), "EPSV\r\nTYPE I\r\nSIZE d/f\r\nREST 5\r\nRETR d/f\r\n");
}

TEST_F(FTPWire, DownloadsAPart) {
    server_.sendAsData("3456789");
    client_.prepareDownloadRequest(*request_, "/d/f", 3, 4);
    request_->perform();
    EXPECT_EQ(getBody(*request_), "3456");
    // The rest of the file is on its way already: libcurl gives the connection up.
    request_ = nullptr;
    testsupport::waitUntil([&] { return server_.received().ends_with("QUIT\r\n"); },
                           testsupport::ScriptedServer::defaultLimit);
    EXPECT_EQ(takeConversation(), "EPSV\r\nTYPE I\r\nSIZE d/f\r\nREST 3\r\nRETR d/f\r\nABOR\r\nQUIT\r\n");
}

TEST_F(FTPWire, UploadsAFile) {
    server_.receiveAsData(4);
    client_.prepareUploadRequest(*request_, "/d/f", "data", 4, false);
    request_->perform();
    EXPECT_EQ(server_.dataReceived(), "data");
    EXPECT_EQ(takeConversation(), "EPSV\r\nTYPE I\r\nSTOR d/f\r\n");
}

TEST_F(FTPWire, UploadsAnEmptyFile) {
    server_.receiveAsData(0);
    client_.prepareUploadRequest(*request_, "/d/f", nullptr, 0, false);
    request_->perform();
    EXPECT_EQ(server_.dataReceived(), "");
    EXPECT_EQ(takeConversation(), "EPSV\r\nTYPE I\r\nSTOR d/f\r\n");
}

TEST_F(FTPWire, CreatesTheDirectoriesThatAnUploadMisses) {
    server_.receiveAsData(4);
    server_.answer("CWD b", "550 no\r\n");
    server_.answer("CWD c", "550 no\r\n");
    client_.prepareUploadRequest(*request_, "/a/b/c/f", "data", 4, true);
    request_->perform();
    EXPECT_EQ(takeConversation(),
              "CWD a\r\nCWD b\r\nMKD b\r\nCWD b\r\nCWD c\r\nMKD c\r\nCWD c\r\nEPSV\r\nTYPE I\r\n"
              "STOR f\r\n");
}

TEST_F(FTPWire, EntersADirectoryAtOnceIfToldTo) {
    client_.setOverrideCWDType(CFTPClient::CWDDirect);
    server_.receiveAsData(4);
    server_.answer("CWD a/b/c", "550 no\r\n");
    client_.prepareUploadRequest(*request_, "/a/b/c/f", "data", 4, true);
    request_->perform();
    EXPECT_EQ(takeConversation(), "CWD a/b/c\r\nMKD a/b/c\r\nCWD a/b/c\r\nEPSV\r\nTYPE I\r\nSTOR f\r\n");
}

TEST_F(FTPWire, WalksAnAbsolutePathFromTheRoot) {
    server_.receiveAsData(4);
    client_.prepareUploadRequest(*request_, "//a/f", "data", 4, true);
    request_->perform();
    EXPECT_EQ(takeConversation(), "CWD /\r\nCWD a\r\nEPSV\r\nTYPE I\r\nSTOR f\r\n");
    server_.sendAsData("0123456789");
    client_.prepareDownloadRequest(*request_, "//a/f", 0, -1);
    request_->perform();
    EXPECT_EQ(takeConversation(), "EPSV\r\nSIZE /a/f\r\nRETR /a/f\r\n");
}

TEST_F(FTPWire, ListsADirectory) {
    server_.sendAsData("type=file;size=3; x\r\ntype=dir; y\r\n");
    const P<CFTPListDirResult> listing = client_.listDir(*request_, "/a/b");
    EXPECT_EQ(takeConversation(), "EPSV\r\nTYPE A\r\nMLSD a/b\r\n");
    ASSERT_EQ(listing->getEntries().size(), 2U);
    EXPECT_EQ(listing->getEntries()[0]->getName(), "x");
    EXPECT_EQ(listing->getEntries()[1]->getName(), "y");
}

TEST_F(FTPWire, ListsTheDirectoryOfTheLogin) {
    server_.sendAsData("");
    EXPECT_TRUE(client_.listDir(*request_, "")->getEntries().empty());
    EXPECT_EQ(takeConversation(), "EPSV\r\nTYPE A\r\nMLSD\r\n");
}

TEST_F(FTPWire, GetsTheFactsOfAnEntry) {
    client_.prepareGetInfoRequest(*request_, "/d/a b%41;#?");
    request_->perform();
    EXPECT_EQ(takeConversation(), "MLST /d/a b%41;#?\r\n");
    const CFTPGetInfoResult result(request_->getResponseInfo());
    EXPECT_EQ(result.getInfo()->getName(), "x");
    EXPECT_EQ(result.getInfo()->getSize(), 3);
}

TEST_F(FTPWire, VerifiesThatAnEntryExists) {
    client_.prepareVerifyExistsRequest(*request_, "/d/f");
    request_->perform();
    EXPECT_EQ(takeConversation(), "MLST /d/f\r\n");
    server_.answer("MLST /d/f", "550 no such thing\r\n");
    client_.prepareVerifyExistsRequest(*request_, "/d/f");
    EXPECT_EQ(
        thrownBy([&] { request_->perform(); }),
        curlError(
            CURLE_QUOTE_ERROR, "QUOT command failed with 550",
            {{"url", "ftp://" + server_.host()}, {"responseCodeDomain", "ftp"}, {"responseCode", "550"}}));
}

TEST_F(FTPWire, CreatesADirectory) {
    client_.createDir(*request_, "/a/b", false);
    EXPECT_EQ(takeConversation(), "MKD /a/b\r\n");
}

TEST_F(FTPWire, CreatesADirectoryWithItsParentsOnTheWalk) {
    server_.sendAsData("");
    server_.answer("CWD b", "550 no\r\n");
    client_.createDir(*request_, "/a/b", true);
    const bool sendsPreCommands =
        curl_version_info(CURLVERSION_NOW)->version_num >= firstToListAfterPreCommands;
    const std::string mkd = sendsPreCommands ? "MKD /a/b\r\n" : "";
    EXPECT_EQ(takeConversation(),
              "CWD a\r\nCWD b\r\nMKD b\r\nCWD b\r\nEPSV\r\nTYPE A\r\n" + mkd + "LIST\r\n");
}

TEST_F(FTPWire, RemovesADirectory) {
    client_.removeDir(*request_, "/a/b");
    EXPECT_EQ(takeConversation(), "RMD /a/b\r\n");
}

TEST_F(FTPWire, DeletesAFile) {
    client_.deleteFile(*request_, "/a/b");
    EXPECT_EQ(takeConversation(), "DELE /a/b\r\n");
}

TEST_F(FTPWire, MovesAFile) {
    client_.prepareMoveFileRequest(*request_, "/a b", "/c/d", false);
    request_->perform();
    EXPECT_EQ(takeConversation(), "RNFR /a b\r\nRNTO /c/d\r\n");
}

TEST_F(FTPWire, MovesAFileIntoADirectoryThatIsMissing) {
    server_.receiveAsData(0);
    server_.answer("CWD c", "550 no\r\n");
    client_.prepareMoveFileRequest(*request_, "/a", "/c/d", true);
    request_->perform();
    EXPECT_EQ(server_.dataReceived(), "");
    EXPECT_EQ(takeConversation(),
              "CWD c\r\nMKD c\r\nCWD c\r\nEPSV\r\nTYPE I\r\nRNFR /a\r\nRNTO /c/d\r\nAPPE d\r\n");
}

TEST_F(FTPWire, MovesADirectory) {
    client_.prepareMoveDirRequest(*request_, "/a", "/c/d", false);
    request_->perform();
    EXPECT_EQ(takeConversation(), "RNFR /a\r\nRNTO /c/d\r\n");
}

TEST_F(FTPWire, MovesADirectoryIntoOneThatIsMissing) {
    constexpr kel::uint64 seed = 5489;
    {
        const CMutexLock lock(CMTRand::getGlobalMutex());
        CMTRand::getGlobal().setSeed(seed);
    }
    const std::string dummy = "__dummy" + std::to_string(CMTRand(seed).rand64());
    server_.receiveAsData(0);
    server_.answer("CWD c", "550 no\r\n");
    server_.answer("CWD d", "550 no\r\n");
    client_.prepareMoveDirRequest(*request_, "/a", "/c/d", true);
    request_->perform();
    EXPECT_EQ(server_.dataReceived(), "");
    EXPECT_EQ(
        takeConversation(),
        "CWD c\r\nMKD c\r\nCWD c\r\nCWD d\r\nMKD d\r\nCWD d\r\nEPSV\r\nTYPE I\r\nRNFR /a\r\nRNTO /c/d\r\n"
        "STOR " +
            dummy + "\r\nDELE /c/d/" + dummy + "\r\n");
}

TEST_F(FTPWire, UsesOneConnectionForAllOperations) {
    client_.deleteFile(*request_, "/a");
    client_.createDir(*request_, "/b", false);
    client_.removeDir(*request_, "/b");
    EXPECT_EQ(server_.connectionCount(), 1U);
    EXPECT_EQ(takeConversation(), "DELE /a\r\nMKD /b\r\nRMD /b\r\n");
}

} // namespace

} // namespace vantra::test
