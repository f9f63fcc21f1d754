#include "FTPFixture.h"

namespace {

/// Bytes of every value, longer than any block.
const std::string& content() {
    static const std::string bytes = [] {
        std::string made(300000, '\0');
        for (std::size_t i = 0; i < made.size(); ++i) made[i] = static_cast<char>(i * 7 + i / 251);
        return made;
    }();
    return bytes;
}

class FTPDownload : public OverFTP {
protected:
    FTPDownload() { writeFile("/f", content()); }

    std::string download(kel::int64 first, kel::int64 length) {
        client_->prepareDownloadRequest(*request_, at("/f"), first, length);
        setBinaryType();
        request_->perform();
        return getBody(*request_);
    }

private:
    /// Asks for the file's size alone, for which the connection's type becomes binary. To have that done by
    /// the download itself takes a second over TLS with some servers (CTestClient::beginPrepareRequest).
    void setBinaryType() {
        request_->setOptionInt(CURLOPT_NOBODY, 1);
        request_->perform();
        request_->setOptionInt(CURLOPT_NOBODY, 0);
    }
};

FOR_ALL_PEERS(FTPDownload);

TEST_P(FTPDownload, FetchesTheWholeFile) { EXPECT_EQ(download(0, -1), content()); }

TEST_P(FTPDownload, FetchesFromAPositionOn) {
    EXPECT_EQ(download(1, -1), content().substr(1));
    EXPECT_EQ(download(299990, -1), content().substr(299990));
}

TEST_P(FTPDownload, FetchesAPart) {
    EXPECT_EQ(download(0, 10), content().substr(0, 10));
    EXPECT_EQ(download(5, 1), content().substr(5, 1));
    EXPECT_EQ(download(100000, 150000), content().substr(100000, 150000));
    EXPECT_EQ(download(299990, 10), content().substr(299990));
}

class FTPPlainDownload : public FTPDownload {};

FOR_PLAIN_PEERS(FTPPlainDownload);

TEST_P(FTPPlainDownload, FetchesAPartWithAnyWayToWalk) {
    for (const auto type :
         {vantra::CFTPClient::CWDSteps, vantra::CFTPClient::CWDDirect, vantra::CFTPClient::CWDNone}) {
        client_->setOverrideCWDType(type);
        EXPECT_EQ(download(7, 100), content().substr(7, 100));
        EXPECT_EQ(download(0, -1), content());
    }
}

TEST_P(FTPDownload, FetchesAnEmptyFile) {
    writeFile("/f", "");
    EXPECT_EQ(download(0, -1), "");
}

TEST_P(FTPDownload, FailsForAFileThatIsNotThere) {
    client_->prepareDownloadRequest(*request_, at("/none"), 0, -1);
    const auto error = performForError();
    EXPECT_EQ(error.getCode(), CURLE_REMOTE_FILE_NOT_FOUND);
    EXPECT_EQ(error.getResponseCodeDomain(), "ftp");
    EXPECT_EQ(error.getResponseCode(), 550);
    EXPECT_EQ(getBody(*request_), "");
}

} // namespace
