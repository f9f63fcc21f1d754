#include "FTPWire.h"
#include "Thrown.h"

namespace vantra::test {

namespace {

/// The commands of one step; what is said to open a data connection is left out.
std::string withoutPassiveMode(std::string conversation) {
    for (const std::string command : {"EPSV\r\n", "TYPE A\r\n", "TYPE I\r\n", "CWD /\r\n"}) {
        for (std::size_t at; (at = conversation.find(command)) != std::string::npos;)
            conversation.erase(at, command.size());
    }
    return conversation;
}

TEST_F(FTPWire, RemovesAnEmptyDirectoryWithAllContents) {
    server_.sendAsData("");
    client_.deleteDirWithAllContents(*request_, "/d");
    EXPECT_EQ(takeConversation(), "EPSV\r\nTYPE A\r\nMLSD d\r\nRMD /d\r\n");
}

TEST_F(FTPWire, RemovesADirectoryWithAllContentsDepthFirstInTheOrderOfTheListing) {
    server_.sendAsData("type=cdir; .\r\ntype=pdir; ..\r\n"
                       "type=file;size=1; z\r\ntype=dir; s\r\ntype=file; a b\r\ntype=dir; e\r\n");
    server_.sendAsData("type=dir; deep\r\ntype=file; f\r\n");
    server_.sendAsData("type=file; g\r\n");
    server_.sendAsData("");
    client_.deleteDirWithAllContents(*request_, "/d");
    EXPECT_EQ(withoutPassiveMode(takeConversation()), "MLSD d\r\nDELE /d/z\r\n"
                                                      "MLSD d/s\r\n"
                                                      "MLSD d/s/deep\r\nDELE /d/s/deep/g\r\nRMD /d/s/deep\r\n"
                                                      "DELE /d/s/f\r\nRMD /d/s\r\n"
                                                      "DELE /d/a b\r\n"
                                                      "MLSD d/e\r\nRMD /d/e\r\n"
                                                      "RMD /d\r\n");
}

TEST_F(FTPWire, LeavesAloneWhatIsNeitherFileNorDirectory) {
    server_.sendAsData("type=OS.unix=slink:/etc; link\r\ntype=os.unix=chr; dev\r\nperm=r; odd\r\n");
    client_.deleteDirWithAllContents(*request_, "/d");
    EXPECT_EQ(withoutPassiveMode(takeConversation()), "MLSD d\r\nRMD /d\r\n");
}

TEST_F(FTPWire, DoesNotGoUpWhereAServerListsItsDotsAsDirectories) {
    server_.sendAsData("type=dir; .\r\ntype=dir; ..\r\ntype=dir; \r\ntype=file; f\r\n");
    client_.deleteDirWithAllContents(*request_, "/d");
    EXPECT_EQ(withoutPassiveMode(takeConversation()), "MLSD d\r\nDELE /d/f\r\nRMD /d\r\n");
}

TEST_F(FTPWire, EndsTheRemovalAtTheFirstFailure) {
    server_.sendAsData("type=file; a\r\ntype=file; b\r\ntype=file; c\r\n");
    server_.answer("DELE /d/b", "550 no\r\n");
    EXPECT_EQ(
        thrownBy([&] { client_.deleteDirWithAllContents(*request_, "/d"); }),
        curlError(
            CURLE_QUOTE_ERROR, "QUOT command failed with 550",
            {{"url", "ftp://" + server_.host()}, {"responseCodeDomain", "ftp"}, {"responseCode", "550"}}));
    EXPECT_EQ(withoutPassiveMode(takeConversation()), "MLSD d\r\nDELE /d/a\r\nDELE /d/b\r\n");
}

TEST_F(FTPWire, RemovesNothingWhenTheListingCannotBeRead) {
    server_.sendAsData("type=file; a\r\nnospacehere\r\n");
    EXPECT_EQ(thrownBy([&] { client_.deleteDirWithAllContents(*request_, "/d"); }),
              plainError("Invalid FTP dir entry: 'nospacehere'"));
    EXPECT_EQ(withoutPassiveMode(takeConversation()), "MLSD d\r\n");
}

} // namespace

} // namespace vantra::test
