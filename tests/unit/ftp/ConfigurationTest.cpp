#include "vantra/FTPClient.h"

#include "CurlRecorder.h"

#include <kel/MTRand.h>
#include <kel/Mutex.h>
#include <kel/P.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace vantra::test {

namespace {

using kel::CMTRand;
using kel::CMutexLock;
using kel::P;
using kel::String;
using testing::ElementsAreArray;

constexpr kel::uint64 seed = 5489;

/// What the directory's move names its dummy file with that seed.
std::string dummyName() { return "__dummy" + std::to_string(CMTRand(seed).rand64()); }

/// An operation, and all that libcurl shall be told by it beyond the reset and the login.
struct OperationCase {
    std::string name;
    std::function<void(const CFTPClient&, CNetRequest&)> prepare;
    std::string urlPath;
    int fileMethod;
    int createMissingDirs;
    std::vector<std::string> options;
    std::string sentBytes = "none"; ///< what the send stream holds

    friend std::ostream& operator<<(std::ostream& stream, const OperationCase& operation) {
        return stream << operation.name;
    }
};

constexpr int steps = CURLFTPMETHOD_MULTICWD;
constexpr int none = CURLFTPMETHOD_NOCWD;
constexpr int retry = CURLFTP_CREATE_DIR_RETRY;

const OperationCase operations[] = {
    {"DownloadOfAll",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareDownloadRequest(r, "/d/f", 0, -1); },
     "/d/f",
     none,
     0,
     {}},
    {"DownloadToTheEnd",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareDownloadRequest(r, "/d/f", 100, -1); },
     "/d/f",
     none,
     0,
     {"RANGE = \"100-\""}},
    {"DownloadFromTheStart",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareDownloadRequest(r, "/d/f", 0, 10); },
     "/d/f",
     none,
     0,
     {"RANGE = \"0-9\""}},
    {"DownloadOfOneByte",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareDownloadRequest(r, "/d/f", 5, 1); },
     "/d/f",
     none,
     0,
     {"RANGE = \"5-5\""}},
    {"DownloadAboveFourGigabytes",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareDownloadRequest(r, "/d/f", 5000000000, 5000000000); },
     "/d/f",
     none,
     0,
     {"RANGE = \"5000000000-9999999999\""}},
    {"Upload",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareUploadRequest(r, "/d/f", "data", 4, false); },
     "/d/f",
     none,
     0,
     {"UPLOAD = 1", "INFILESIZE_LARGE = 4"},
     "data"},
    {"UploadWithMissingDirs",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareUploadRequest(r, "/d/f", "", 0, true); },
     "/d/f",
     steps,
     retry,
     {"UPLOAD = 1", "INFILESIZE_LARGE = 0"},
     ""},
    {"ListDir",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareListDirRequest(r, "/a"); },
     "/a/",
     none,
     0,
     {"CUSTOMREQUEST = \"MLSD\""}},
    {"ListDirWithSlash",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareListDirRequest(r, "/a/"); },
     "/a/",
     none,
     0,
     {"CUSTOMREQUEST = \"MLSD\""}},
    {"ListLoginDir",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareListDirRequest(r, ""); },
     "/",
     none,
     0,
     {"CUSTOMREQUEST = \"MLSD\""}},
    {"GetInfo",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareGetInfoRequest(r, "/d/a b%41#?"); },
     "",
     none,
     0,
     {"PREQUOTE = [\"MLST /d/a b%41#?\"]", "NOBODY = 1"}},
    {"VerifyExists",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareVerifyExistsRequest(r, "/d/f"); },
     "",
     none,
     0,
     {"PREQUOTE = [\"MLST /d/f\"]", "NOBODY = 1"}},
    {"CreateDir",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareCreateDirRequest(r, "/a/b", false); },
     "",
     none,
     0,
     {"PREQUOTE = [\"MKD /a/b\"]", "NOBODY = 1"}},
    {"CreateDirWithParents",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareCreateDirRequest(r, "/a/b", true); },
     "/a/b/",
     steps,
     retry,
     {"PREQUOTE = [\"MKD /a/b\"]"}},
    {"CreateDirWithParentsAndSlash",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareCreateDirRequest(r, "/a/b/", true); },
     "/a/b/",
     steps,
     retry,
     {"PREQUOTE = [\"MKD /a/b/\"]"}},
    {"RemoveDir",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareRemoveDirRequest(r, "/a/b"); },
     "",
     none,
     0,
     {"PREQUOTE = [\"RMD /a/b\"]", "NOBODY = 1"}},
    {"DeleteFile",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareDeleteFileRequest(r, "/a/ü"); },
     "",
     none,
     0,
     {"PREQUOTE = [\"DELE /a/ü\"]", "NOBODY = 1"}},
    {"MoveFile",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareMoveFileRequest(r, "/a", "/b/c", false); },
     "",
     none,
     0,
     {"PREQUOTE = [\"RNFR /a\", \"RNTO /b/c\"]", "NOBODY = 1"}},
    {"MoveFileWithMissingDirs",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareMoveFileRequest(r, "/a", "/b/c", true); },
     "/b/c",
     steps,
     retry,
     {"PREQUOTE = [\"RNFR /a\", \"RNTO /b/c\"]", "UPLOAD = 1", "APPEND = 1"},
     ""},
    {"MoveDir",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareMoveDirRequest(r, "/a", "/b/c", false); },
     "",
     none,
     0,
     {"PREQUOTE = [\"RNFR /a\", \"RNTO /b/c\"]", "NOBODY = 1"}},
    {"MoveDirWithMissingDirs",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareMoveDirRequest(r, "/a", "/b/c", true); },
     "/b/c/" + dummyName(),
     steps,
     retry,
     {"PREQUOTE = [\"RNFR /a\", \"RNTO /b/c\"]", "UPLOAD = 1",
      "POSTQUOTE = [\"DELE /b/c/" + dummyName() + "\"]"},
     ""},
    {"MoveDirWithMissingDirsAndSlash",
     [](const CFTPClient& c, CNetRequest& r) { c.prepareMoveDirRequest(r, "/a/", "/b/", true); },
     "/b//" + dummyName(),
     steps,
     retry,
     {"PREQUOTE = [\"RNFR /a/\", \"RNTO /b/\"]", "UPLOAD = 1",
      "POSTQUOTE = [\"DELE /b//" + dummyName() + "\"]"},
     ""},
};

std::string contentOf(const P<kel::IInStream>& stream) {
    if (!stream) return "none";
    std::string content(100, '\0');
    content.resize(stream->read(content.data(), content.size()));
    return content;
}

class FTPOperation : public testing::TestWithParam<OperationCase> {
protected:
    FTPOperation() {
        const CMutexLock lock(CMTRand::getGlobalMutex());
        CMTRand::getGlobal().setSeed(seed);
    }
};

TEST_P(FTPOperation, ConfiguresTheRequestExactly) {
    CurlRecorder curl;
    const P<CNetRequest> request = new CNetRequest();
    curl.takeCalls();
    request->reset();
    std::vector<std::string> expected = curl.takeCalls();
    const std::vector<std::string> common = {
        "URL = \"ftp://h" + GetParam().urlPath + "\"", "USERNAME = \"u\"", "PASSWORD = \"p\"",
        "FTP_FILEMETHOD = " + std::to_string(GetParam().fileMethod),
        "FTP_CREATE_MISSING_DIRS = " + std::to_string(GetParam().createMissingDirs)};
    expected.insert(expected.end(), common.begin(), common.end());
    expected.insert(expected.end(), GetParam().options.begin(), GetParam().options.end());

    const P<CFTPClient> client = new CFTPClient("h", "u", "p", CFTPClient::ConnectUnencrypted);
    GetParam().prepare(*client, *request);
    EXPECT_THAT(curl.takeCalls(), ElementsAreArray(expected));
    EXPECT_EQ(contentOf(request->getSendDataStream()), GetParam().sentBytes);
}

INSTANTIATE_TEST_SUITE_P(All, FTPOperation, testing::ValuesIn(operations),
                         [](const auto& tested) { return tested.param.name; });

TEST(FTPMoveDir, NamesADifferentDummyFileEachTime) {
    const P<CNetRequest> request = new CNetRequest();
    const CFTPClient client("h", "u", "p", CFTPClient::ConnectUnencrypted);
    client.prepareMoveDirRequest(*request, "/a", "/b", true);
    const String first = request->getURL();
    client.prepareMoveDirRequest(*request, "/a", "/b", true);
    EXPECT_NE(request->getURL(), first);
}

} // namespace

} // namespace vantra::test
