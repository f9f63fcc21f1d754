#include "vantra/CURLError.h"

#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <memory>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

namespace {

/// What was offered to CProps::addCond: whether it was to be added, and its key.
std::vector<std::pair<bool, kel::String>> offeredParams;

} // namespace

// CProps keeps its entries by name, so the order in which they are added shows only here. The reference that
// addCond returns is a pointer to C.
extern "C" kel::CProps* __real__ZN3kel6CProps7addCondEbRKNS_6StringES3_(kel::CProps* self, bool condition,
                                                                        const kel::String& key,
                                                                        const kel::String& value);
extern "C" kel::CProps* __wrap__ZN3kel6CProps7addCondEbRKNS_6StringES3_(kel::CProps* self, bool condition,
                                                                        const kel::String& key,
                                                                        const kel::String& value) {
    offeredParams.emplace_back(condition, key);
    return __real__ZN3kel6CProps7addCondEbRKNS_6StringES3_(self, condition, key, value);
}

namespace {

using kel::CError;
using kel::CProps;
using kel::P;
using kel::String;
using vantra::CCURLError;

using ParamMap = std::map<String, String>;

static_assert(std::is_base_of_v<CError, CCURLError>);
static_assert(std::is_base_of_v<std::exception, CCURLError>);
static_assert(std::is_base_of_v<kel::CBase, CCURLError>);
static_assert(std::is_convertible_v<CCURLError*, kel::IBase*>);

CCURLError makeFullError() {
    return {CURLE_HTTP_RETURNED_ERROR,
            "The requested URL returned error: 404",
            "http",
            404,
            "No such bucket",
            "HTTP/1.1 404 Not Found",
            "https://example.org/a",
            "GET"};
}

const ParamMap fullParams{{"responseCodeDomain", "http"},      {"responseCode", "404"},
                          {"serverMessage", "No such bucket"}, {"httpStatusLine", "HTTP/1.1 404 Not Found"},
                          {"url", "https://example.org/a"},    {"httpMethod", "GET"}};

void expectFullError(const CCURLError& error) {
    EXPECT_EQ(error.getMessage(), "HTTP response code said error: The requested URL returned error: 404"
                                  " (response code: http 404)");
    EXPECT_STREQ(error.what(), "HTTP response code said error: The requested URL returned error: 404"
                               " (response code: http 404)");
    EXPECT_EQ(error.getCodeDomain(), "curl");
    EXPECT_EQ(error.getCode(), 22);
    EXPECT_EQ(error.getParams().getMap(), fullParams);
    EXPECT_EQ(error.getCause().get(), nullptr);
    EXPECT_EQ(error.getResponseCode(), 404);
    EXPECT_EQ(error.getResponseCodeDomain(), "http");
    EXPECT_EQ(error.getServerMessage(), "No such bucket");
    EXPECT_EQ(error.getHTTPStatusLine(), "HTTP/1.1 404 Not Found");
    EXPECT_EQ(error.getURL(), "https://example.org/a");
    EXPECT_EQ(error.getHTTPMethod(), "GET");
}

TEST(CURLError, CarriesAllThatIsKnownOfAFailedTransfer) { expectFullError(makeFullError()); }

TEST(CURLError, CountsMultiCodesInADomainOfTheirOwn) {
    const CCURLError error(CURLM_BAD_HANDLE, "No transfer.", "ftp", 421, "Too many users", "", "ftp://h/",
                           "STOR");
    EXPECT_EQ(error.getMessage(),
              String(curl_multi_strerror(CURLM_BAD_HANDLE)) + ": No transfer. (response code: 421)");
    EXPECT_EQ(error.getCodeDomain(), "curlm");
    EXPECT_EQ(error.getCode(), 1);
    EXPECT_EQ(error.getParams().getMap(), (ParamMap{{"responseCodeDomain", "ftp"},
                                                    {"responseCode", "421"},
                                                    {"serverMessage", "Too many users"},
                                                    {"url", "ftp://h/"},
                                                    {"httpMethod", "STOR"}}));
    EXPECT_EQ(error.getCause().get(), nullptr);
    EXPECT_EQ(error.getResponseCode(), 421);
    EXPECT_EQ(error.getResponseCodeDomain(), "ftp");
    EXPECT_EQ(error.getServerMessage(), "Too many users");
    EXPECT_EQ(error.getHTTPStatusLine(), "");
    EXPECT_EQ(error.getURL(), "ftp://h/");
    EXPECT_EQ(error.getHTTPMethod(), "STOR");
}

TEST(CURLError, KeepsANegativeMultiCode) {
    const CCURLError error(CURLM_CALL_MULTI_PERFORM, "", "", 0, "", "", "", "");
    EXPECT_EQ(error.getCodeDomain(), "curlm");
    EXPECT_EQ(error.getCode(), -1);
}

TEST(CURLError, HasNoParametersWhenNothingIsKnown) {
    const CCURLError error(CURLE_COULDNT_CONNECT, "", "", 0, "", "", "", "");
    EXPECT_EQ(error.getMessage(), String(curl_easy_strerror(CURLE_COULDNT_CONNECT)));
    EXPECT_TRUE(error.getParams().isEmpty());
    EXPECT_EQ(error.getResponseCode(), 0);
    EXPECT_EQ(error.getResponseCodeDomain(), "");
}

TEST(CURLError, AddsEachParameterOnlyUnderItsOwnCondition) {
    const auto paramsOf = [](const String& domain, int code, const String& serverMessage,
                             const String& statusLine, const String& url, const String& method) {
        const CCURLError easy(CURLE_RECV_ERROR, "", domain, code, serverMessage, statusLine, url, method);
        const CCURLError multi(CURLM_INTERNAL_ERROR, "", domain, code, serverMessage, statusLine, url,
                               method);
        EXPECT_EQ(easy.getParams(), multi.getParams());
        return easy.getParams().getMap();
    };
    EXPECT_EQ(paramsOf("smtp", 0, "", "", "", ""), (ParamMap{{"responseCodeDomain", "smtp"}}));
    EXPECT_EQ(paramsOf("", 1, "", "", "", ""), (ParamMap{{"responseCode", "1"}}));
    EXPECT_EQ(paramsOf("", 0, "Busy", "", "", ""), (ParamMap{{"serverMessage", "Busy"}}));
    EXPECT_EQ(paramsOf("", 0, "", "HTTP/2 200", "", ""), (ParamMap{{"httpStatusLine", "HTTP/2 200"}}));
    EXPECT_EQ(paramsOf("", 0, "", "", "http://h/", ""), (ParamMap{{"url", "http://h/"}}));
    EXPECT_EQ(paramsOf("", 0, "", "", "", "PUT"), (ParamMap{{"httpMethod", "PUT"}}));
}

TEST(CURLError, AddsTheParametersInTheirDocumentedOrder) {
    offeredParams.clear();
    makeFullError();
    EXPECT_EQ(offeredParams, (std::vector<std::pair<bool, String>>{{true, "responseCodeDomain"},
                                                                   {true, "responseCode"},
                                                                   {true, "serverMessage"},
                                                                   {true, "httpStatusLine"},
                                                                   {true, "url"},
                                                                   {true, "httpMethod"}}));
    offeredParams.clear();
    const CCURLError multi(CURLM_OK, "", "", -1, "", "", "", "");
    EXPECT_EQ(offeredParams, (std::vector<std::pair<bool, String>>{{false, "responseCodeDomain"},
                                                                   {false, "responseCode"},
                                                                   {false, "serverMessage"},
                                                                   {false, "httpStatusLine"},
                                                                   {false, "url"},
                                                                   {false, "httpMethod"}}));
}

TEST(CURLError, WritesTheResponseCodeInDecimal) {
    const CCURLError error(CURLE_RECV_ERROR, "", "", INT_MAX, "", "", "", "");
    EXPECT_EQ(error.getParams().getMap(), (ParamMap{{"responseCode", "2147483647"}}));
}

TEST(CURLError, TakesNoResponseCodeFromZeroOrBelow) {
    for (const int code : {0, -1, INT_MIN}) {
        const CCURLError easy(CURLE_RECV_ERROR, "M", "http", code, "", "", "", "");
        EXPECT_EQ(easy.getMessage(), String(curl_easy_strerror(CURLE_RECV_ERROR)) + ": M");
        EXPECT_EQ(easy.getParams().getMap(), (ParamMap{{"responseCodeDomain", "http"}}));
        EXPECT_EQ(easy.getResponseCode(), code);
        const CCURLError multi(CURLM_OUT_OF_MEMORY, "M", "http", code, "", "", "", "");
        EXPECT_EQ(multi.getMessage(), String(curl_multi_strerror(CURLM_OUT_OF_MEMORY)) + ": M");
        EXPECT_EQ(multi.getParams().getMap(), (ParamMap{{"responseCodeDomain", "http"}}));
    }
}

TEST(CURLError, KeepsTextOutsideASCII) {
    const String text(L"Stra\u00DFe \u20AC \U0001F600");
    const CCURLError error(CURLE_RECV_ERROR, text, "http", 500, text, text, text, text);
    EXPECT_EQ(error.getMessage(),
              String(curl_easy_strerror(CURLE_RECV_ERROR)) + ": " + text + " (response code: http 500)");
    EXPECT_EQ(error.what(), error.getMessage().toUTF8());
    EXPECT_EQ(error.getParams().getMap(), (ParamMap{{"responseCodeDomain", "http"},
                                                    {"responseCode", "500"},
                                                    {"serverMessage", text},
                                                    {"httpStatusLine", text},
                                                    {"url", text},
                                                    {"httpMethod", text}}));
}

TEST(CURLError, CopiesItsBaseAndAllItsMembers) {
    auto original = std::make_unique<CCURLError>(makeFullError());
    const CCURLError copy(*original);
    CCURLError assigned(CURLM_BAD_HANDLE, "other", "ftp", 550, "a", "b", "c", "d");
    assigned = *original;
    original.reset();
    expectFullError(copy);
    expectFullError(assigned);
}

TEST(CURLError, ClonesItselfOntoTheHeap) {
    P<CError> clone;
    {
        const CCURLError error = makeFullError();
        const CError& base = error;
        clone = base.clone();
        EXPECT_NE(clone.get(), &base);
    }
    const CError& cloned = *clone;
    EXPECT_EQ(typeid(cloned), typeid(CCURLError));
    expectFullError(dynamic_cast<const CCURLError&>(cloned));
}

TEST(CURLError, ThrowsACloneOfItsOwnType) {
    const CCURLError error = makeFullError();
    const CError& base = error;
    try {
        base.throwClone();
    } catch (const CCURLError& thrown) {
        EXPECT_NE(&thrown, &error);
        EXPECT_EQ(typeid(thrown), typeid(CCURLError));
        expectFullError(thrown);
    }
}

TEST(CURLError, IsCaughtAsTheBaseLibrarysError) {
    try {
        throw makeFullError();
    } catch (const CError& error) {
        EXPECT_EQ(error.getCodeDomain(), "curl");
        EXPECT_EQ(error.getParams().getMap(), fullParams);
        expectFullError(dynamic_cast<const CCURLError&>(error));
    }
}

TEST(CURLError, IsCaughtAsAStandardException) {
    try {
        throw makeFullError();
    } catch (const std::exception& error) {
        expectFullError(dynamic_cast<const CCURLError&>(error));
    }
}

TEST(CURLError, ReadsTheResponseCodeFromParameters) {
    const auto codeOf = [](const String& value) {
        return CCURLError::getResponseCode(CProps().add("responseCode", value));
    };
    EXPECT_EQ(codeOf("404"), 404);
    EXPECT_EQ(codeOf("0"), 0);
    EXPECT_EQ(codeOf("-7"), -7);
    EXPECT_EQ(CCURLError::getResponseCode(makeFullError().getParams()), 404);
}

TEST(CURLError, ReadsAnAbsentOrEmptyResponseCodeAsMinusOne) {
    EXPECT_EQ(CCURLError::getResponseCode(CProps()), -1);
    EXPECT_EQ(CCURLError::getResponseCode(CProps().add("responseCode", "")), -1);
    EXPECT_EQ(CCURLError::getResponseCode(CProps().add("responsecode", "404")), -1);
}

TEST(CURLError, CutsALargeResponseCodeTo32Bits) {
    const auto codeOf = [](const String& value) {
        return CCURLError::getResponseCode(CProps().add("responseCode", value));
    };
    EXPECT_EQ(codeOf("4294967500"), 204);
    EXPECT_EQ(codeOf("2147483648"), INT_MIN);
    EXPECT_EQ(codeOf("9223372036854775807"), -1);
}

TEST(CURLError, RejectsAResponseCodeThatIsNoInteger) {
    for (const char* const value : {"abc", "404 ", " 404", "4.4", "-"}) {
        try {
            CCURLError::getResponseCode(CProps().add("responseCode", value));
            ADD_FAILURE() << "took '" << value << "'";
        } catch (const CError& error) {
            EXPECT_EQ(error.getMessage(), "Invalid integer: '" + String(value) + "'.");
            EXPECT_EQ(error.getCodeDomain(), "");
            EXPECT_EQ(error.getCode(), -1);
        }
    }
}

TEST(CURLError, ReadsTheResponseCodeDomainFromParameters) {
    EXPECT_EQ(CCURLError::getResponseCodeDomain(CProps().add("responseCodeDomain", "ftp")), "ftp");
    EXPECT_EQ(CCURLError::getResponseCodeDomain(CProps()), "");
    EXPECT_EQ(CCURLError::getResponseCodeDomain(makeFullError().getParams()), "http");
}

} // namespace
