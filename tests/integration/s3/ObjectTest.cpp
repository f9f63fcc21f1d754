#include "ObjectStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>

using kel::String;
using testing::StartsWith;
using vantra::CS3Client;

namespace {

class S3Object : public OverHTTPAndHTTPS {};

INSTANTIATE_TEST_SUITE_P(Store, S3Object, testing::Values("HTTP", "HTTPS"),
                         [](const auto& scheme) { return scheme.param; });

TEST_P(S3Object, ComesBackAsItWasPut) {
    put("round/trip.txt", "The quick brown fox", "text/x-fox; charset=utf-8");
    EXPECT_EQ(get("round/trip.txt"), "The quick brown fox");
    EXPECT_EQ(request_->getResponseHeaderMap().lookup("content-type"), "text/x-fox; charset=utf-8");
    put("round/trip.txt", "jumps");
    EXPECT_EQ(get("round/trip.txt"), "jumps");
}

TEST_P(S3Object, ComesInParts) {
    put("parts", "0123456789");
    EXPECT_EQ(get("parts", 0, 4), "0123");
    EXPECT_EQ(request_->getResponseCode(), 206);
    EXPECT_EQ(get("parts", 3, 1), "3");
    EXPECT_EQ(get("parts", 7, -1), "789");
    EXPECT_EQ(get("parts", 8, 100), "89");
    const Refusal refusal = refusalOf([&] { (void)get("parts", 10, 5); });
    EXPECT_EQ(refusal.code, "InvalidRange");
    EXPECT_EQ(refusal.status, 416);
}

TEST_P(S3Object, HasHeadersAloneWhenNoBytesAreAskedFor) {
    put("headers", "0123456789");
    EXPECT_EQ(get("headers", 5, 0), "");
    EXPECT_EQ(request_->getResponseHeaderMap().lookup("content-length"), "10");
    const auto& headers = client_->getObjectHeaders(*request_, "bucket", "headers");
    EXPECT_EQ(headers.lookup("content-length"), "10");
    EXPECT_EQ(headers.lookup("etag"), "\"781e5e245d69b566979b86e28d23f2c7\"");
    EXPECT_EQ(client_->getObjectSize(*request_, "bucket", "headers"), 10);
}

TEST_P(S3Object, ExistsOrDoesNot) {
    put("present", "x");
    EXPECT_TRUE(client_->objectExists(*request_, "bucket", "present"));
    EXPECT_FALSE(client_->objectExists(*request_, "bucket", "absent"));
    EXPECT_FALSE(client_->objectExists(*request_, "bucket", "presen"));
    EXPECT_FALSE(client_->objectExists(*request_, "no-such-bucket", "present"));
}

TEST_P(S3Object, IsCopiedByTheService) {
    put("from/here", "copied", "text/plain");
    client_->copyObject(*request_, "bucket", "from/here", "to/there and/on");
    EXPECT_EQ(get("to/there and/on"), "copied");
    EXPECT_EQ(get("from/here"), "copied");
    EXPECT_EQ(transferErrorOf([&] { client_->copyObject(*request_, "bucket", "nothing", "to/there"); }),
              CURLE_HTTP_RETURNED_ERROR);
    EXPECT_THAT(getBody(*request_), testing::HasSubstr("<Code>NoSuchKey</Code>"));
    EXPECT_FALSE(client_->objectExists(*request_, "bucket", "to/there"));
}

TEST_P(S3Object, IsGoneOnceDeleted) {
    put("doomed", "x");
    client_->deleteObject(*request_, "bucket", "doomed");
    EXPECT_FALSE(client_->objectExists(*request_, "bucket", "doomed"));
    const Refusal refusal = refusalOf([&] { (void)get("doomed"); });
    EXPECT_EQ(refusal.code, "NoSuchKey");
    EXPECT_EQ(refusal.status, 404);
    EXPECT_THAT(refusal.message, StartsWith("Amazon S3 error: "));
    EXPECT_THAT(refusal.message, testing::EndsWith("(NoSuchKey)"));
}

TEST_P(S3Object, MayBeEmpty) {
    put("nothing", "");
    EXPECT_EQ(client_->getObjectSize(*request_, "bucket", "nothing"), 0);
    EXPECT_EQ(get("nothing"), "");
    EXPECT_EQ(client_->getObjectHeaders(*request_, "bucket", "nothing").lookup("etag"),
              "\"d41d8cd98f00b204e9800998ecf8427e\"");
}

TEST_P(S3Object, MayHave64MiB) {
    constexpr std::size_t size = 64U << 20U;
    std::mt19937_64 generator(1);
    std::string content(size, '\0');
    for (std::size_t i = 0; i < size; i += sizeof(std::uint64_t)) {
        const std::uint64_t word = generator();
        content.replace(i, sizeof word, reinterpret_cast<const char*>(&word), sizeof word);
    }
    put("big", content);
    EXPECT_EQ(client_->getObjectSize(*request_, "bucket", "big"), static_cast<kel::int64>(size));
    EXPECT_TRUE(get("big") == content);
    EXPECT_TRUE(get("big", 1000, 1U << 20U) == content.substr(1000, 1U << 20U));
    client_->deleteObject(*request_, "bucket", "big");
}

TEST_P(S3Object, IsRefusedWhenItIsNotWhatItsDigestSays) {
    std::string content = "as it was when it was signed";
    client_->preparePutObjectRequest(*request_, "bucket", "tampered", content.data(),
                                     static_cast<int>(content.size()), "");
    content[0] = 'A';
    const Refusal refusal = refusalOf([&] { client_->performRequest(*request_); });
    EXPECT_EQ(refusal.code, "BadDigest");
    EXPECT_EQ(refusal.status, 400);
    EXPECT_FALSE(client_->objectExists(*request_, "bucket", "tampered"));
}

/// A sink of the caller's own.
class CCountingSink : public kel::CBase, public vantra::CNetRequest::IDataSink {
public:
    void write(const void*, unsigned int length, int status, const kel::TMap<String, String>&) override {
        if (status == 200) count += length;
    }
    std::size_t count = 0;
};

TEST_P(S3Object, MayGoToASinkOfTheCallers) {
    put("sunk", "0123456789");
    const kel::P<CCountingSink> sink = new CCountingSink();
    client_->prepareGetObjectRequest(*request_, "bucket", "sunk", 0, -1);
    request_->setReceiveDataSink(sink);
    EXPECT_EQ(client_->performRequest(*request_), 1);
    EXPECT_EQ(sink->count, 10U);
}

TEST_P(S3Object, MayBePreparedForAnotherThread) {
    put("elsewhere", "asynchronous");
    client_->prepareGetObjectRequest(*request_, "bucket", "elsewhere", 0, -1);
    const kel::P<vantra::CAsyncNetRequestThread> thread = new vantra::CAsyncNetRequestThread(nullptr);
    thread->start();
    thread->addRequest(request_);
    constexpr int limit = 30000;
    ASSERT_TRUE(request_->waitAsyncDone(limit));
    request_->checkAsyncResult();
    EXPECT_EQ(getBody(*request_), "asynchronous");
    thread->stop(true);
}

} // namespace
