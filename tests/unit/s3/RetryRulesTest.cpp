#include "S3Doubles.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>

namespace vantra::test {

namespace {

using kel::CError;
using kel::CProps;
using kel::String;

CS3Error s3Error(const std::string& code, int status) {
    return {CS3ErrorResponse(String(code), "m", "r", "i"), status};
}

CCURLError transferError(CURLcode code, int responseCode) {
    return {code, "", responseCode > 0 ? "http" : "", responseCode, "", "", "", ""};
}

std::string codesOf(const std::exception& error) {
    String s3Code = "before";
    String httpCode = "before";
    CS3Client::extractErrorCodes(error, s3Code, httpCode);
    return (s3Code + "/" + httpCode).toUTF8();
}

TEST(S3ErrorCodes, AreTheServicesAndTheResponseCode) {
    EXPECT_EQ(codesOf(s3Error("SlowDown", 503)), "SlowDown/503");
    EXPECT_EQ(codesOf(s3Error("InternalError", 0)), "InternalError/");
    EXPECT_EQ(codesOf(s3Error("", 500)), "/500");
    EXPECT_EQ(codesOf(transferError(CURLE_HTTP_RETURNED_ERROR, 404)), "/404");
    EXPECT_EQ(codesOf(transferError(CURLE_COULDNT_CONNECT, 0)), "/");
    EXPECT_EQ(codesOf(CError("m", "own", 7, CProps().add("responseCode", "x"))), "/x");
    EXPECT_EQ(codesOf(CError("m", "http", 404)), "/");
    EXPECT_EQ(codesOf(std::runtime_error("m")), "/");
}

TEST(S3RetryRules, RetryTheServicesPassingCodesWhateverTheStatus) {
    for (const char* code : {"InternalError", "SlowDown", "IncompleteBody", "InvalidDigest",
                             "OperationAborted", "RequestTimeTooSkewed"}) {
        for (const int status : {0, 200, 403, 404, 500})
            EXPECT_TRUE(CS3Client::shouldRetryRequest(s3Error(code, status))) << code << ' ' << status;
    }
}

TEST(S3RetryRules, RetryNoOtherCodeOfTheService) {
    for (const char* code :
         {"internalerror", "SLOWDOWN", "Slow Down", "NoSuchKey", "NoSuchBucket", "AccessDenied", "BadDigest",
          "SignatureDoesNotMatch", "ServiceUnavailable", "RequestTimeout", "InternalError "}) {
        for (const int status : {0, 400, 409, 500, 503})
            EXPECT_FALSE(CS3Client::shouldRetryRequest(s3Error(code, status))) << code << ' ' << status;
    }
}

TEST(S3RetryRules, JudgeAnErrorWithoutCodeByItsStatus) {
    const std::set<int> passing = {400, 409, 500, 503};
    for (int status = 1; status <= 599; ++status) {
        EXPECT_EQ(CS3Client::shouldRetryRequest(transferError(CURLE_HTTP_RETURNED_ERROR, status)),
                  passing.contains(status))
            << status;
        EXPECT_EQ(CS3Client::shouldRetryRequest(s3Error("", status)), passing.contains(status)) << status;
        // The status counts before libcurl's code, which would be one to retry.
        EXPECT_EQ(CS3Client::shouldRetryRequest(transferError(CURLE_RECV_ERROR, status)),
                  passing.contains(status))
            << status;
    }
}

TEST(S3RetryRules, JudgeATransferWithoutStatusByLibcurlsCode) {
    const std::set<int> passing = {7, 28, 52, 55, 56};
    for (int code = 0; code < CURL_LAST; ++code)
        EXPECT_EQ(CS3Client::shouldRetryRequest(transferError(static_cast<CURLcode>(code), 0)),
                  passing.contains(code))
            << code;
}

TEST(S3RetryRules, RetryNothingElse) {
    EXPECT_FALSE(CS3Client::shouldRetryRequest(CError("m", "curl", CURLE_COULDNT_CONNECT)));
    EXPECT_FALSE(
        CS3Client::shouldRetryRequest(CCURLError(static_cast<CURLMcode>(7), "", "", 0, "", "", "", "")));
    EXPECT_FALSE(CS3Client::shouldRetryRequest(CError("m")));
    EXPECT_FALSE(CS3Client::shouldRetryRequest(std::runtime_error("m")));
    EXPECT_TRUE(CS3Client::shouldRetryRequest(CError("m", "", -1, CProps().add("responseCode", "500"))));
}

TEST(S3SlowDown, IsTheServicesCodeOrA503WithoutOne) {
    EXPECT_TRUE(CS3Client::shouldSlowDown(s3Error("SlowDown", 503)));
    EXPECT_TRUE(CS3Client::shouldSlowDown(s3Error("SlowDown", 0)));
    EXPECT_TRUE(CS3Client::shouldSlowDown(transferError(CURLE_HTTP_RETURNED_ERROR, 503)));
    EXPECT_FALSE(CS3Client::shouldSlowDown(s3Error("InternalError", 503)));
    EXPECT_FALSE(CS3Client::shouldSlowDown(s3Error("slowdown", 503)));
    EXPECT_FALSE(CS3Client::shouldSlowDown(transferError(CURLE_HTTP_RETURNED_ERROR, 500)));
    EXPECT_FALSE(CS3Client::shouldSlowDown(std::runtime_error("503")));
}

TEST(S3NotFound, IsAStatusOrOneOfTwoCodes) {
    EXPECT_TRUE(CS3Client::isNotFoundError(transferError(CURLE_HTTP_RETURNED_ERROR, 404)));
    EXPECT_TRUE(CS3Client::isNotFoundError(s3Error("AnyCode", 404)));
    EXPECT_TRUE(CS3Client::isNotFoundError(s3Error("NoSuchKey", 0)));
    EXPECT_TRUE(CS3Client::isNotFoundError(s3Error("NoSuchBucket", 403)));
    EXPECT_TRUE(CS3Client::isNotFoundError(*CS3Error::createObjectNotFoundError("r")));
    EXPECT_FALSE(CS3Client::isNotFoundError(s3Error("nosuchkey", 403)));
    EXPECT_FALSE(CS3Client::isNotFoundError(transferError(CURLE_HTTP_RETURNED_ERROR, 410)));
    EXPECT_FALSE(CS3Client::isNotFoundError(CError("m", "http", 404)));
    EXPECT_FALSE(CS3Client::isNotFoundError(std::runtime_error("404")));
}

} // namespace

} // namespace vantra::test
