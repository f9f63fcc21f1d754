#include "ObjectStore.h"

#include "LogCapture.h"

#include "support/Ports.h"
#include "support/ResetConnection.h"
#include "support/ScriptedServer.h"

#include <kel/Thread.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using kel::CTimeSpan;
using kel::String;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testsupport::Script;
using testsupport::ScriptedServer;
using vantra::CS3Client;

namespace {

std::vector<int> pauses;

std::string response(int status, const std::string& body = "") {
    return "HTTP/1.1 " + std::to_string(status) +
           " Reason\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string document(const std::string& code) {
    return "<?xml version=\"1.0\"?><Error><Code>" + code + "</Code><Message>M</Message></Error>";
}

std::string statusText(int status) {
    return "HTTP response code said error (response code: http " + std::to_string(status) + ")";
}

/// A client whose service plays scripts, whose pauses take no time, and whose log is kept.
class S3Retry : public testing::Test {
protected:
    S3Retry() {
        pauses.clear();
        kel::CThread::setSleepFunction([](int milliseconds) { pauses.push_back(milliseconds); });
        client_->setEndpoint(String(server_.url()));
        client_->prepareGetObjectRequest(*request_, "bucket", "key", 0, -1);
    }

    ~S3Retry() override { kel::CThread::setSleepFunction(nullptr); }

    void TearDown() override {
        request_ = nullptr; // closes its connections, which the scripts wait for
        EXPECT_THAT(server_.finish(), IsEmpty());
    }

    /// Lets the service give these responses on one connection.
    void answer(const std::vector<std::string>& responses) {
        Script script;
        for (const std::string& bytes : responses) script.expectRequest().send(bytes);
        server_.play(script);
    }

    int perform() { return client_->performRequest(*request_); }

    ScriptedServer server_;
    CLogCapture log_;
    kel::P<CS3Client> client_ = new CS3Client("id", "secret", false);
    kel::P<vantra::CNetRequest> request_ = new vantra::CNetRequest();
};

TEST_F(S3Retry, IsDoneForEachPassingCodeOfTheService) {
    const std::vector<std::string> codes = {"InternalError", "SlowDown",         "IncompleteBody",
                                            "InvalidDigest", "OperationAborted", "RequestTimeTooSkewed"};
    std::vector<std::string> responses;
    std::vector<std::string> expected;
    for (std::size_t i = 0; i < codes.size(); ++i) {
        responses.push_back(response(i % 2 == 0 ? 400 : 503, document(codes[i])));
        if (codes[i] == "SlowDown")
            expected.push_back("warning: Received slowdown response from S3: Amazon S3 error: M(SlowDown)");
        expected.push_back("info: Received " + codes[i] + " response from S3 (try " + std::to_string(i + 1) +
                           "). Waiting 100ms and retrying.");
    }
    responses.push_back(response(200, "body"));
    answer(responses);
    EXPECT_EQ(perform(), 7);
    EXPECT_EQ(getBody(*request_), "body");
    EXPECT_EQ(log_.getLines(), expected);
    EXPECT_EQ(pauses, std::vector<int>(6, 100));
}

TEST_F(S3Retry, IsNotDoneForOtherCodesOfTheService) {
    answer({response(500, document("NotImplemented")), response(503, document("ServiceUnavailable")),
            response(400, document("BadDigest")), response(409, document("BucketNotEmpty")),
            response(404, document("NoSuchKey"))});
    for (const char* code :
         {"NotImplemented", "ServiceUnavailable", "BadDigest", "BucketNotEmpty", "NoSuchKey"})
        EXPECT_EQ(refusalOf([&] { perform(); }).code, code);
    EXPECT_THAT(log_.getLines(), IsEmpty());
    EXPECT_THAT(pauses, IsEmpty());
}

TEST_F(S3Retry, IsDoneForEachPassingStatus) {
    answer({response(500), response(503), response(400), response(409), response(204)});
    EXPECT_EQ(perform(), 5);
    const auto retried = [](int status, int attempt) {
        return "info: Got error during S3 request: " + statusText(status) + " (try " +
               std::to_string(attempt) + "). Waiting 100ms and retrying.";
    };
    EXPECT_THAT(log_.getLines(),
                ElementsAre(retried(500, 1),
                            "warning: Received slowdown response from S3: " + statusText(503),
                            retried(503, 2), retried(400, 3), retried(409, 4)));
    EXPECT_EQ(pauses, std::vector<int>(4, 100));
}

TEST_F(S3Retry, IsNotDoneForOtherStatuses) {
    const std::vector<int> statuses = {401, 403, 404, 405, 408, 411, 412, 416, 429, 501, 502, 504};
    std::vector<std::string> responses;
    for (const int status : statuses) responses.push_back(response(status));
    answer(responses);
    for (const int status : statuses) {
        EXPECT_EQ(transferErrorOf([&] { perform(); }), CURLE_HTTP_RETURNED_ERROR);
        EXPECT_EQ(request_->getResponseCode(), status);
    }
    EXPECT_THAT(log_.getLines(), IsEmpty());
}

TEST_F(S3Retry, IsDoneForAConnectionThatIsRefused) {
    const testsupport::RefusedPort refused;
    client_->setMaxRetries(1);
    request_->setURL(String("http://127.0.0.1:" + std::to_string(refused.port()) + "/bucket/key"));
    // libcurl's text tells how long it took, so it is that of the one transfer.
    const auto message = messageOf([&] { perform(); });
    EXPECT_THAT(message, testing::StartsWith("Couldn't connect to server: "));
    EXPECT_EQ(pauses, std::vector<int>(1, 100));
    EXPECT_THAT(log_.getLines().back(),
                testing::EndsWith(" (try 2). Too many retries. Giving up!: " + message));
}

TEST_F(S3Retry, IsNotDoneForAHostThatIsNotFound) {
    request_->setURL("http://no-such-host.invalid/bucket/key");
    EXPECT_EQ(transferErrorOf([&] { perform(); }), CURLE_COULDNT_RESOLVE_HOST);
    EXPECT_THAT(pauses, IsEmpty());
}

TEST_F(S3Retry, IsDoneForAnAnswerThatDoesNotCome) {
    server_.play(Script().expectRequest().close());
    server_.play(Script().expectRequest().reset());
    server_.play(Script().expectRequest().stall());
    answer({response(200, "body")});
    request_->setFullRequestTimeout(CTimeSpan::fromMilliseconds(500));
    EXPECT_EQ(perform(), 4);
    EXPECT_EQ(getBody(*request_), "body");
    EXPECT_EQ(pauses, std::vector<int>(3, 100));
}

TEST_F(S3Retry, IsNotDoneForABodyThatBreaksOff) {
    server_.play(Script().expectRequest().send("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhalf").close());
    EXPECT_EQ(transferErrorOf([&] { perform(); }), CURLE_PARTIAL_FILE);
    server_.play(Script().expectRequest().send("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhalf").reset());
    // The status of success counts before libcurl's code.
    const kel::int64 code = transferErrorOf([&] { perform(); });
    const bool isEnd = code == CURLE_PARTIAL_FILE && testsupport::resetMayLookLikeAnEnd();
    EXPECT_TRUE(code == CURLE_RECV_ERROR || isEnd) << code;
    EXPECT_THAT(pauses, IsEmpty());
}

TEST_F(S3Retry, SendsTheWholeBodyAgain) {
    const std::string body(200000, 'b');
    client_->preparePutObjectRequest(*request_, "bucket", "key", body.data(), static_cast<int>(body.size()),
                                     "");
    answer({response(500, document("InternalError")), response(503), response(200)});
    EXPECT_EQ(perform(), 3);
    const auto requests = server_.requests();
    ASSERT_THAT(requests, SizeIs(3));
    for (const auto& request : requests) {
        EXPECT_EQ(request.body, body);
        EXPECT_EQ(request.headerLines, requests[0].headerLines);
    }
}

TEST_F(S3Retry, IsDoneOnceOrNeverOrFiftyTimes) {
    for (const int maxRetries : {0, 1, 50}) {
        client_->setMaxRetries(maxRetries);
        pauses.clear();
        answer(std::vector<std::string>(static_cast<std::size_t>(maxRetries) + 1,
                                        response(500, document("InternalError"))));
        client_->prepareGetObjectRequest(*request_, "bucket", "key", 0, -1);
        EXPECT_EQ(refusalOf([&] { perform(); }).status, 500);
        EXPECT_EQ(pauses, std::vector<int>(static_cast<std::size_t>(maxRetries), 100));
        EXPECT_EQ(log_.getLines().back(),
                  "error: Received InternalError response from S3 (try " + std::to_string(maxRetries + 1) +
                      "). Too many retries. Giving up!: Amazon S3 error: M(InternalError)");
        request_ = new vantra::CNetRequest(); // its connection takes the next script
    }
}

TEST_F(S3Retry, IsDoneFiftyTimesByDefault) {
    answer(std::vector<std::string>(51, response(503)));
    EXPECT_EQ(transferErrorOf([&] { perform(); }), CURLE_HTTP_RETURNED_ERROR);
    EXPECT_THAT(pauses, SizeIs(50));
    EXPECT_EQ(std::ranges::count(log_.getLines(),
                                 "warning: Received slowdown response from S3: " + statusText(503)),
              51);
}

} // namespace
