#include "vantra/FTPClient.h"

#include "CurlRecorder.h"
#include "Thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vantra::test {

namespace {

using kel::P;
using kel::String;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::StartsWith;

static_assert(std::is_base_of_v<kel::CBase, CFTPClient>);
static_assert(CFTPClient::ConnectUnencrypted == 0 && CFTPClient::ConnectExplicitTLS == 1 &&
              CFTPClient::ConnectImplicitTLS == 2);
static_assert(CFTPClient::CWDInvalid == -1 && CFTPClient::CWDSteps == 0 && CFTPClient::CWDDirect == 1 &&
              CFTPClient::CWDNone == 2);

TEST(FTPClient, NamesItsWaysToWalk) {
    EXPECT_EQ(CFTPClient::cwdTypeToString(CFTPClient::CWDInvalid), "CWDInvalid");
    EXPECT_EQ(CFTPClient::cwdTypeToString(CFTPClient::CWDSteps), "CWDSteps");
    EXPECT_EQ(CFTPClient::cwdTypeToString(CFTPClient::CWDDirect), "CWDDirect");
    EXPECT_EQ(CFTPClient::cwdTypeToString(CFTPClient::CWDNone), "CWDNone");
}

TEST(FTPClient, NamesNoOtherWayToWalk) {
    for (const int value : {3, -2, 1000}) {
        EXPECT_EQ(thrownBy([&] {
                      static_cast<void>(CFTPClient::cwdTypeToString(static_cast<CFTPClient::CWDType>(value)));
                  }),
                  plainError("Unknown CWDType: " + std::to_string(value)));
    }
}

TEST(FTPClient, EscapesEverythingInAPathThatAURLReadsOtherwise) {
    EXPECT_EQ(CFTPClient::escapePath("/a/b-c._~9"), "/a/b-c._~9");
    EXPECT_EQ(CFTPClient::escapePath("//srv/ a;type=i"), "//srv/%20a%3Btype%3Di");
    EXPECT_EQ(CFTPClient::escapePath("/100%/#1?"), "/100%25/%231%3F");
    EXPECT_EQ(CFTPClient::escapePath(L"/Gr\u00F6\u00DFe"), "/Gr%C3%B6%C3%9Fe");
    EXPECT_EQ(CFTPClient::escapePath(""), "");
}

/// A request whose calls of libcurl are written down.
class FTPClientCalls : public testing::Test {
protected:
    /// What a preparation tells libcurl beyond a reset.
    template <class Preparation>
    std::vector<std::string> callsOf(Preparation prepare) {
        curl_.takeCalls();
        request_->reset();
        const std::vector<std::string> ofReset = curl_.takeCalls();
        prepare(*request_);
        std::vector<std::string> calls = curl_.takeCalls();
        EXPECT_THAT(std::vector(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(ofReset.size())),
                    testing::ElementsAreArray(ofReset));
        calls.erase(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(ofReset.size()));
        return calls;
    }

    CurlRecorder curl_;
    P<CNetRequest> request_ = new CNetRequest();
};

TEST_F(FTPClientCalls, RequireTLSWhenItIsExplicit) {
    const CFTPClient client("ftp.example.org:2121", "jürgen", "pass: €", CFTPClient::ConnectExplicitTLS);
    EXPECT_THAT(callsOf([&](CNetRequest& r) { client.prepareDownloadRequest(r, "/a", 0, -1); }),
                ElementsAre("URL = \"ftp://ftp.example.org:2121/a\"", "USERNAME = \"jürgen\"",
                            "PASSWORD = \"pass: €\"", "USE_SSL = 3", "FTP_FILEMETHOD = 2",
                            "FTP_CREATE_MISSING_DIRS = 0"));
}

TEST_F(FTPClientCalls, UseTheSchemeOfImplicitTLS) {
    const CFTPClient client("h", "u", "p", CFTPClient::ConnectImplicitTLS);
    const std::vector<std::string> calls =
        callsOf([&](CNetRequest& r) { client.prepareDownloadRequest(r, "/a", 0, -1); });
    EXPECT_THAT(calls, ElementsAre("URL = \"ftps://h/a\"", "USERNAME = \"u\"", "PASSWORD = \"p\"",
                                   "FTP_FILEMETHOD = 2", "FTP_CREATE_MISSING_DIRS = 0"));
}

TEST_F(FTPClientCalls, UseNeitherWithoutTLS) {
    const CFTPClient client("h", "u", "p", CFTPClient::ConnectUnencrypted);
    EXPECT_THAT(callsOf([&](CNetRequest& r) { client.prepareDownloadRequest(r, "/a", 0, -1); }),
                ElementsAre("URL = \"ftp://h/a\"", "USERNAME = \"u\"", "PASSWORD = \"p\"",
                            "FTP_FILEMETHOD = 2", "FTP_CREATE_MISSING_DIRS = 0"));
}

TEST_F(FTPClientCalls, WalkAsTheOverrideSays) {
    CFTPClient client("h", "u", "p", CFTPClient::ConnectUnencrypted);
    const auto methodOf = [&](CFTPClient::CWDType type, bool createMissingDirs) {
        client.setOverrideCWDType(type);
        const std::vector<std::string> calls = callsOf(
            [&](CNetRequest& r) { client.prepareUploadRequest(r, "/a/b", "x", 1, createMissingDirs); });
        return calls.at(3);
    };
    EXPECT_EQ(methodOf(CFTPClient::CWDSteps, false), "FTP_FILEMETHOD = 1");
    EXPECT_EQ(methodOf(CFTPClient::CWDDirect, false), "FTP_FILEMETHOD = 3");
    EXPECT_EQ(methodOf(CFTPClient::CWDDirect, true), "FTP_FILEMETHOD = 3");
    EXPECT_EQ(methodOf(CFTPClient::CWDNone, true), "FTP_FILEMETHOD = 2");
    // Without an override the operation decides.
    EXPECT_EQ(methodOf(CFTPClient::CWDInvalid, true), "FTP_FILEMETHOD = 1");
    EXPECT_EQ(methodOf(CFTPClient::CWDInvalid, false), "FTP_FILEMETHOD = 2");
}

TEST_F(FTPClientCalls, SetNoWayToWalkForAnOverrideThatIsNone) {
    CFTPClient client("h", "u", "p", CFTPClient::ConnectUnencrypted);
    for (const int value : {3, -2}) {
        client.setOverrideCWDType(static_cast<CFTPClient::CWDType>(value));
        EXPECT_THAT(callsOf([&](CNetRequest& r) { client.prepareUploadRequest(r, "/a", "x", 1, true); }),
                    Not(Contains(StartsWith("FTP_FILEMETHOD"))));
    }
}

TEST_F(FTPClientCalls, AreThoseOfACopyToo) {
    CFTPClient client("h", "u", "p", CFTPClient::ConnectExplicitTLS);
    client.setOverrideCWDType(CFTPClient::CWDDirect);
    const auto callsOfClient = [&](const CFTPClient& tested) {
        return callsOf([&](CNetRequest& r) { tested.prepareListDirRequest(r, "/a"); });
    };
    const std::vector<std::string> calls = callsOfClient(client);
    EXPECT_THAT(calls,
                ElementsAre("URL = \"ftp://h/a/\"", "USERNAME = \"u\"", "PASSWORD = \"p\"", "USE_SSL = 3",
                            "FTP_FILEMETHOD = 3", "FTP_CREATE_MISSING_DIRS = 0", "CUSTOMREQUEST = \"MLSD\""));
    CFTPClient copy(client);
    EXPECT_EQ(callsOfClient(copy), calls);
    CFTPClient assigned("other", "", "", CFTPClient::ConnectImplicitTLS);
    assigned = client;
    EXPECT_EQ(callsOfClient(assigned), calls);
    const CFTPClient moved(std::move(copy));
    EXPECT_EQ(callsOfClient(moved), calls);
    CFTPClient moveAssigned("other", "", "", CFTPClient::ConnectImplicitTLS);
    moveAssigned = std::move(assigned);
    EXPECT_EQ(callsOfClient(moveAssigned), calls);
}

TEST_F(FTPClientCalls, ForgetWhatTheRequestWasBefore) {
    const CFTPClient client("h", "u", "p", CFTPClient::ConnectUnencrypted);
    client.prepareUploadRequest(*request_, "/a", "data", 4, true);
    client.prepareRemoveDirRequest(*request_, "/d");
    EXPECT_EQ(request_->getSendDataStream().get(), nullptr);
    EXPECT_EQ(request_->getURL(), "ftp://h");
}

class FTPClientArguments : public testing::Test {
protected:
    const CFTPClient client_{"h", "u", "p", CFTPClient::ConnectUnencrypted};
    P<CNetRequest> request_ = new CNetRequest();
};

TEST_F(FTPClientArguments, MustBeBytesForAnUpload) {
    EXPECT_EQ(thrownBy([&] { client_.prepareUploadRequest(*request_, "/a", "x", -1, false); }),
              invalidArgError("CFTPClient::prepareUploadRequest", "size is negative"));
    EXPECT_EQ(thrownBy([&] { client_.prepareUploadRequest(*request_, "/a", nullptr, 1, false); }),
              invalidArgError("CFTPClient::prepareUploadRequest", "data is null"));
    client_.prepareUploadRequest(*request_, "/a", nullptr, 0, false);
    EXPECT_EQ(request_->getSendDataStream()->getSize(), 0);
}

TEST_F(FTPClientArguments, AreCopiedForAnUpload) {
    std::string data = "data";
    client_.prepareUploadRequest(*request_, "/a", data.data(), 4, false);
    data = "else";
    char sent[5] = "";
    EXPECT_EQ(request_->getSendDataStream()->read(sent, 4), 4U);
    EXPECT_STREQ(sent, "data");
}

TEST_F(FTPClientArguments, MustBeARangeForADownload) {
    constexpr kel::int64 last = std::numeric_limits<kel::int64>::max();
    const Thrown invalid = invalidArgError("CFTPClient::prepareDownloadRequest", "invalid range");
    using Range = std::pair<kel::int64, kel::int64>;
    const Range ranges[] = {{0, 0},  {5, 0},  {0, -2},        {-1, -1},
                            {-5, 5}, {-5, 0}, {1, INT64_MIN}, {2, last - 1}};
    const auto download = [&](const Range& range) {
        return thrownBy([&] { client_.prepareDownloadRequest(*request_, "/a", range.first, range.second); });
    };
    for (const Range& range : ranges)
        EXPECT_EQ(download(range), invalid) << range.first << ' ' << range.second;
    EXPECT_EQ(request_->getURL(), "");
    for (const Range& range : {Range{last, -1}, Range{1, last - 1}})
        EXPECT_EQ(download(range), nothingThrown);
}

TEST_F(FTPClientArguments, MustNotSmuggleCommandsIn) {
    const String paths[] = {"/a\r\nDELE /b", "/a\nDELE /b", "/a\rDELE /b", String(L"/a\0b", 4)};
    for (const String& path : paths) {
        const auto expectRefused = [&](const std::string& method, const std::function<void()>& prepare) {
            EXPECT_EQ(thrownBy(prepare), invalidArgError("CFTPClient::" + method,
                                                         "path contains a line break or a NUL character"));
        };
        expectRefused("prepareGetInfoRequest", [&] { client_.prepareGetInfoRequest(*request_, path); });
        expectRefused("prepareVerifyExistsRequest",
                      [&] { client_.prepareVerifyExistsRequest(*request_, path); });
        expectRefused("prepareRemoveDirRequest", [&] { client_.prepareRemoveDirRequest(*request_, path); });
        expectRefused("prepareDeleteFileRequest", [&] { client_.prepareDeleteFileRequest(*request_, path); });
        for (const bool create : {false, true}) {
            expectRefused("prepareCreateDirRequest",
                          [&] { client_.prepareCreateDirRequest(*request_, path, create); });
            expectRefused("prepareMoveFileRequest",
                          [&] { client_.prepareMoveFileRequest(*request_, path, "/b", create); });
            expectRefused("prepareMoveFileRequest",
                          [&] { client_.prepareMoveFileRequest(*request_, "/b", path, create); });
            expectRefused("prepareMoveDirRequest",
                          [&] { client_.prepareMoveDirRequest(*request_, path, "/b", create); });
            expectRefused("prepareMoveDirRequest",
                          [&] { client_.prepareMoveDirRequest(*request_, "/b", path, create); });
        }
    }
    EXPECT_EQ(request_->getURL(), "");
}

TEST_F(FTPClientArguments, MustBeOfOneLineForTheLogin) {
    const Thrown refused = invalidArgError("CFTPClient::beginPrepareRequest",
                                           "user name or password contains a line break or a NUL character");
    const String texts[] = {"a\r\nDELE /b", "a\n", "\ra", String(L"a\0b", 3)};
    for (const String& text : texts) {
        const CFTPClient ofUser("h", text, "p", CFTPClient::ConnectUnencrypted);
        EXPECT_EQ(thrownBy([&] { ofUser.prepareListDirRequest(*request_, "/a"); }), refused);
        const CFTPClient ofPassword("h", "u", text, CFTPClient::ConnectUnencrypted);
        EXPECT_EQ(thrownBy([&] { ofPassword.prepareRemoveDirRequest(*request_, "/a"); }), refused);
    }
    EXPECT_EQ(request_->getURL(), "");
}

TEST_F(FTPClientArguments, MustHoldNoNULInAURL) {
    const String path(L"/a\0b", 4);
    EXPECT_EQ(thrownBy([&] { client_.prepareUploadRequest(*request_, path, "x", 1, false); }),
              invalidArgError("CNetRequest::setOptionString", "text contains a NUL character"));
}

} // namespace

} // namespace vantra::test
