#include "S3Doubles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace vantra::test {

namespace {

using kel::P;
using testing::ElementsAre;
using testing::IsEmpty;

using S3Operations = S3Test;

const std::string objectURL = "https://s3.amazonaws.com/bucket/key";

/// The error of an HTTP status without a body.
Thrown statusError(int status, const std::string& method) {
    return curlError(CURLE_HTTP_RETURNED_ERROR, "",
                     {{"responseCodeDomain", "http"},
                      {"responseCode", std::to_string(status)},
                      {"httpStatusLine", "HTTP/1.1 " + std::to_string(status) + " Reason"},
                      {"url", objectURL},
                      {"httpMethod", method}});
}

/// The error of an error document.
Thrown refusal(const std::string& code, int status) {
    return {"CS3Error",
            "Amazon S3 error: A message(" + code + ")",
            "http",
            status,
            {{"s3-resource", "/bucket/key"},
             {"s3-requestID", "4442587FB7D0A2F9"},
             {"s3-code", code},
             {"responseCode", std::to_string(status)}},
            code};
}

TEST_F(S3Operations, PutGetHeadAndDeletePerformOneTransferEach) {
    answer({{200, "body"}});
    client_.putObject(*request_, "bucket", "key", "hello", 5, "");
    client_.getObject(*request_, "bucket", "key", 0, -1);
    EXPECT_EQ(getBody(*request_), "body");
    client_.deleteObject(*request_, "bucket", "key");
    answer({{200, "", CURLE_OK, {"Content-Length: 5", "ETag: \"x\""}}});
    EXPECT_EQ(plain(client_.getObjectHeaders(*request_, "bucket", "key")),
              (std::map<std::string, std::string>{{"content-length", "5"}, {"etag", "\"x\""}}));
    EXPECT_THAT(getTransfers(),
                ElementsAre("PUT " + objectURL, " " + objectURL, "DELETE " + objectURL, "HEAD " + objectURL));
}

TEST_F(S3Operations, RetryWhatMayPass) {
    answer({{500}, {200, "body"}});
    client_.getObject(*request_, "bucket", "key", 0, -1);
    EXPECT_EQ(getBody(*request_), "body");
    EXPECT_THAT(getPauses(), ElementsAre(100));
}

TEST_F(S3Operations, ThrowWhatTheServiceSays) {
    answer({{403, errorDocument("AccessDenied")}});
    EXPECT_EQ(thrownBy([&] { client_.putObject(*request_, "bucket", "key", "", 0, ""); }),
              refusal("AccessDenied", 403));
    EXPECT_EQ(thrownBy([&] { client_.getObject(*request_, "bucket", "key", 0, -1); }),
              refusal("AccessDenied", 403));
    EXPECT_EQ(thrownBy([&] { client_.deleteObject(*request_, "bucket", "key"); }),
              refusal("AccessDenied", 403));
    EXPECT_EQ(thrownBy([&] { (void)client_.listObjects(*request_, "bucket", "", "", "", -1); }),
              refusal("AccessDenied", 403));
}

TEST_F(S3Operations, GiveTheSizeThatTheHeadersTell) {
    answer({{200, "", CURLE_OK, {"Content-Length: 9223372036854775807"}}});
    EXPECT_EQ(client_.getObjectSize(*request_, "bucket", "key"), INT64_MAX);
    answer({{200, "", CURLE_OK, {"content-length: 0"}}});
    EXPECT_EQ(client_.getObjectSize(*request_, "bucket", "key"), 0);
}

TEST_F(S3Operations, FailWithoutASizeInTheHeaders) {
    answer({{200}});
    EXPECT_EQ(thrownBy([&] { (void)client_.getObjectSize(*request_, "bucket", "key"); }),
              plainError("Error: Content-Length header was expected but not included in response."));
    answer({{200, "", CURLE_OK, {"Content-Length: many"}}});
    EXPECT_EQ(thrownBy([&] { (void)client_.getObjectSize(*request_, "bucket", "key"); }),
              plainError("Invalid integer: 'many'."));
    answer({{404}});
    EXPECT_EQ(thrownBy([&] { (void)client_.getObjectSize(*request_, "bucket", "key"); }),
              statusError(404, "HEAD"));
}

TEST_F(S3Operations, SayWhetherAnObjectExists) {
    answer({{200}});
    EXPECT_TRUE(client_.objectExists(*request_, "bucket", "key"));
    answer({{404}});
    EXPECT_FALSE(client_.objectExists(*request_, "bucket", "key"));
    answer({{404, errorDocument("NoSuchKey")}});
    EXPECT_FALSE(client_.objectExists(*request_, "bucket", "key"));
    answer({{404, errorDocument("AnyCode")}});
    EXPECT_FALSE(client_.objectExists(*request_, "bucket", "key"));
    answer({{500}, {404}});
    EXPECT_FALSE(client_.objectExists(*request_, "bucket", "key"));
    EXPECT_THAT(getTransfers(), testing::Each("HEAD " + objectURL));
}

TEST_F(S3Operations, DoNotKnowWhetherAnObjectExistsAfterAnyOtherFailure) {
    answer({{403}});
    EXPECT_EQ(thrownBy([&] { (void)client_.objectExists(*request_, "bucket", "key"); }),
              statusError(403, "HEAD"));
    answer({{403, errorDocument("NoSuchKey")}});
    EXPECT_EQ(thrownBy([&] { (void)client_.objectExists(*request_, "bucket", "key"); }),
              refusal("NoSuchKey", 403));
    answer({{0, "", CURLE_COULDNT_RESOLVE_HOST}});
    EXPECT_EQ(thrownBy([&] { (void)client_.objectExists(*request_, "bucket", "key"); }).code,
              CURLE_COULDNT_RESOLVE_HOST);
}

TEST_F(S3Operations, CopyOnceAndReadTheAnswer) {
    answer({{200, "<CopyObjectResult><ETag>e</ETag></CopyObjectResult>"}});
    client_.copyObject(*request_, "bucket", "old", "key");
    answer({{200, errorDocument("InternalError")}});
    Thrown expected = refusal("InternalError", 0);
    expected.params.erase("responseCode");
    EXPECT_EQ(thrownBy([&] { client_.copyObject(*request_, "bucket", "old", "key"); }), expected);
    answer({{200, "<Other/>"}});
    EXPECT_EQ(thrownBy([&] { client_.copyObject(*request_, "bucket", "old", "key"); }),
              plainError("Error parsing Amazon S3 'copy object' result: unknown root element 'Other'."));
    EXPECT_THAT(getTransfers(), ElementsAre("PUT " + objectURL, "PUT " + objectURL, "PUT " + objectURL));
    EXPECT_THAT(getPauses(), IsEmpty());
}

TEST_F(S3Operations, CopyWithoutRetryAndTranslation) {
    answer({{503, errorDocument("SlowDown")}});
    const Thrown error = thrownBy([&] { client_.copyObject(*request_, "bucket", "old", "key"); });
    EXPECT_EQ(error.type, "CCURLError");
    EXPECT_EQ(error.code, CURLE_HTTP_RETURNED_ERROR);
    EXPECT_EQ(error.params.at("responseCode"), "503");
    EXPECT_EQ(getTransfers().size(), 1U);
}

TEST_F(S3Operations, GiveThePageThatTheServiceLists) {
    answer({{200, listing({"a", "b"}, true)}});
    const P<CS3ListObjectsResult> page = client_.listObjects(*request_, "bucket", "p", "/", "m", 2);
    EXPECT_TRUE(page->isTruncated());
    EXPECT_EQ(page->getObjects()[1]->getKey(), "b");
    EXPECT_THAT(getTransfers(), ElementsAre(" https://s3.amazonaws.com/bucket?prefix=p&marker=m&max-keys=2"
                                            "&delimiter=%2F"));
    answer({{200, "not a listing"}});
    EXPECT_EQ(thrownBy([&] { (void)client_.listObjects(*request_, "bucket", "", "", "", -1); }),
              plainError("Error parsing Amazon S3 'list objects' result: invalid XML."));
}

TEST_F(S3Operations, RefuseEmptyNamesWithoutATransfer) {
    const auto argumentError = [](const std::function<void()>& function) { return thrownBy(function).type; };
    EXPECT_EQ(argumentError([&] { client_.putObject(*request_, "", "k", "", 0, ""); }), "CInvalidArgError");
    EXPECT_EQ(argumentError([&] { client_.getObject(*request_, "b", "", 0, -1); }), "CInvalidArgError");
    EXPECT_EQ(argumentError([&] { client_.getObjectHeaders(*request_, "b", ""); }), "CInvalidArgError");
    EXPECT_EQ(argumentError([&] { (void)client_.getObjectSize(*request_, "", "k"); }), "CInvalidArgError");
    EXPECT_EQ(argumentError([&] { (void)client_.objectExists(*request_, "b", ""); }), "CInvalidArgError");
    EXPECT_EQ(argumentError([&] { client_.copyObject(*request_, "b", "", "n"); }), "CInvalidArgError");
    EXPECT_EQ(argumentError([&] { client_.deleteObject(*request_, "b", ""); }), "CInvalidArgError");
    EXPECT_EQ(argumentError([&] { (void)client_.listObjects(*request_, "", "", "", "", -1); }),
              "CInvalidArgError");
    EXPECT_THAT(getTransfers(), IsEmpty());
}

} // namespace

} // namespace vantra::test
