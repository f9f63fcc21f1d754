#include "FTPFixture.h"

#include "support/ServerFile.h"

#include <chrono>

using kel::CTime;
using kel::IFileInfoBase;
using kel::P;
using kel::PC;
using testing::ElementsAre;
using testing::IsEmpty;
using vantra::CFTPDirEntry;
using vantra::CFTPGetInfoResult;
using vantra::CFTPListDirResult;

namespace {

class FTPInfo : public OverFTP {
protected:
    /// Sets a file's time to 2019-04-01 12:30:00 UTC.
    void setTime(std::string_view path) const {
        const std::chrono::sys_seconds time = std::chrono::sys_days{std::chrono::year{2019} / 4 / 1} +
                                              std::chrono::hours(12) + std::chrono::minutes(30);
        testsupport::setServerFileTime(fileAt(path), time);
    }

    static constexpr kel::int64 microseconds = 1554121800000000;
};

FOR_ALL_PEERS(FTPInfo);

TEST_P(FTPInfo, ListsADirectory) {
    writeFile("/report.txt", "content");
    setTime("/report.txt");
    makeFolder("/sub");
    const P<CFTPListDirResult> listing = client_->listDir(*request_, at(""));
    EXPECT_THAT(namesOf(*listing), ElementsAre("report.txt", "sub"));
    for (const P<CFTPDirEntry>& entry : listing->getEntries()) {
        if (entry->getName() == "report.txt") {
            EXPECT_EQ(entry->getType(), IFileInfoBase::File);
            EXPECT_EQ(entry->getSize(), 7);
            EXPECT_EQ(entry->getModifiedTime().getMicroseconds(), microseconds);
        } else if (entry->getName() == "sub") {
            EXPECT_EQ(entry->getType(), IFileInfoBase::Directory);
        } else {
            EXPECT_EQ(entry->getType(), IFileInfoBase::Unknown) << entry->getName();
        }
    }
}

TEST_P(FTPInfo, ListsAnEmptyDirectory) {
    EXPECT_THAT(namesOf(*client_->listDir(*request_, at(""))), IsEmpty());
}

TEST_P(FTPInfo, ListsADirectoryWithAnyWayToWalk) {
    writeFile("/f", "");
    for (const auto type : {vantra::CFTPClient::CWDInvalid, vantra::CFTPClient::CWDSteps,
                            vantra::CFTPClient::CWDDirect, vantra::CFTPClient::CWDNone}) {
        client_->setOverrideCWDType(type);
        EXPECT_THAT(namesOf(*client_->listDir(*request_, at("/"))), ElementsAre("f"));
    }
}

TEST_P(FTPInfo, FailsToListADirectoryThatIsNotThere) {
    const auto error = errorOf([&] { static_cast<void>(client_->listDir(*request_, at("/none"))); });
    expectRefusedTransfer(error);
}

TEST_P(FTPInfo, TellsOfAFile) {
    writeFile("/report.txt", "content");
    setTime("/report.txt");
    client_->prepareGetInfoRequest(*request_, at("/report.txt"));
    request_->perform();
    const PC<CFTPDirEntry> info = CFTPGetInfoResult(request_->getResponseInfo()).getInfo();
    EXPECT_EQ(info->getType(), IFileInfoBase::File);
    EXPECT_EQ(info->getSize(), 7);
    EXPECT_EQ(info->getModifiedTime().getMicroseconds(), microseconds);
    EXPECT_TRUE(info->getName().endsWith(L"/report.txt")) << info->getName();
}

TEST_P(FTPInfo, TellsOfADirectory) {
    client_->prepareGetInfoRequest(*request_, at(""));
    request_->perform();
    const PC<CFTPDirEntry> info = CFTPGetInfoResult(request_->getResponseInfo()).getInfo();
    EXPECT_EQ(info->getType(), IFileInfoBase::Directory);
}

TEST_P(FTPInfo, VerifiesThatSomethingExists) {
    writeFile("/f", "");
    makeFolder("/d");
    for (const char* path : {"/f", "/d"}) {
        client_->prepareVerifyExistsRequest(*request_, at(path));
        request_->perform();
    }
}

TEST_P(FTPInfo, FailsToVerifyThatSomethingExistsThatDoesNot) {
    client_->prepareVerifyExistsRequest(*request_, at("/none"));
    const auto error = performForError();
    EXPECT_EQ(error.getCode(), CURLE_QUOTE_ERROR);
    EXPECT_EQ(error.getResponseCodeDomain(), "ftp");
    EXPECT_EQ(error.getResponseCode(), 550);
}

} // namespace
