#include "ObjectStore.h"

#include "LogCapture.h"

#include <kel/Thread.h>
#include <kel/Time.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using kel::CTime;
using kel::CTimeSpan;
using testsupport::S3Server;
using vantra::CS3Client;

namespace {

class S3Refusal : public OverHTTPAndHTTPS {
protected:
    [[nodiscard]] Refusal refusalToList(const kel::P<CS3Client>& client) const {
        return refusalOf([&] { (void)client->listObjects(*request_, "bucket", "", "", "", -1); });
    }

    [[nodiscard]] std::string endpoint() const { return client_->getEndpoint().toUTF8(); }
};

INSTANTIATE_TEST_SUITE_P(Store, S3Refusal, testing::Values("HTTP", "HTTPS"),
                         [](const auto& scheme) { return scheme.param; });

TEST_P(S3Refusal, OfAWrongSecretIsTheServicesOwn) {
    const auto client = makeClient(endpoint(), S3Server::accessKey(), "wrong");
    const Refusal refusal = refusalToList(client);
    EXPECT_EQ(refusal.code, "SignatureDoesNotMatch");
    EXPECT_EQ(refusal.status, 403);
    EXPECT_EQ(refusalOf([&] { client->putObject(*request_, "bucket", "k", "x", 1, ""); }).code,
              "SignatureDoesNotMatch");
    EXPECT_EQ(refusalOf([&] { client->deleteObject(*request_, "bucket", "k"); }).code,
              "SignatureDoesNotMatch");
}

TEST_P(S3Refusal, OfAnUnknownUserIsTheServicesOwn) {
    EXPECT_EQ(refusalToList(makeClient(endpoint(), "test:nobody", "testing")).status, 403);
}

TEST_P(S3Refusal, OfAUserWithoutRightsIsTheServicesOwn) {
    const auto client = makeClient(endpoint(), S3Server::otherAccessKey(), S3Server::otherSecretKey());
    EXPECT_EQ(refusalToList(client).code, "AccessDenied");
    EXPECT_EQ(refusalOf([&] { client->putObject(*request_, "bucket", "k", "x", 1, ""); }).code,
              "AccessDenied");
}

TEST_P(S3Refusal, LeavesItOpenWhetherAnObjectExists) {
    const auto client = makeClient(endpoint(), S3Server::accessKey(), "wrong");
    EXPECT_EQ(transferErrorOf([&] { (void)client->objectExists(*request_, "bucket", "k"); }),
              CURLE_HTTP_RETURNED_ERROR);
    EXPECT_EQ(request_->getResponseCode(), 403);
}

TEST_P(S3Refusal, OfAnUnknownBucketIsNotFound) {
    try {
        (void)client_->listObjects(*request_, "no-such-bucket", "", "", "", -1);
        FAIL() << "nothing was thrown";
    } catch (const vantra::CS3Error& error) {
        EXPECT_EQ(error.getS3Code(), "NoSuchBucket");
        EXPECT_EQ(error.getCode(), 404);
        EXPECT_TRUE(CS3Client::isNotFoundError(error));
        EXPECT_FALSE(error.getParams().lookup("s3-requestID").isEmpty());
    }
    EXPECT_EQ(refusalOf([&] { client_->putObject(*request_, "no-such-bucket", "k", "x", 1, ""); }).code,
              "NoSuchBucket");
}

TEST_P(S3Refusal, OfAWrongClockIsRetriedAndThenTold) {
    static constexpr kel::int64 hour = 3600LL * 1000000;
    static CTime wrongTime;
    wrongTime = CTime::now() + CTimeSpan(hour);
    CTime::setNowFunction([] { return wrongTime; });
    kel::CThread::setSleepFunction([](int) {});
    const CLogCapture log;
    const Refusal refusal = refusalToList(client_);
    CTime::setNowFunction(nullptr);
    kel::CThread::setSleepFunction(nullptr);
    EXPECT_EQ(refusal.code, "RequestTimeTooSkewed");
    EXPECT_EQ(refusal.status, 403);
    EXPECT_THAT(log.getLines().back(),
                testing::StartsWith("error: Received RequestTimeTooSkewed response from S3 (try 4). Too many "
                                    "retries. Giving up!"));
}

} // namespace
