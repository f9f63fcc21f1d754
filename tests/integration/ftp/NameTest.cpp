#include "FTPFixture.h"

#include <kel/FileInfo.h>

#include <algorithm>

using kel::P;
using kel::String;
using testing::ElementsAre;
using testing::IsEmpty;
using vantra::CFTPDirEntry;
using vantra::CFTPGetInfoResult;

namespace {

/// A name that a URL or a fact line could read otherwise.
struct NameCase {
    const char* what;
    const char* name;
};

const NameCase names[] = {
    {"blanks", "two  blanks in it"},
    {"leading blank", "  leading"},
    {"semicolons", "a;b;type=dir; c"},
    {"transfer type", "a;type=i"},
    {"Unicode", "Gr\xC3\xB6\xC3\x9F"
                "e \xE2\x82\xAC \xF0\x9F\x90\x98"},
    {"percent", "100% %41"},
    {"hash", "a#b"},
    {"question mark", "a?b=c&d"},
    {"plus and others", "a+b'c\"d[e]{f}|g^h`i<j>k@l:m,n=o"},
    {"backslash", "a\\b"},
    {"hidden", ".hidden"},
};

class FTPName : public OverFTP {
protected:
    static std::string pathOf(std::string_view name) { return "/" + std::string(name); }
    void upload(const String& path, std::string_view content, bool createMissingDirs = false) {
        client_->prepareUploadRequest(*request_, path, content.data(), static_cast<int>(content.size()),
                                      createMissingDirs);
        request_->perform();
    }
    std::string download(const String& path) {
        client_->prepareDownloadRequest(*request_, path, 0, -1);
        request_->perform();
        return getBody(*request_);
    }
};

FOR_ALL_PEERS(FTPName);

// Transfers of one kind follow each other, so that the type need not change between them: some servers answer
// that slowly over TLS.

TEST_P(FTPName, OfAFileGoesThroughEveryOperationWhenItIsEscapedForURLs) {
    std::vector<std::string> expected;
    for (const auto& [what, name] : names) {
        SCOPED_TRACE(what);
        expected.emplace_back(name);
        upload(escapedAt(pathOf(name)), what);
        EXPECT_EQ(readFile(pathOf(name)), what);
    }
    for (const auto& [what, name] : names) {
        SCOPED_TRACE(what);
        EXPECT_EQ(download(escapedAt(pathOf(name))), what);
    }
    std::ranges::sort(expected);
    EXPECT_EQ(namesOf(*client_->listDir(*request_, at(""))), expected);

    for (const auto& [what, name] : names) {
        SCOPED_TRACE(what);
        const std::string path = pathOf(name);
        client_->prepareGetInfoRequest(*request_, at(path));
        request_->perform();
        const String told = CFTPGetInfoResult(request_->getResponseInfo()).getInfo()->getName();
        EXPECT_TRUE(told.endsWith(String(name))) << told;
        client_->prepareVerifyExistsRequest(*request_, at(path));
        request_->perform();

        client_->prepareMoveFileRequest(*request_, at(path), at(path + " 2"), false);
        request_->perform();
        EXPECT_EQ(readFile(path + " 2"), what);
        client_->deleteFile(*request_, at(path + " 2"));
    }
    EXPECT_THAT(namesIn(""), IsEmpty());
}

TEST_P(FTPName, OfADirectoryGoesThroughEveryOperationWhenItIsEscapedForURLs) {
    for (const auto& [what, name] : names) {
        SCOPED_TRACE(what);
        const std::string path = pathOf(name);
        client_->createDir(*request_, at(path), false);
        upload(escapedAt(path + "/f"), what);
        EXPECT_EQ(readFile(path + "/f"), what);
    }
    for (const auto& [what, name] : names) {
        SCOPED_TRACE(what);
        EXPECT_THAT(namesOf(*client_->listDir(*request_, escapedAt(pathOf(name)))), ElementsAre("f"));
    }
    for (const auto& [what, name] : names) {
        SCOPED_TRACE(what);
        const std::string path = pathOf(name);
        client_->deleteFile(*request_, at(path + "/f"));
        client_->removeDir(*request_, at(path));
        upload(escapedAt(path + path + "/f"), what, true);
        EXPECT_EQ(readFile(path + path + "/f"), what);
        client_->deleteFile(*request_, at(path + path + "/f"));
        client_->removeDir(*request_, at(path + path));
        client_->removeDir(*request_, at(path));
    }
    EXPECT_THAT(namesIn(""), IsEmpty());
}

TEST_P(FTPName, NeedsNoEscapeWhereAURLReadsNothingElse) {
    for (const char* name : {"a;b=c",
                             "Gr\xC3\xB6\xC3\x9F"
                             "e",
                             "a&b", "a+b", ".hidden", "100%", "5%of"}) {
        SCOPED_TRACE(name);
        const std::string path = pathOf(name);
        upload(at(path), name);
        EXPECT_THAT(namesIn(""), ElementsAre(name));
        EXPECT_EQ(download(at(path)), name);
        client_->deleteFile(*request_, at(path));
    }
}

TEST_P(FTPName, WithABlankMakesTheURLInvalid) {
    client_->prepareUploadRequest(*request_, at("/a b"), "x", 1, false);
    EXPECT_EQ(performForError().getCode(), CURLE_URL_MALFORMAT);
    client_->prepareListDirRequest(*request_, at("/a b"));
    EXPECT_EQ(performForError().getCode(), CURLE_URL_MALFORMAT);
    EXPECT_THAT(namesIn(""), IsEmpty());
}

TEST_P(FTPName, IsReadAsAPartOfAURL) {
    upload(at("/%41%20b"), "percent");
    EXPECT_EQ(readFile("/A b"), "percent");
    upload(at("/a#b"), "hash");
    EXPECT_EQ(readFile("/a"), "hash");
    upload(at("/q?b"), "question mark");
    EXPECT_EQ(readFile("/q"), "question mark");
    upload(at("/x/../t;type=i"), "type");
    EXPECT_EQ(readFile("/t"), "type");
    EXPECT_THAT(namesIn(""), ElementsAre("A b", "a", "q", "t"));
}

TEST_P(FTPName, CannotHoldALineBreakInAURL) {
    client_->prepareUploadRequest(*request_, at("/a%0D%0ADELE b"), "x", 1, false);
    EXPECT_EQ(performForError().getCode(), CURLE_URL_MALFORMAT);
    EXPECT_THAT(namesIn(""), IsEmpty());
}

TEST_P(FTPName, OfADirectoryThatURLsReadOtherwiseEndsItsRemovalWithItsContents) {
    // The listing of "a#b" is that of "a", and the files named there are looked for in "a#b".
    makeFolder("/tree/a");
    makeFolder("/tree/a#b");
    writeFile("/tree/a/f", "content");
    writeFile("/tree/a#b/g", "content");
    EXPECT_EQ(errorOf([&] { client_->deleteDirWithAllContents(*request_, at("/tree")); }).getResponseCode(),
              550);
    EXPECT_EQ(readFile("/tree/a#b/g"), "content");
}

} // namespace
