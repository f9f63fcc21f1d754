#include "ObjectStore.h"

#include "LogCapture.h"

#include "support/ScriptedServer.h"

#include <kel/Thread.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using kel::String;
using testing::ElementsAre;
using testing::IsEmpty;
using testsupport::HttpRequest;
using testsupport::okResponse;
using testsupport::Script;
using testsupport::ScriptedServer;
using vantra::CS3Client;

namespace {

/// A client of a service that gives one answer.
class S3ServiceAnswer : public testing::Test {
protected:
    S3ServiceAnswer() {
        client_->setEndpoint(String(server_.url()));
        client_->setMaxRetries(0);
    }

    void TearDown() override {
        request_ = nullptr;
        EXPECT_THAT(server_.finish(), IsEmpty());
    }

    void answer(const std::string& bytes) { server_.play(Script().expectRequest().send(bytes)); }

    [[nodiscard]] std::string messageOfList() {
        return messageOf([&] { (void)client_->listObjects(*request_, "bucket", "", "", "", -1); });
    }

    [[nodiscard]] HttpRequest onlyRequest() const { return server_.requests().at(0); }

    ScriptedServer server_;
    kel::P<CS3Client> client_ = new CS3Client("id", "secret", false);
    kel::P<vantra::CNetRequest> request_ = new vantra::CNetRequest();
};

TEST_F(S3ServiceAnswer, ToAPutSeesDigestTypeAndSignature) {
    answer(okResponse(""));
    client_->putObject(*request_, "bucket", "dir/file name", "hello", 5, "text/plain");
    const HttpRequest request = onlyRequest();
    EXPECT_EQ(request.startLine, "PUT /bucket/dir%2Ffile%20name HTTP/1.1");
    EXPECT_EQ(request.header("Content-MD5"), "XUFAKrxLKna5cZ2REBfFkg==");
    EXPECT_EQ(request.header("Content-Type"), "text/plain");
    EXPECT_EQ(request.header("Content-Length"), "5");
    EXPECT_EQ(request.body, "hello");
    EXPECT_THAT(*request.header("Date"), testing::MatchesRegex("..., .. ... .... ..:..:.. GMT"));
    EXPECT_THAT(*request.header("Authorization"),
                testing::MatchesRegex("AWS id:" + std::string(27, '.') + "="));
}

TEST_F(S3ServiceAnswer, ToAnEmptyPutSeesALengthOfNothing) {
    answer(okResponse(""));
    client_->putObject(*request_, "bucket", "key", nullptr, 0, "");
    EXPECT_EQ(onlyRequest().header("Content-Length"), "0");
    EXPECT_EQ(onlyRequest().header("Content-MD5"), "1B2M2Y8AsgTpgAmY7PhCfg==");
    EXPECT_EQ(onlyRequest().header("Content-Type"), std::nullopt);
}

TEST_F(S3ServiceAnswer, ToARangedGetSeesTheRange) {
    answer("HTTP/1.1 206 Partial Content\r\nContent-Length: 2\r\n\r\nab");
    client_->getObject(*request_, "bucket", "key", 100, 50);
    EXPECT_EQ(onlyRequest().startLine, "GET /bucket/key HTTP/1.1");
    EXPECT_EQ(onlyRequest().header("Range"), "bytes=100-149");
}

TEST_F(S3ServiceAnswer, ToAGetOfNothingSeesAHead) {
    answer("HTTP/1.1 200 OK\r\nContent-Length: 7\r\n\r\n");
    client_->getObject(*request_, "bucket", "key", 5, 0);
    EXPECT_EQ(onlyRequest().startLine, "HEAD /bucket/key HTTP/1.1");
    EXPECT_EQ(onlyRequest().header("Range"), std::nullopt);
}

TEST_F(S3ServiceAnswer, ToACopySeesTheSourceAndNoBody) {
    answer(okResponse("<CopyObjectResult/>"));
    client_->copyObject(*request_, "bucket", "old/key", "new");
    EXPECT_EQ(onlyRequest().startLine, "PUT /bucket/new HTTP/1.1");
    EXPECT_EQ(onlyRequest().header("x-amz-copy-source"), "/bucket/old%2Fkey");
    EXPECT_EQ(onlyRequest().header("Content-Length"), "0");
}

TEST_F(S3ServiceAnswer, ToAListSeesTheQuery) {
    answer(okResponse("<ListBucketResult/>"));
    (void)client_->listObjects(*request_, "bucket", "p/", "/", "m", 5);
    EXPECT_EQ(onlyRequest().startLine, "GET /bucket?prefix=p%2F&marker=m&max-keys=5&delimiter=%2F HTTP/1.1");
}

TEST_F(S3ServiceAnswer, SeesNamesOfDotsAsTheyAre) {
    server_.play(Script()
                     .expectRequest()
                     .send("HTTP/1.1 204 No Content\r\n\r\n")
                     .expectRequest()
                     .send("HTTP/1.1 204 No Content\r\n\r\n"));
    client_->deleteObject(*request_, "bucket", "..");
    client_->deleteObject(*request_, "bucket", ".");
    EXPECT_EQ(server_.requests().at(0).startLine, "DELETE /bucket/.. HTTP/1.1");
    EXPECT_EQ(server_.requests().at(1).startLine, "DELETE /bucket/. HTTP/1.1");
}

TEST_F(S3ServiceAnswer, ToACopyMayBeAnErrorInSpiteOfItsStatus) {
    answer(okResponse("<Error><Code>InternalError</Code><Message>We failed.</Message></Error>"));
    const Refusal refusal = refusalOf([&] { client_->copyObject(*request_, "bucket", "old", "new"); });
    EXPECT_EQ(refusal.code, "InternalError");
    EXPECT_EQ(refusal.message, "Amazon S3 error: We failed.(InternalError)");
    EXPECT_EQ(refusal.status, 0);
}

TEST_F(S3ServiceAnswer, ToACopyIsReadWhenItComesLate) {
    // The service keeps the connection alive with blanks before the document.
    answer(okResponse("<?xml version=\"1.0\"?>\n   \n<CopyObjectResult><ETag>e</ETag></CopyObjectResult>"));
    client_->copyObject(*request_, "bucket", "old", "new");
}

TEST_F(S3ServiceAnswer, OfHTMLIsTheTransfersError) {
    const CLogCapture log;
    answer("HTTP/1.1 403 Forbidden\r\nContent-Type: text/html\r\nContent-Length: 22\r\n\r\n"
           "<html>Forbidden</html>");
    EXPECT_EQ(messageOfList(), "HTTP response code said error (response code: http 403)");
    EXPECT_THAT(log.getLines(), ElementsAre("error: S3 returned an error, but the response data is not a "
                                            "valid S3 error response."));
}

TEST_F(S3ServiceAnswer, ThatIsNoListingIsAnError) {
    answer(okResponse("this is no XML"));
    EXPECT_EQ(messageOfList(), "Error parsing Amazon S3 'list objects' result: invalid XML.");
}

TEST_F(S3ServiceAnswer, OfAnotherKindIsAnError) {
    answer(okResponse("<html/>"));
    EXPECT_EQ(messageOfList(),
              "Error parsing Amazon S3 'list objects' result: root element is not ListBucketResult.");
}

TEST_F(S3ServiceAnswer, ThatIsCutShortIsAnError) {
    answer(okResponse("<ListBucketResult><Contents><Key>a</Key></Contents>"));
    EXPECT_EQ(messageOfList(), "Error parsing Amazon S3 'list objects' result: invalid XML.");
}

TEST_F(S3ServiceAnswer, MayHaveNoDocumentAtAll) {
    answer(okResponse(""));
    EXPECT_EQ(messageOfList(), "Error parsing Amazon S3 'list objects' result: invalid XML.");
}

} // namespace
