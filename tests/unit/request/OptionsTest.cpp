#include "CurlRecorder.h"
#include "Doubles.h"
#include "Thrown.h"

#include "vantra/NetRequest.h"

#include "support/FilePath.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <ostream>
#include <vector>

namespace vantra::test {

namespace {

using kel::CTimeSpan;
using kel::P;
using kel::String;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

/// A setter's call and all that libcurl shall be told by it.
struct SetterCase {
    std::string name;
    std::function<void(CNetRequest&)> call;
    std::vector<std::string> options;

    friend std::ostream& operator<<(std::ostream& stream, const SetterCase& setter) {
        return stream << setter.name;
    }
};

P<CNetStringList> makeList(std::initializer_list<const char*> lines) {
    P<CNetStringList> list = new CNetStringList();
    for (const char* line : lines) list->add(line);
    return list;
}

const SetterCase setterCases[] = {
    {"URL", [](CNetRequest& r) { r.setURL("http://example.org/ä"); }, {"URL = \"http://example.org/ä\""}},
    {"EmptyURL", [](CNetRequest& r) { r.setURL(""); }, {"URL = \"\""}},

    {"ConnectTimeoutCutToMilliseconds",
     [](CNetRequest& r) { r.setConnectTimeout(CTimeSpan::fromMicroseconds(1500)); },
     {"CONNECTTIMEOUT_MS = 1"}},
    {"ConnectTimeoutBelowAMillisecond",
     [](CNetRequest& r) { r.setConnectTimeout(CTimeSpan::fromMicroseconds(999)); },
     {"CONNECTTIMEOUT_MS = 0"}},
    {"ConnectTimeoutInfinite",
     [](CNetRequest& r) { r.setConnectTimeout(CTimeSpan::infinite()); },
     {"CONNECTTIMEOUT_MS = 0"}},
    {"FullRequestTimeout",
     [](CNetRequest& r) { r.setFullRequestTimeout(CTimeSpan::fromMicroseconds(2999999)); },
     {"TIMEOUT_MS = 2999"}},
    {"FullRequestTimeoutInfinite",
     [](CNetRequest& r) { r.setFullRequestTimeout(CTimeSpan::infinite()); },
     {"TIMEOUT_MS = 0"}},

    {"LowSpeedLimitRoundedUpToASecond",
     [](CNetRequest& r) { r.setLowSpeedLimit(100, CTimeSpan::fromMilliseconds(2500)); },
     {"LOW_SPEED_LIMIT = 100", "LOW_SPEED_TIME = 3"}},
    {"LowSpeedLimitOfWholeSeconds",
     [](CNetRequest& r) { r.setLowSpeedLimit(1, CTimeSpan::fromMilliseconds(2000)); },
     {"LOW_SPEED_LIMIT = 1", "LOW_SPEED_TIME = 2"}},
    {"LowSpeedLimitOfAMicrosecondMore",
     [](CNetRequest& r) { r.setLowSpeedLimit(1, CTimeSpan::fromMicroseconds(2000001)); },
     {"LOW_SPEED_LIMIT = 1", "LOW_SPEED_TIME = 3"}},
    {"LowSpeedLimitOfAMicrosecond",
     [](CNetRequest& r) { r.setLowSpeedLimit(1, CTimeSpan::fromMicroseconds(1)); },
     {"LOW_SPEED_LIMIT = 1", "LOW_SPEED_TIME = 1"}},
    {"LowSpeedLimitOff",
     [](CNetRequest& r) { r.setLowSpeedLimit(0, CTimeSpan()); },
     {"LOW_SPEED_LIMIT = 0", "LOW_SPEED_TIME = 0"}},
    {"LowSpeedLimitInfinite",
     [](CNetRequest& r) { r.setLowSpeedLimit(5, CTimeSpan::infinite()); },
     {"LOW_SPEED_LIMIT = 5", "LOW_SPEED_TIME = 0"}},

    {"FollowRedirects", [](CNetRequest& r) { r.setFollowRedirects(true); }, {"FOLLOWLOCATION = 1"}},
    {"FollowNoRedirects", [](CNetRequest& r) { r.setFollowRedirects(false); }, {"FOLLOWLOCATION = 0"}},
    {"KeepPostOnRedirect", [](CNetRequest& r) { r.setKeepPostOnRedirect(true); }, {"POSTREDIR = 7"}},
    {"KeepNoPostOnRedirect", [](CNetRequest& r) { r.setKeepPostOnRedirect(false); }, {"POSTREDIR = 0"}},

    {"VerifyPeer", [](CNetRequest& r) { r.setSSLVerifyPeer(true); }, {"SSL_VERIFYPEER = 1"}},
    {"VerifyNoPeer", [](CNetRequest& r) { r.setSSLVerifyPeer(false); }, {"SSL_VERIFYPEER = 0"}},
    {"RootCertBundlePath",
     [](CNetRequest& r) { r.setRootCertBundlePath("/etc//certs/./bündel.crt"); },
     {"CAINFO = \"" + testsupport::nativeName("/etc/certs/bündel.crt") + "\""}},

    {"HTTPAuthMethods",
     [](CNetRequest& r) {
         r.setHTTPAuthMethods(static_cast<unsigned int>(CURLAUTH_BASIC | CURLAUTH_DIGEST));
     },
     {"HTTPAUTH = 3"}},
    {"HTTPAuthMethodsOnly",
     [](CNetRequest& r) { r.setHTTPAuthMethods(0x80000001U); },
     {"HTTPAUTH = " + std::to_string(static_cast<long>(0x80000001U))}},
    {"UserName", [](CNetRequest& r) { r.setUserName("jürgen"); }, {"USERNAME = \"jürgen\""}},
    {"UserPassword", [](CNetRequest& r) { r.setUserPassword("pass: €"); }, {"PASSWORD = \"pass: €\""}},
    {"Proxy", [](CNetRequest& r) { r.setProxy("proxy:3128"); }, {"PROXY = \"proxy:3128\""}},
    {"NoProxy", [](CNetRequest& r) { r.setProxy(""); }, {"PROXY = \"\""}},

    {"Upload", [](CNetRequest& r) { r.setUpload(true); }, {"UPLOAD = 1"}},
    {"NoUpload", [](CNetRequest& r) { r.setUpload(false); }, {"UPLOAD = 0"}},

    {"FTPUseSSL", [](CNetRequest& r) { r.setFTPUseSSL(CURLUSESSL_ALL); }, {"USE_SSL = 3"}},
    {"FTPCreateMissingDirs",
     [](CNetRequest& r) { r.setFTPCreateMissingDirs(CURLFTP_CREATE_DIR_RETRY); },
     {"FTP_CREATE_MISSING_DIRS = 2"}},
    {"FTPFileMethod",
     [](CNetRequest& r) { r.setFTPFileMethod(CURLFTPMETHOD_NOCWD); },
     {"FTP_FILEMETHOD = 2"}},
    {"FTPListOverrideCommand",
     [](CNetRequest& r) { r.setFTPListOverrideCommand("MLSD ordner ä"); },
     {"CUSTOMREQUEST = \"MLSD ordner ä\""}},
    {"NoFTPListOverrideCommand",
     [](CNetRequest& r) { r.setFTPListOverrideCommand(""); },
     {"CUSTOMREQUEST = null"}},
    {"FTPPreCommands",
     [](CNetRequest& r) {
         r.setFTPCustomPreCommands(makeList({"SITE UMASK 022", "NOOP"}));
     },
     {"PREQUOTE = [\"SITE UMASK 022\", \"NOOP\"]"}},
    {"EmptyFTPPreCommands",
     [](CNetRequest& r) { r.setFTPCustomPreCommands(makeList({})); },
     {"PREQUOTE = null"}},
    {"NoFTPPreCommands", [](CNetRequest& r) { r.setFTPCustomPreCommands(nullptr); }, {"PREQUOTE = null"}},
    {"FTPPostCommands",
     [](CNetRequest& r) { r.setFTPCustomPostCommands(makeList({"DELE x"})); },
     {"POSTQUOTE = [\"DELE x\"]"}},
    {"NoFTPPostCommands", [](CNetRequest& r) { r.setFTPCustomPostCommands(nullptr); }, {"POSTQUOTE = null"}},

    {"SendDataSize", [](CNetRequest& r) { r.setSendDataSize(10); }, {"INFILESIZE_LARGE = 10"}},
    {"SendDataSizeUnknown", [](CNetRequest& r) { r.setSendDataSize(-1); }, {"INFILESIZE_LARGE = -1"}},
    {"SendDataSizeAboveFourGigabytes",
     [](CNetRequest& r) { r.setSendDataSize(5000000000); },
     {"INFILESIZE_LARGE = 5000000000"}},

    {"RangeToTheEnd", [](CNetRequest& r) { r.setRange(100, -1); }, {"RANGE = \"100-\""}},
    {"RangeOfALength", [](CNetRequest& r) { r.setRange(0, 10); }, {"RANGE = \"0-9\""}},
    {"RangeOfOneByte", [](CNetRequest& r) { r.setRange(7, 1); }, {"RANGE = \"7-7\""}},
    {"RangeAboveFourGigabytes",
     [](CNetRequest& r) { r.setRange(5000000000, 5000000000); },
     {"RANGE = \"5000000000-9999999999\""}},
    {"RangeOfNoLength", [](CNetRequest& r) { r.setRange(5, 0); }, {"RANGE = \"5-4\""}},
    {"RangeUpToTheLargestNumber",
     [](CNetRequest& r) { r.setRange(1, std::numeric_limits<kel::int64>::max()); },
     {"RANGE = \"1-9223372036854775807\""}},
    {"RangeBeyondTheLargestNumber",
     [](CNetRequest& r) { r.setRange(10, std::numeric_limits<kel::int64>::max()); },
     {"RANGE = \"10-9223372036854775807\""}},

    {"Verbose", [](CNetRequest& r) { r.setVerbose(true); }, {"VERBOSE = 1"}},
    {"NotVerbose", [](CNetRequest& r) { r.setVerbose(false); }, {"VERBOSE = 0"}},

    {"OptionInt", [](CNetRequest& r) { r.setOptionInt(CURLOPT_MAXREDIRS, -1); }, {"MAXREDIRS = -1"}},
    {"OptionIntInAWideOption",
     [](CNetRequest& r) { r.setOptionInt(CURLOPT_RESUME_FROM_LARGE, 12); },
     {"RESUME_FROM_LARGE = 12"}},
    {"OptionInt64",
     [](CNetRequest& r) { r.setOptionInt64(CURLOPT_MAX_RECV_SPEED_LARGE, 5000000000); },
     {"MAX_RECV_SPEED_LARGE = 5000000000"}},
    {"OptionInt64InANarrowOption",
     [](CNetRequest& r) { r.setOptionInt64(CURLOPT_MAXREDIRS, 4); },
     {"MAXREDIRS = 4"}},
    {"OptionPtr", [](CNetRequest& r) { r.setOptionPtr(CURLOPT_PRIVATE, &r); }, {"PRIVATE = object"}},
    {"OptionPtrNull", [](CNetRequest& r) { r.setOptionPtr(CURLOPT_REFERER, nullptr); }, {"REFERER = null"}},
    {"OptionString",
     [](CNetRequest& r) { r.setOptionString(CURLOPT_USERAGENT, "tëst/1"); },
     {"USERAGENT = \"tëst/1\""}},
};

class RequestSetter : public testing::TestWithParam<SetterCase> {};

TEST_P(RequestSetter, TellsLibcurlExactly) {
    CurlRecorder curl;
    const P<CNetRequest> request = new CNetRequest();
    curl.takeCalls();
    GetParam().call(*request);
    EXPECT_THAT(curl.takeCalls(), ElementsAreArray(GetParam().options));
}

TEST_P(RequestSetter, ReportsEachOfItsOptionsThatLibcurlRefuses) {
    for (const std::string& option : GetParam().options) {
        CurlRecorder curl;
        const P<CNetRequest> request = new CNetRequest();
        curl.sideOf(request->getHandle()).setErrorText("old text");
        const std::string name = option.substr(0, option.find(' '));
        curl.failOption(curl_easy_option_by_name(name.c_str())->id, CURLE_BAD_FUNCTION_ARGUMENT);
        std::map<std::string, std::string> params;
        const Thrown thrown = thrownBy([&] { GetParam().call(*request); });
        if (!request->getURL().isEmpty()) params["url"] = request->getURL().toUTF8();
        EXPECT_EQ(thrown, curlError(CURLE_BAD_FUNCTION_ARGUMENT, "", params)) << option;
    }
}

INSTANTIATE_TEST_SUITE_P(All, RequestSetter, testing::ValuesIn(setterCases),
                         [](const auto& tested) { return tested.param.name; });

class RequestOption : public testing::Test {
protected:
    RequestOption() { curl_.takeCalls(); }

    CurlRecorder curl_;
    P<CNetRequest> request_ = new CNetRequest();
};

TEST_F(RequestOption, PassesAPointerAsItIs) {
    int value = 0;
    curl_.takeCalls();
    curl_.nameObject(&value, "the value");
    request_->setOptionPtr(CURLOPT_PRIVATE, &value);
    EXPECT_THAT(curl_.takeCalls(), ElementsAre("PRIVATE = the value"));
}

TEST_F(RequestOption, OfTextTakesNoNumber) {
    curl_.takeCalls();
    EXPECT_EQ(thrownBy([&] { request_->setOptionInt(CURLOPT_URL, 1); }),
              curlError(CURLE_BAD_FUNCTION_ARGUMENT, "the option takes no number"));
    EXPECT_EQ(thrownBy([&] { request_->setOptionInt64(CURLOPT_WRITEFUNCTION, 1); }),
              curlError(CURLE_BAD_FUNCTION_ARGUMENT, "the option takes no number"));
    EXPECT_THAT(curl_.takeCalls(), IsEmpty());
}

TEST_F(RequestOption, OfNumberTakesNoPointer) {
    curl_.takeCalls();
    EXPECT_EQ(thrownBy([&] { request_->setOptionPtr(CURLOPT_TIMEOUT, nullptr); }),
              curlError(CURLE_BAD_FUNCTION_ARGUMENT, "the option takes no pointer"));
    EXPECT_EQ(thrownBy([&] { request_->setOptionPtr(CURLOPT_INFILESIZE_LARGE, nullptr); }),
              curlError(CURLE_BAD_FUNCTION_ARGUMENT, "the option takes no pointer"));
    EXPECT_THAT(curl_.takeCalls(), IsEmpty());
}

TEST_F(RequestOption, OfNumberTakesNoText) {
    curl_.takeCalls();
    EXPECT_EQ(thrownBy([&] { request_->setOptionString(CURLOPT_TIMEOUT, "10"); }),
              curlError(CURLE_BAD_FUNCTION_ARGUMENT, "the option takes no text"));
    EXPECT_THAT(curl_.takeCalls(), IsEmpty());
}

TEST_F(RequestOption, OfAPointerThatLibcurlDoesNotCopyTakesNoText) {
    for (const CURLoption option : {CURLOPT_WRITEDATA, CURLOPT_HTTPHEADER, CURLOPT_READFUNCTION,
                                    CURLOPT_PRIVATE, CURLOPT_SSLCERT_BLOB, CURLOPT_SHARE}) {
        curl_.takeCalls();
        EXPECT_EQ(thrownBy([&] { request_->setOptionString(option, "text"); }),
                  curlError(CURLE_BAD_FUNCTION_ARGUMENT, "the option takes no text"))
            << option;
        EXPECT_THAT(curl_.takeCalls(), IsEmpty()) << option;
    }
}

TEST_F(RequestOption, OfABodyIsCopiedWithItsOwnLength) {
    for (const CURLoption option : {CURLOPT_POSTFIELDS, CURLOPT_COPYPOSTFIELDS}) {
        curl_.takeCalls();
        request_->setOptionString(option, "a=b");
        EXPECT_THAT(curl_.takeCalls(), ElementsAre("POSTFIELDSIZE_LARGE = -1", "COPYPOSTFIELDS = object"));
    }
}

TEST_F(RequestOption, OfTextThatLibcurlDoesNotKnowIsReported) {
    EXPECT_EQ(thrownBy([&] { request_->setOptionString(static_cast<CURLoption>(19999), "text"); }),
              curlError(CURLE_UNKNOWN_OPTION, ""));
}

TEST_F(RequestOption, TakesNoTextWithANulCharacter) {
    curl_.takeCalls();
    EXPECT_EQ(thrownBy([&] { request_->setOptionString(CURLOPT_USERAGENT, String(L"a\0b", 3)); }),
              invalidArgError("CNetRequest::setOptionString", "text contains a NUL character"));
    EXPECT_THAT(curl_.takeCalls(), IsEmpty());
}

TEST_F(RequestOption, TakesNoTextWithANulCharacterFromAnySetter) {
    const String text(L"a\0b", 3);
    request_->setURL("http://host/");
    request_->setHTTPMethod("POST");
    curl_.takeCalls();
    const std::vector<std::function<void()>> setters = {
        [&] { request_->setURL(text); },
        [&] { request_->setHTTPMethod(text); },
        [&] { request_->setRootCertBundlePath(text); },
        [&] { request_->setUserName(text); },
        [&] { request_->setUserPassword(text); },
        [&] { request_->setProxy(text); },
        [&] { request_->setFTPListOverrideCommand(text); },
        [&] { request_->setOptionString(CURLOPT_POSTFIELDS, text); },
    };
    for (std::size_t i = 0; i < setters.size(); ++i) {
        EXPECT_EQ(thrownBy(setters[i]),
                  invalidArgError("CNetRequest::setOptionString", "text contains a NUL character"))
            << i;
        EXPECT_THAT(curl_.takeCalls(), IsEmpty()) << i;
    }
    EXPECT_EQ(request_->getURL(), "http://host/");
    EXPECT_EQ(request_->getHTTPMethod(), "POST");
}

TEST_F(RequestOption, ThatLibcurlDoesNotKnowIsReported) {
    EXPECT_EQ(thrownBy([&] { request_->setOptionInt(static_cast<CURLoption>(9999), 1); }),
              curlError(CURLE_UNKNOWN_OPTION, ""));
}

TEST_F(RequestOption, OutOfItsRangeIsReported) {
    const Thrown refused = curlError(CURLE_BAD_FUNCTION_ARGUMENT, "");
    EXPECT_EQ(thrownBy([&] { request_->setLowSpeedLimit(-1, CTimeSpan()); }), refused);
    EXPECT_EQ(thrownBy([&] { request_->setLowSpeedLimit(1, CTimeSpan::fromMilliseconds(-1000)); }), refused);
    EXPECT_EQ(thrownBy([&] { request_->setSendDataSize(-2); }), refused);
}

TEST_F(RequestOption, OfANegativeTimeIsReportedWithoutAnErrorTextOfBefore) {
    curl_.sideOf(request_->getHandle()).setErrorText("old text");
    curl_.takeCalls();
    const Thrown refused = curlError(CURLE_BAD_FUNCTION_ARGUMENT, "the time is negative");
    EXPECT_EQ(thrownBy([&] { request_->setConnectTimeout(CTimeSpan::fromMicroseconds(-1)); }), refused);
    EXPECT_EQ(thrownBy([&] { request_->setFullRequestTimeout(CTimeSpan::fromMilliseconds(-1)); }), refused);
    EXPECT_THAT(curl_.takeCalls(), IsEmpty());
}

TEST_F(RequestOption, RefusedLeavesTheSendDataSizeAsItWas) {
    request_->setSendDataSize(10);
    EXPECT_EQ(thrownBy([&] { request_->setSendDataSize(-2); }), curlError(CURLE_BAD_FUNCTION_ARGUMENT, ""));
    curl_.takeCalls();
    request_->setHTTPMethod("POST");
    EXPECT_EQ(curl_.takeCalls().back(), "POSTFIELDSIZE_LARGE = 10");
}

TEST_F(RequestOption, CarriesTheErrorBuffersTextInItsError) {
    curl_.failOption(CURLOPT_PROXY, CURLE_OUT_OF_MEMORY, "not enough röom");
    EXPECT_EQ(thrownBy([&] { request_->setProxy("x"); }), curlError(CURLE_OUT_OF_MEMORY, "not enough röom"));
}

TEST_F(RequestOption, CarriesTheURLButNoDomainOrResponseInItsError) {
    request_->setURL("http://example.org/");
    request_->setHTTPMethod("PUT");
    const LibcurlSide& side = curl_.sideOf(request_->getHandle());
    side.headers({"HTTP/1.1 404 Not Found\r\n", "\r\n"});
    side.write("a message");
    curl_.answerInfo(CURLINFO_RESPONSE_CODE, 404);
    curl_.failOption(CURLOPT_PROXY, CURLE_OUT_OF_MEMORY);
    EXPECT_EQ(thrownBy([&] { request_->setProxy("x"); }),
              curlError(CURLE_OUT_OF_MEMORY, "", {{"url", "http://example.org/"}}));
}

TEST_F(RequestOption, ClearsTheErrorBufferBeforeLibcurlIsTold) {
    curl_.sideOf(request_->getHandle()).setErrorText("old text");
    request_->setFollowRedirects(true);
    EXPECT_EQ(curl_.sideOf(request_->getHandle()).getErrorText(), "");
}

TEST_F(RequestOption, KeepsTheTextInLibcurl) {
    // The String is gone by the time of the transfer: only a copy can still be right.
    {
        const String url = "http://example.org/" + String(std::wstring(300, L'x'));
        request_->setURL(url);
    }
    char* effective = nullptr;
    ASSERT_EQ(curl_easy_getinfo(request_->getHandle(), CURLINFO_EFFECTIVE_URL, &effective), CURLE_OK);
    EXPECT_EQ(effective, "http://example.org/" + std::string(300, 'x'));
}

struct DomainCase {
    const char* url;
    const char* domain;
    friend std::ostream& operator<<(std::ostream& stream, const DomainCase& c) { return stream << c.url; }
};

class ResponseCodeDomain : public testing::TestWithParam<DomainCase> {};

TEST_P(ResponseCodeDomain, FollowsTheSchemeOfTheURL) {
    const P<CNetRequest> request = new CNetRequest();
    request->setURL(GetParam().url);
    EXPECT_EQ(request->getURL(), GetParam().url);
    EXPECT_EQ(request->getResponseCodeDomain(), GetParam().domain);
}

INSTANTIATE_TEST_SUITE_P(All, ResponseCodeDomain,
                         testing::Values(DomainCase{"http://h/", "http"}, DomainCase{"https://h/", "http"},
                                         DomainCase{"HTTP://h/", "http"}, DomainCase{"hTTpS://h/", "http"},
                                         DomainCase{"http:", "http"}, DomainCase{"ftp://h/", "ftp"},
                                         DomainCase{"FTPS://h/", "ftp"}, DomainCase{"sftp://h/", "ftp"},
                                         DomainCase{"smtp://h/", "smtp"}, DomainCase{"SMTPs://h/", "smtp"},
                                         DomainCase{"file:///h", ""}, DomainCase{"httpx://h/", ""},
                                         DomainCase{"http", ""}, DomainCase{" http://h/", ""},
                                         DomainCase{"imap://h/", ""}, DomainCase{"", ""}));

class HTTPFlag : public testing::TestWithParam<DomainCase> {};

TEST_P(HTTPFlag, DecidesWhetherLinesAreReadAsHTTPHeaders) {
    CurlRecorder curl;
    const P<CNetRequest> request = new CNetRequest();
    request->setURL(GetParam().url);
    curl.sideOf(request->getHandle()).headers({"HTTP/1.1 200 OK\r\n"});
    const bool isHTTP = std::string(GetParam().domain) == "http";
    EXPECT_EQ(request->getHTTPStatusLine(), isHTTP ? "HTTP/1.1 200 OK" : "");
}

INSTANTIATE_TEST_SUITE_P(All, HTTPFlag,
                         testing::Values(DomainCase{"http://h/", "http"}, DomainCase{"HttpS://h/", "http"},
                                         DomainCase{"ftp://h/", "ftp"}, DomainCase{"httpx://h/", ""},
                                         DomainCase{"", ""}));

TEST(HTTPFlagOfARequest, FollowsTheURLSetLast) {
    CurlRecorder curl;
    const P<CNetRequest> request = new CNetRequest();
    request->setURL("http://h/");
    request->setURL("ftp://h/");
    curl.sideOf(request->getHandle()).headers({"HTTP/1.1 200 OK\r\n"});
    EXPECT_EQ(request->getHTTPStatusLine(), "");
}

struct InfoCase {
    std::string name;
    CURLINFO info;
    std::function<double(const CNetRequest&)> ask;
    friend std::ostream& operator<<(std::ostream& stream, const InfoCase& c) { return stream << c.name; }
};

// Deprecated in favour of integers of the same values, but what the request's doubles are.
CURL_IGNORE_DEPRECATION(constexpr CURLINFO downloadSize = CURLINFO_CONTENT_LENGTH_DOWNLOAD;
                        constexpr CURLINFO downloadedBytes = CURLINFO_SIZE_DOWNLOAD;
                        constexpr CURLINFO uploadSize = CURLINFO_CONTENT_LENGTH_UPLOAD;
                        constexpr CURLINFO uploadedBytes = CURLINFO_SIZE_UPLOAD;
                        constexpr CURLINFO avgDownloadSpeed = CURLINFO_SPEED_DOWNLOAD;
                        constexpr CURLINFO avgUploadSpeed = CURLINFO_SPEED_UPLOAD;)

const InfoCase infoCases[] = {
    {"ResponseCode", CURLINFO_RESPONSE_CODE,
     [](const CNetRequest& r) { return double(r.getResponseCode()); }},
    {"Long", CURLINFO_REDIRECT_COUNT,
     [](const CNetRequest& r) { return double(r.getInfoLong(CURLINFO_REDIRECT_COUNT)); }},
    {"Double", CURLINFO_TOTAL_TIME,
     [](const CNetRequest& r) { return r.getInfoDouble(CURLINFO_TOTAL_TIME); }},
    {"DownloadSize", downloadSize, [](const CNetRequest& r) { return r.getDownloadSize(); }},
    {"DownloadedBytes", downloadedBytes, [](const CNetRequest& r) { return r.getDownloadedBytes(); }},
    {"UploadSize", uploadSize, [](const CNetRequest& r) { return r.getUploadSize(); }},
    {"UploadedBytes", uploadedBytes, [](const CNetRequest& r) { return r.getUploadedBytes(); }},
    {"AvgDownloadSpeed", avgDownloadSpeed, [](const CNetRequest& r) { return r.getAvgDownloadSpeed(); }},
    {"AvgUploadSpeed", avgUploadSpeed, [](const CNetRequest& r) { return r.getAvgUploadSpeed(); }},
};

class RequestInfo : public testing::TestWithParam<InfoCase> {};

TEST_P(RequestInfo, IsLibcurlsAnswer) {
    CurlRecorder curl;
    const P<CNetRequest> request = new CNetRequest();
    curl.answerInfo(GetParam().info, 1234);
    EXPECT_EQ(GetParam().ask(*request), 1234);
}

TEST_P(RequestInfo, ReportsThatLibcurlHasNone) {
    CurlRecorder curl;
    const P<CNetRequest> request = new CNetRequest();
    request->setURL("http://h/");
    curl.failInfo(GetParam().info, CURLE_UNKNOWN_OPTION);
    EXPECT_EQ(thrownBy([&] { GetParam().ask(*request); }),
              curlError(CURLE_UNKNOWN_OPTION, "", {{"url", "http://h/"}}));
}

INSTANTIATE_TEST_SUITE_P(All, RequestInfo, testing::ValuesIn(infoCases),
                         [](const auto& tested) { return tested.param.name; });

TEST(RequestInfoOfAnotherKind, IsReportedInsteadOfRead) {
    CurlRecorder curl;
    const P<CNetRequest> request = new CNetRequest();
    curl.sideOf(request->getHandle()).setErrorText("old text");
    const Thrown noInteger = curlError(CURLE_BAD_FUNCTION_ARGUMENT, "the information is no integer");
    EXPECT_EQ(thrownBy([&] { (void)request->getInfoLong(CURLINFO_TOTAL_TIME); }), noInteger);
    EXPECT_EQ(thrownBy([&] { (void)request->getInfoLong(CURLINFO_SIZE_DOWNLOAD_T); }), noInteger);
    const Thrown noDouble =
        curlError(CURLE_BAD_FUNCTION_ARGUMENT, "the information is no floating-point number");
    EXPECT_EQ(thrownBy([&] { (void)request->getInfoDouble(CURLINFO_RESPONSE_CODE); }), noDouble);
    EXPECT_EQ(thrownBy([&] { (void)request->getInfoDouble(CURLINFO_EFFECTIVE_URL); }), noDouble);
}

} // namespace

} // namespace vantra::test
