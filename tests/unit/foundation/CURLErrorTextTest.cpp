#include "vantra/CURLError.h"

#include <gtest/gtest.h>

namespace {

bool strerrorKnowsNothing = false;

} // namespace

extern "C" const char* __real_curl_easy_strerror(CURLcode code);
extern "C" const char* __wrap_curl_easy_strerror(CURLcode code) {
    return strerrorKnowsNothing ? nullptr : __real_curl_easy_strerror(code);
}
extern "C" const char* __real_curl_multi_strerror(CURLMcode code);
extern "C" const char* __wrap_curl_multi_strerror(CURLMcode code) {
    return strerrorKnowsNothing ? nullptr : __real_curl_multi_strerror(code);
}

namespace {

using kel::String;
using vantra::CCURLError;

/// Makes libcurl have no text for any code.
class NoTexts {
public:
    NoTexts() { strerrorKnowsNothing = true; }
    NoTexts(const NoTexts&) = delete;
    NoTexts& operator=(const NoTexts&) = delete;
    ~NoTexts() { strerrorKnowsNothing = false; }
};

TEST(CURLErrorText, IsLibcurlsTextForEveryEasyCode) {
    for (int code = 0; code <= CURL_LAST; ++code) {
        const auto easyCode = static_cast<CURLcode>(code);
        EXPECT_EQ(CCURLError::makeErrorText(easyCode, "", "http", 0), String(curl_easy_strerror(easyCode)));
    }
}

TEST(CURLErrorText, IsLibcurlsTextForEveryMultiCode) {
    for (int code = -1; code <= CURLM_LAST; ++code) {
        const auto multiCode = static_cast<CURLMcode>(code);
        EXPECT_EQ(CCURLError::makeErrorText(multiCode, "", 0), String(curl_multi_strerror(multiCode)));
    }
}

TEST(CURLErrorText, JoinsTextMessageAndResponse) {
    EXPECT_EQ(CCURLError::makeErrorText(CURLE_HTTP_RETURNED_ERROR, "M", "http", 404),
              "HTTP response code said error: M (response code: http 404)");
    EXPECT_EQ(CCURLError::makeErrorText(CURLM_BAD_HANDLE, "M", 404),
              "Invalid multi handle: M (response code: 404)");
}

TEST(CURLErrorText, LeavesOutAnEmptyMessage) {
    EXPECT_EQ(CCURLError::makeErrorText(CURLE_HTTP_RETURNED_ERROR, "", "http", 404),
              "HTTP response code said error (response code: http 404)");
    EXPECT_EQ(CCURLError::makeErrorText(CURLM_BAD_HANDLE, "", 404),
              "Invalid multi handle (response code: 404)");
}

TEST(CURLErrorText, LeavesOutAResponseCodeOfZeroOrBelow) {
    for (const int code : {0, -1, -404}) {
        EXPECT_EQ(CCURLError::makeErrorText(CURLE_HTTP_RETURNED_ERROR, "M", "http", code),
                  "HTTP response code said error: M");
        EXPECT_EQ(CCURLError::makeErrorText(CURLM_BAD_HANDLE, "M", code), "Invalid multi handle: M");
    }
}

TEST(CURLErrorText, ShowsEveryPositiveResponseCode) {
    EXPECT_EQ(CCURLError::makeErrorText(CURLE_HTTP_RETURNED_ERROR, "", "smtp", 1),
              "HTTP response code said error (response code: smtp 1)");
    EXPECT_EQ(CCURLError::makeErrorText(CURLM_BAD_HANDLE, "", 2147483647),
              "Invalid multi handle (response code: 2147483647)");
}

TEST(CURLErrorText, HasTwoBlanksWhereTheResponseCodeDomainIsEmpty) {
    EXPECT_EQ(CCURLError::makeErrorText(CURLE_HTTP_RETURNED_ERROR, "M", "", 404),
              "HTTP response code said error: M (response code:  404)");
    const CCURLError error(CURLE_HTTP_RETURNED_ERROR, "M", "", 404, "", "", "", "");
    EXPECT_EQ(error.getMessage(), "HTTP response code said error: M (response code:  404)");
    EXPECT_FALSE(error.getParams().contains("responseCodeDomain"));
    EXPECT_EQ(error.getParams().lookup("responseCode"), "404");
}

TEST(CURLErrorText, NamesAnEasyCodeThatLibcurlHasNoTextFor) {
    const NoTexts noTexts;
    EXPECT_EQ(CCURLError::makeErrorText(CURLE_OK, "", "", 0), "invalid CURL easy error code");
    EXPECT_EQ(CCURLError::makeErrorText(CURL_LAST, "M", "ftp", 550),
              "invalid CURL easy error code: M (response code: ftp 550)");
    EXPECT_EQ(CCURLError(CURL_LAST, "", "", 0, "", "", "", "").getMessage(), "invalid CURL easy error code");
}

TEST(CURLErrorText, NamesAMultiCodeThatLibcurlHasNoTextFor) {
    const NoTexts noTexts;
    EXPECT_EQ(CCURLError::makeErrorText(CURLM_OK, "", 0), "invalid CURL multi error code");
    EXPECT_EQ(CCURLError::makeErrorText(CURLM_LAST, "M", 550),
              "invalid CURL multi error code: M (response code: 550)");
    EXPECT_EQ(CCURLError(CURLM_LAST, "", "", 0, "", "", "", "").getMessage(),
              "invalid CURL multi error code");
}

} // namespace
