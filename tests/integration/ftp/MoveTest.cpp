#include "FTPFixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class FTPMove : public OverFTP {
protected:
    void moveFile(std::string_view from, std::string_view to, bool createMissingDirs) {
        client_->prepareMoveFileRequest(*request_, at(from), at(to), createMissingDirs);
        request_->perform();
    }
    void moveDir(std::string_view from, std::string_view to, bool createMissingDirs) {
        client_->prepareMoveDirRequest(*request_, at(from), at(to), createMissingDirs);
        request_->perform();
    }
};

FOR_ALL_PEERS(FTPMove);

TEST_P(FTPMove, MovesAFile) {
    writeFile("/f", "content");
    makeFolder("/a");
    moveFile("/f", "/a/g", false);
    EXPECT_THAT(namesIn(""), ElementsAre("a"));
    EXPECT_EQ(readFile("/a/g"), "content");
}

TEST_P(FTPMove, MovesNoFileIntoADirectoryThatIsNotThere) {
    writeFile("/f", "content");
    client_->prepareMoveFileRequest(*request_, at("/f"), at("/a/g"), false);
    const auto error = performForError();
    EXPECT_EQ(error.getCode(), CURLE_QUOTE_ERROR);
    EXPECT_EQ(error.getResponseCode(), 550);
    EXPECT_THAT(namesIn(""), ElementsAre("f"));
    EXPECT_EQ(readFile("/f"), "content");
}

TEST_P(FTPMove, MovesAFileIntoDirectoriesThatAreMissing) {
    writeFile("/f", "content");
    moveFile("/f", "/a/b/g", true);
    EXPECT_THAT(namesIn(""), ElementsAre("a"));
    EXPECT_THAT(namesIn("/a/b"), ElementsAre("g"));
    EXPECT_EQ(readFile("/a/b/g"), "content");
}

TEST_P(FTPMove, MovesAFileOfBytesWithoutChangingOne) {
    std::string content(70000, '\0');
    for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>(i);
    content += "\r\n\n\r";
    writeFile("/f", content);
    moveFile("/f", "/a/g", true);
    EXPECT_EQ(readFile("/a/g"), content);
}

TEST_P(FTPMove, MovesNoFileThatIsNotThere) {
    client_->prepareMoveFileRequest(*request_, at("/f"), at("/a/g"), true);
    const auto error = performForError();
    EXPECT_EQ(error.getCode(), CURLE_QUOTE_ERROR);
    EXPECT_EQ(error.getResponseCode(), 550);
    EXPECT_THAT(namesIn("/a"), IsEmpty());
}

TEST_P(FTPMove, MovesADirectory) {
    makeFolder("/d/sub");
    writeFile("/d/sub/f", "content");
    makeFolder("/a");
    moveDir("/d", "/a/e", false);
    EXPECT_THAT(namesIn(""), ElementsAre("a"));
    EXPECT_EQ(readFile("/a/e/sub/f"), "content");
}

TEST_P(FTPMove, MovesNoDirectoryIntoOneThatIsNotThere) {
    makeFolder("/d");
    writeFile("/d/f", "content");
    client_->prepareMoveDirRequest(*request_, at("/d"), at("/a/e"), false);
    EXPECT_EQ(performForError().getResponseCode(), 550);
    EXPECT_THAT(namesIn(""), ElementsAre("d"));
    EXPECT_EQ(readFile("/d/f"), "content");
}

TEST_P(FTPMove, MovesNoDirectoryInThePlaceOfOneWithContents) {
    makeFolder("/d");
    writeFile("/d/f", "content");
    makeFolder("/e");
    writeFile("/e/g", "kept");
    for (const bool createMissingDirs : {false, true}) {
        client_->prepareMoveDirRequest(*request_, at("/d"), at("/e"), createMissingDirs);
        const auto error = performForError();
        EXPECT_EQ(error.getCode(), CURLE_QUOTE_ERROR);
        EXPECT_EQ(error.getResponseCode(), 550);
        EXPECT_THAT(namesIn("/d"), ElementsAre("f"));
        EXPECT_THAT(namesIn("/e"), ElementsAre("g"));
        EXPECT_EQ(readFile("/d/f"), "content");
        EXPECT_EQ(readFile("/e/g"), "kept");
    }
}

TEST_P(FTPMove, MovesADirectoryIntoOnesThatAreMissing) {
    makeFolder("/d/sub");
    writeFile("/d/sub/f", "content");
    moveDir("/d", "/a/b/e", true);
    EXPECT_THAT(namesIn(""), ElementsAre("a"));
    EXPECT_THAT(namesIn("/a/b"), ElementsAre("e"));
    EXPECT_THAT(namesIn("/a/b/e"), ElementsAre("sub"));
    EXPECT_EQ(readFile("/a/b/e/sub/f"), "content");
}

} // namespace
