#include "support/S3Server.h"

#include "support/Command.h"
#include "unit/support/Curl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>
#include <memory>
#include <string>
#include <vector>

using namespace testsupport;
using testing::HasSubstr;

namespace {

class S3ServerTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        server_ = std::make_unique<S3Server>(std::vector<std::string>{"one", "two"});
    }
    static void TearDownTestSuite() { server_.reset(); }

    /// The standard output of the curl command for a GET that openssl has signed.
    static std::string getSigned(const std::string& path, const std::string& secret) {
        char date[64] = {};
        const std::time_t now = std::time(nullptr);
        std::strftime(date, sizeof date, "%a, %d %b %Y %H:%M:%S GMT", std::gmtime(&now));
        const std::string text = "GET\n\n\n" + std::string(date) + "\n" + path;
        const std::string mac =
            runCommand({"openssl", "dgst", "-sha1", "-hmac", secret, "-binary"}, text).standardOutput;
        const std::string signature = runCommand({"openssl", "base64", "-A"}, mac).standardOutput;
        return curl({"--header", "Date: " + std::string(date), "--header",
                     "Authorization: AWS " + S3Server::accessKey() + ":" + signature, server_->url(path)})
            .standardOutput;
    }

    static std::unique_ptr<S3Server> server_;
};

std::unique_ptr<S3Server> S3ServerTest::server_;

TEST_F(S3ServerTest, HasItsBucketsFromTheStart) {
    const std::string buckets = getSigned("/", S3Server::secretKey());
    EXPECT_THAT(buckets, HasSubstr("<Name>one</Name>"));
    EXPECT_THAT(buckets, HasSubstr("<Name>two</Name>"));
    EXPECT_THAT(getSigned("/one", S3Server::secretKey()), HasSubstr("<ListBucketResult"));
}

TEST_F(S3ServerTest, VerifiesSignatures) {
    EXPECT_THAT(getSigned("/one", "wrong"), HasSubstr("<Code>SignatureDoesNotMatch</Code>"));
    EXPECT_EQ(
        curl({"--output", "/dev/null", "--write-out", "%{http_code}", server_->url("/one")}).standardOutput,
        "412");
}

} // namespace
