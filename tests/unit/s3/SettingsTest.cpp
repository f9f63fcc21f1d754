#include "S3Doubles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <type_traits>

namespace vantra::test {

namespace {

using kel::String;
using testing::Contains;
using testing::Not;

using S3Settings = S3Test;

TEST_F(S3Settings, VerifyThePeerAndRecordNothingByDefault) {
    client_.prepareDeleteObjectRequest(*request_, "b", "k");
    EXPECT_FALSE(request_->isVerboseEnabled());
    EXPECT_THAT(curl_.takeCalls(), Not(Contains("SSL_VERIFYPEER = 0")));
}

TEST(S3AccessKeyID, IsOfOneLine) {
    for (const String& id : {String("id\r\nX-Other: y"), String("id\n"), String(L"id\0", 3)})
        EXPECT_EQ(thrownBy([&] { CS3Client client(id, "secret", true); }),
                  invalidArgError("CS3Client::CS3Client",
                                  "access key id contains a line break or a NUL character"));
}

TEST_F(S3Settings, AreAppliedToEachRequestFromThenOn) {
    client_.setSSLVerifyPeer(false);
    client_.setPrintDebugInfo(true);
    client_.prepareDeleteObjectRequest(*request_, "b", "k");
    EXPECT_TRUE(request_->isVerboseEnabled());
    EXPECT_THAT(curl_.takeCalls(), Contains("SSL_VERIFYPEER = 0"));
    client_.setSSLVerifyPeer(true);
    client_.setPrintDebugInfo(false);
    client_.prepareDeleteObjectRequest(*request_, "b", "k");
    EXPECT_FALSE(request_->isVerboseEnabled());
    EXPECT_THAT(curl_.takeCalls(), Not(Contains("SSL_VERIFYPEER = 0")));
}

TEST_F(S3Settings, AreCopiedWithTheClient) {
    client_.setEndpoint("http://localhost:1/");
    client_.setPrintDebugInfo(true);
    client_.setMaxRetries(0);
    CS3Client copy(client_);
    EXPECT_EQ(copy.getEndpoint(), "http://localhost:1/");
    copy.preparePutObjectRequest(*request_, "b", "k", "hello", 5, "");
    EXPECT_TRUE(request_->isVerboseEnabled());
    answer({{500}});
    const S3Log log;
    EXPECT_EQ(thrownBy([&] { copy.performRequest(*request_); }).code, CURLE_HTTP_RETURNED_ERROR);
    EXPECT_EQ(getTransfers().size(), 1U);
    static_assert(std::is_move_constructible_v<CS3Client> && std::is_move_assignable_v<CS3Client>);
}

} // namespace

} // namespace vantra::test
