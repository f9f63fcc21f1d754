#include "S3Doubles.h"

#include <kel/Buffer.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace vantra::test {

namespace {

using kel::CError;
using kel::TBuffer;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* notADocument =
    "error: S3 returned an error, but the response data is not a valid S3 error response. ";

TBuffer<unsigned char> toBuffer(const std::string& bytes) {
    return {reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()};
}

class S3Translation : public testing::Test {
protected:
    Thrown translate(std::exception& error, const std::string& response) {
        return thrownBy([&] { CS3Client::tryThrowBetterError(error, toBuffer(response)); });
    }

    CCURLError transferError_{CURLE_HTTP_RETURNED_ERROR, "", "http", 403, "", "", "", ""};
    S3Log log_;
};

TEST_F(S3Translation, GivesTheServicesErrorWithTheResponseCode) {
    const Thrown error = translate(transferError_, errorDocument("AccessDenied", "No."));
    EXPECT_EQ(error.type, "CS3Error");
    EXPECT_EQ(error.message, "Amazon S3 error: No.(AccessDenied)");
    EXPECT_EQ(error.codeDomain, "http");
    EXPECT_EQ(error.code, 403);
    EXPECT_EQ(error.params.at("responseCode"), "403");
    EXPECT_THAT(log_.getEntries(), IsEmpty());
}

TEST_F(S3Translation, TakesAnyFailureOfATransfer) {
    CCURLError brokenOff(CURLE_RECV_ERROR, "", "", -1, "", "", "", "");
    const Thrown error = translate(brokenOff, errorDocument("InternalError"));
    EXPECT_EQ(error.type, "CS3Error");
    EXPECT_EQ(error.code, -1);
    EXPECT_FALSE(error.params.contains("responseCode"));
}

TEST_F(S3Translation, LeavesAnEmptyResponseWithoutALogEntry) {
    EXPECT_EQ(translate(transferError_, ""), nothingThrown);
    EXPECT_THAT(log_.getEntries(), IsEmpty());
}

TEST_F(S3Translation, LeavesOtherErrorsAlone) {
    CError plain("m", "http", 403);
    std::runtime_error other("m");
    CS3Error translated(CS3ErrorResponse("a", "b", "c", "d"), 500);
    EXPECT_EQ(translate(plain, errorDocument("AccessDenied")), nothingThrown);
    EXPECT_EQ(translate(other, errorDocument("AccessDenied")), nothingThrown);
    EXPECT_EQ(translate(translated, "garbage"), nothingThrown);
    EXPECT_THAT(log_.getEntries(), IsEmpty());
}

TEST_F(S3Translation, LogsAResponseThatIsSomethingElse) {
    EXPECT_EQ(translate(transferError_, "<html><body>No & never</body></html>"), nothingThrown);
    EXPECT_EQ(translate(transferError_, "<Other/>"), nothingThrown);
    EXPECT_THAT(
        log_.getEntries(),
        ElementsAre(notADocument + std::string("<S3ResponseData>&lt;html&gt;&lt;body&gt;No &amp; never"
                                               "&lt;/body&gt;&lt;/html&gt;</S3ResponseData>"),
                    notADocument + std::string("<S3ResponseData>&lt;Other/&gt;</S3ResponseData>")));
}

TEST_F(S3Translation, LogsAResponseThatIsNoText) {
    EXPECT_EQ(translate(transferError_, "\xff\xfe\x00 binary"), nothingThrown);
    EXPECT_THAT(
        log_.getEntries(),
        ElementsAre("error: Error converting S3 response data to string object. [Invalid UTF-8 text.]",
                    notADocument + std::string("<S3ResponseData/>")));
}

TEST_F(S3Translation, LogsAResponseWithANULToItsEnd) {
    EXPECT_EQ(translate(transferError_, std::string("a\0b", 3)), nothingThrown);
    // XML has no way to write it.
    EXPECT_THAT(log_.getEntries(), ElementsAre(notADocument + std::string("<S3ResponseData>a\xEF\xBF\xBD"
                                                                          "b</S3ResponseData>")));
}

using S3RequestTranslation = S3Test;

TEST_F(S3RequestTranslation, OfHTMLLeavesTheTransfersOwnError) {
    const S3Log log;
    client_.prepareGetObjectRequest(*request_, "bucket", "key", 0, -1);
    answer({{403, "<html><body>Forbidden</body></html>", CURLE_OK, {"Content-Type: text/html"}}});
    EXPECT_EQ(thrownBy([&] { client_.performRequest(*request_); }),
              curlError(CURLE_HTTP_RETURNED_ERROR, "",
                        {{"responseCodeDomain", "http"},
                         {"responseCode", "403"},
                         {"serverMessage", "Forbidden"},
                         {"httpStatusLine", "HTTP/1.1 403 Reason"},
                         {"url", "https://s3.amazonaws.com/bucket/key"}}));
    EXPECT_THAT(log.getEntries(),
                ElementsAre(notADocument +
                            std::string("<S3ResponseData>&lt;html&gt;&lt;body&gt;Forbidden&lt;/body&gt;&lt;"
                                        "/html&gt;</S3ResponseData>")));
    EXPECT_EQ(getTransfers().size(), 1U);
}

} // namespace

} // namespace vantra::test
