#include "vantra/CURLError.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>

namespace {

using kel::CError;
using kel::CProps;
using kel::String;
using vantra::CCURLError;
using vantra::getHTTPStatusCodeFromError;
using vantra::isNetworkOrServiceDownError;

CCURLError easyError(CURLcode code, const String& responseCodeDomain = "", int responseCode = 0) {
    return {code, "", responseCodeDomain, responseCode, "", "", "", ""};
}

CCURLError multiError(CURLMcode code, const String& responseCodeDomain = "", int responseCode = 0) {
    return {code, "", responseCodeDomain, responseCode, "", "", "", ""};
}

CError plainError(const String& codeDomain, kel::int64 code, const String& responseCodeDomain = "",
                  const String& responseCode = "") {
    const CProps params =
        CProps().add("responseCodeDomain", responseCodeDomain).add("responseCode", responseCode);
    return CError("It failed.", codeDomain, code, params);
}

TEST(HTTPStatusFromError, IsTheCodeOfAnErrorInTheHTTPDomain) {
    EXPECT_EQ(getHTTPStatusCodeFromError(CError("", "http", 404)), 404);
    EXPECT_EQ(getHTTPStatusCodeFromError(CError("", "http", 200)), 200);
    EXPECT_EQ(getHTTPStatusCodeFromError(CError("", "http", -1)), -1);
}

TEST(HTTPStatusFromError, IgnoresTheParametersOfAnErrorInTheHTTPDomain) {
    EXPECT_EQ(getHTTPStatusCodeFromError(plainError("http", 404, "http", "503")), 404);
    EXPECT_EQ(getHTTPStatusCodeFromError(plainError("http", 404, "ftp", "not a number")), 404);
}

TEST(HTTPStatusFromError, IsAnyStatusWhenTheStatusIsTheFailure) {
    for (const int status : {100, 204, 302, 399, 400, 404, 503})
        EXPECT_EQ(getHTTPStatusCodeFromError(easyError(CURLE_HTTP_RETURNED_ERROR, "http", status)), status);
}

TEST(HTTPStatusFromError, IsOnlyAnErrorStatusWhenTheTransferFailedOtherwise) {
    EXPECT_EQ(getHTTPStatusCodeFromError(easyError(CURLE_OPERATION_TIMEDOUT, "http", 302)), -1);
    EXPECT_EQ(getHTTPStatusCodeFromError(easyError(CURLE_OPERATION_TIMEDOUT, "http", 399)), -1);
    EXPECT_EQ(getHTTPStatusCodeFromError(easyError(CURLE_OPERATION_TIMEDOUT, "http", 400)), 400);
    EXPECT_EQ(getHTTPStatusCodeFromError(easyError(CURLE_RECV_ERROR, "http", 200)), -1);
    EXPECT_EQ(getHTTPStatusCodeFromError(easyError(CURLE_RECV_ERROR, "http", 503)), 503);
    EXPECT_EQ(getHTTPStatusCodeFromError(easyError(CURLE_OK, "http", 200)), -1);
}

TEST(HTTPStatusFromError, IsMinusOneForOtherProtocols) {
    EXPECT_EQ(getHTTPStatusCodeFromError(easyError(CURLE_REMOTE_ACCESS_DENIED, "ftp", 550)), -1);
    EXPECT_EQ(getHTTPStatusCodeFromError(easyError(CURLE_HTTP_RETURNED_ERROR, "smtp", 421)), -1);
    EXPECT_EQ(getHTTPStatusCodeFromError(easyError(CURLE_HTTP_RETURNED_ERROR, "HTTP", 404)), -1);
    EXPECT_EQ(getHTTPStatusCodeFromError(easyError(CURLE_HTTP_RETURNED_ERROR, "", 404)), -1);
}

TEST(HTTPStatusFromError, IsMinusOneWithoutAResponse) {
    EXPECT_EQ(getHTTPStatusCodeFromError(easyError(CURLE_HTTP_RETURNED_ERROR, "http", 0)), -1);
    EXPECT_EQ(getHTTPStatusCodeFromError(easyError(CURLE_COULDNT_CONNECT)), -1);
    EXPECT_EQ(getHTTPStatusCodeFromError(multiError(CURLM_BAD_HANDLE)), -1);
    EXPECT_EQ(getHTTPStatusCodeFromError(CError("It failed.")), -1);
    EXPECT_EQ(getHTTPStatusCodeFromError(plainError("s3", 404)), -1);
}

TEST(HTTPStatusFromError, PassesTheStatusOfOtherDomainsUnfiltered) {
    EXPECT_EQ(getHTTPStatusCodeFromError(multiError(CURLM_INTERNAL_ERROR, "http", 302)), 302);
    EXPECT_EQ(getHTTPStatusCodeFromError(multiError(CURLM_INTERNAL_ERROR, "http", 500)), 500);
    EXPECT_EQ(getHTTPStatusCodeFromError(plainError("", -1, "http", "200")), 200);
    EXPECT_EQ(getHTTPStatusCodeFromError(plainError("s3", 7, "http", "403")), 403);
    EXPECT_EQ(getHTTPStatusCodeFromError(plainError("s3", 7, "http", "-3")), -3);
}

TEST(HTTPStatusFromError, ReadsThePlainErrorLikeTheTransferError) {
    EXPECT_EQ(getHTTPStatusCodeFromError(plainError("curl", 22, "http", "302")), 302);
    EXPECT_EQ(getHTTPStatusCodeFromError(plainError("curl", 28, "http", "302")), -1);
    EXPECT_EQ(getHTTPStatusCodeFromError(plainError("curl", 28, "http", "404")), 404);
}

TEST(HTTPStatusFromError, RejectsAStatusThatIsNoInteger) {
    for (const char* const codeDomain : {"curl", "curlm", "s3", ""}) {
        try {
            getHTTPStatusCodeFromError(plainError(codeDomain, 22, "http", "not found"));
            ADD_FAILURE() << "took it for " << codeDomain;
        } catch (const CError& error) {
            EXPECT_EQ(error.getMessage(), "Invalid integer: 'not found'.");
        }
    }
    EXPECT_EQ(getHTTPStatusCodeFromError(plainError("curl", 22, "ftp", "not found")), -1);
}

TEST(NetworkOrServiceDown, MeansExactlyFourTransferCodes) {
    std::set<int> downCodes;
    for (int code = 0; code < CURL_LAST; ++code) {
        if (isNetworkOrServiceDownError(easyError(static_cast<CURLcode>(code)))) downCodes.insert(code);
    }
    EXPECT_EQ(downCodes, (std::set<int>{5, 6, 7, 35}));
}

TEST(NetworkOrServiceDown, CountsTheTransferCodesWhateverTheResponse) {
    EXPECT_TRUE(isNetworkOrServiceDownError(easyError(CURLE_COULDNT_CONNECT, "http", 200)));
    EXPECT_TRUE(isNetworkOrServiceDownError(easyError(CURLE_SSL_CONNECT_ERROR, "smtp", 220)));
}

TEST(NetworkOrServiceDown, CountsTheAnswersThatSayTheServiceIsDown) {
    EXPECT_TRUE(isNetworkOrServiceDownError(easyError(CURLE_HTTP_RETURNED_ERROR, "http", 503)));
    EXPECT_TRUE(isNetworkOrServiceDownError(easyError(CURLE_FTP_WEIRD_SERVER_REPLY, "ftp", 421)));
    EXPECT_TRUE(isNetworkOrServiceDownError(easyError(CURLE_OPERATION_TIMEDOUT, "http", 503)));
}

TEST(NetworkOrServiceDown, DoesNotCountAnyOtherAnswer) {
    for (const char* const domain : {"http", "ftp", "smtp", "HTTP", "FTP", ""}) {
        for (const int code : {0, 200, 404, 421, 500, 502, 503, 504, 530}) {
            const String name(domain);
            const bool isDown = (name == "http" && code == 503) || (name == "ftp" && code == 421);
            EXPECT_EQ(isNetworkOrServiceDownError(easyError(CURLE_HTTP_RETURNED_ERROR, name, code)), isDown)
                << domain << " " << code;
        }
    }
}

TEST(NetworkOrServiceDown, DoesNotCountTimeOuts) {
    EXPECT_FALSE(isNetworkOrServiceDownError(easyError(CURLE_OPERATION_TIMEDOUT)));
    EXPECT_FALSE(isNetworkOrServiceDownError(easyError(CURLE_OPERATION_TIMEDOUT, "http", 504)));
}

TEST(NetworkOrServiceDown, NeverCountsMultiErrors) {
    EXPECT_FALSE(isNetworkOrServiceDownError(multiError(CURLM_INTERNAL_ERROR, "http", 503)));
    EXPECT_FALSE(isNetworkOrServiceDownError(multiError(CURLM_UNKNOWN_OPTION, "ftp", 421)));
    EXPECT_FALSE(isNetworkOrServiceDownError(multiError(CURLM_BAD_SOCKET)));
    EXPECT_FALSE(isNetworkOrServiceDownError(plainError("curlm", 7)));
}

TEST(NetworkOrServiceDown, CountsOnlyTheExactCodeDomain) {
    for (const char* const domain : {"", "CURL", "curl ", "http", "s3"}) {
        EXPECT_FALSE(isNetworkOrServiceDownError(plainError(domain, 7))) << domain;
        EXPECT_FALSE(isNetworkOrServiceDownError(plainError(domain, 503, "http", "503"))) << domain;
    }
}

TEST(NetworkOrServiceDown, ReadsThePlainErrorLikeTheTransferError) {
    EXPECT_TRUE(isNetworkOrServiceDownError(plainError("curl", 7)));
    EXPECT_TRUE(isNetworkOrServiceDownError(plainError("curl", 22, "http", "503")));
    EXPECT_TRUE(isNetworkOrServiceDownError(plainError("curl", 22, "ftp", "421")));
    EXPECT_FALSE(isNetworkOrServiceDownError(plainError("curl", 22, "smtp", "421")));
}

TEST(NetworkOrServiceDown, IsFalseForAResponseCodeThatIsNoNumber) {
    EXPECT_FALSE(isNetworkOrServiceDownError(plainError("curl", 22, "http", "service unavailable")));
    EXPECT_FALSE(isNetworkOrServiceDownError(plainError("curl", 22, "ftp", "")));
    EXPECT_FALSE(isNetworkOrServiceDownError(plainError("curl", 22, "http", "503.5")));
}

TEST(NetworkOrServiceDown, DoesNotCountACodeBeyond32Bits) {
    EXPECT_FALSE(isNetworkOrServiceDownError(plainError("curl", (kel::int64{1} << 32) + 7)));
}

TEST(NetworkOrServiceDown, IsFalseForExceptionsOfOtherLibraries) {
    EXPECT_FALSE(isNetworkOrServiceDownError(std::runtime_error("curl")));
    EXPECT_FALSE(isNetworkOrServiceDownError(std::exception()));
}

} // namespace
