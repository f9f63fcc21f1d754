#include "S3Doubles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace vantra::test {

namespace {

using kel::P;
using kel::String;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class S3Retry : public S3Test {
protected:
    S3Retry() { client_.prepareGetObjectRequest(*request_, "bucket", "key", 0, -1); }

    int perform() { return client_.performRequest(*request_); }

    Thrown failure() {
        return thrownBy([&] { perform(); });
    }

    S3Log log_;
};

/// The text of a status error, as libcurl and the request put it.
std::string statusText(int status) {
    return "HTTP response code said error (response code: http " + std::to_string(status) + ")";
}

TEST_F(S3Retry, IsNotNeededForASuccess) {
    answer({{200}});
    EXPECT_EQ(perform(), 1);
    EXPECT_THAT(getPauses(), IsEmpty());
    EXPECT_THAT(log_.getEntries(), IsEmpty());
}

TEST_F(S3Retry, GoesOnUntilASuccess) {
    answer({{500}, {0, "", CURLE_COULDNT_CONNECT}, {503, errorDocument("InternalError")}, {200, "body"}});
    EXPECT_EQ(perform(), 4);
    EXPECT_EQ(getBody(*request_), "body");
    EXPECT_THAT(getPauses(), ElementsAre(100, 100, 100));
    EXPECT_THAT(
        log_.getEntries(),
        ElementsAre("info: Got error during S3 request: " + statusText(500) +
                        " (try 1). Waiting 100ms and retrying.",
                    "info: Got error during S3 request: Couldn't connect to server (try 2). Waiting 100ms "
                    "and retrying.",
                    "info: Received InternalError response from S3 (try 3). Waiting 100ms and retrying."));
}

TEST_F(S3Retry, SendsTheSameRequestAgain) {
    const std::vector<std::string> headers = getHeaderLines(*request_);
    answer({{500}, {200}});
    setTime(kel::CTime::fromCTime(1234567890));
    EXPECT_EQ(perform(), 2);
    EXPECT_EQ(getHeaderLines(*request_), headers);
    EXPECT_THAT(getTransfers(),
                ElementsAre(" https://s3.amazonaws.com/bucket/key", " https://s3.amazonaws.com/bucket/key"));
}

TEST_F(S3Retry, GivesUpAfterFiftyByDefault) {
    answer({{500, errorDocument("InternalError")}});
    const Thrown error = failure();
    EXPECT_EQ(error.type, "CS3Error");
    EXPECT_EQ(error.code, 500);
    EXPECT_THAT(getTransfers(), SizeIs(51));
    EXPECT_EQ(getPauses(), std::vector<int>(50, 100));
    const std::vector<std::string> entries = log_.getEntries();
    ASSERT_THAT(entries, SizeIs(51));
    for (int i = 1; i <= 50; ++i)
        EXPECT_EQ(entries[static_cast<std::size_t>(i - 1)],
                  "info: Received InternalError response from S3 (try " + std::to_string(i) +
                      "). Waiting 100ms and retrying.");
    EXPECT_EQ(entries.back(), "error: Received InternalError response from S3 (try 51). Too many retries. "
                              "Giving up! [Amazon S3 error: A message(InternalError)]");
}

TEST_F(S3Retry, IsDoneAsOftenAsTheClientSays) {
    for (const int maxRetries : {-5, 0, 1, 3}) {
        client_.setMaxRetries(maxRetries);
        const std::size_t before = getTransfers().size();
        answer({{500}});
        EXPECT_EQ(failure().params.at("responseCode"), "500");
        EXPECT_EQ(getTransfers().size() - before, static_cast<std::size_t>(std::max(0, maxRetries) + 1));
    }
}

TEST_F(S3Retry, WithoutAnyLogsTheGivingUp) {
    client_.setMaxRetries(0);
    answer({{0, "", CURLE_OPERATION_TIMEDOUT}});
    EXPECT_EQ(failure().code, CURLE_OPERATION_TIMEDOUT);
    EXPECT_THAT(log_.getEntries(),
                ElementsAre("error: Got error during S3 request: Timeout was reached (try 1). Too many "
                            "retries. Giving up! [Timeout was reached]"));
    EXPECT_THAT(getPauses(), IsEmpty());
}

TEST_F(S3Retry, IsNotDoneForWhatIsFinal) {
    answer({{404, errorDocument("NoSuchKey")}});
    const Thrown expected{"CS3Error",
                          "Amazon S3 error: A message(NoSuchKey)",
                          "http",
                          404,
                          {{"s3-resource", "/bucket/key"},
                           {"s3-requestID", "4442587FB7D0A2F9"},
                           {"s3-code", "NoSuchKey"},
                           {"responseCode", "404"}},
                          "NoSuchKey"};
    EXPECT_EQ(failure(), expected);
    answer({{0, "", CURLE_COULDNT_RESOLVE_HOST}});
    EXPECT_EQ(failure().code, CURLE_COULDNT_RESOLVE_HOST);
    answer({{404}});
    EXPECT_EQ(failure().params.at("responseCode"), "404");
    EXPECT_THAT(getTransfers(), SizeIs(3));
    EXPECT_THAT(getPauses(), IsEmpty());
    EXPECT_THAT(log_.getEntries(), IsEmpty());
}

TEST_F(S3Retry, IsDoneForARefusedConnection) {
    answer({{0, "", CURLE_COULDNT_CONNECT}, {200}});
    EXPECT_EQ(perform(), 2);
    EXPECT_THAT(log_.getEntries(),
                ElementsAre("info: Got error during S3 request: Couldn't connect to server (try 1). Waiting "
                            "100ms and retrying."));
}

TEST_F(S3Retry, StopsAtTheFirstFinalFailure) {
    answer({{503, errorDocument("SlowDown")}, {500}, {403, errorDocument("AccessDenied")}});
    EXPECT_EQ(failure().details, "AccessDenied");
    EXPECT_THAT(getTransfers(), SizeIs(3));
    EXPECT_THAT(getPauses(), ElementsAre(100, 100));
}

TEST_F(S3Retry, WarnsOfASlowDownEachTime) {
    client_.setMaxRetries(1);
    answer({{503}});
    EXPECT_EQ(failure().params.at("responseCode"), "503");
    const std::string warning = "warning: Received slowdown response from S3 [" + statusText(503) + "]";
    const std::string text = "Got error during S3 request: " + statusText(503);
    EXPECT_THAT(
        log_.getEntries(),
        ElementsAre(warning, "info: " + text + " (try 1). Waiting 100ms and retrying.", warning,
                    "error: " + text + " (try 2). Too many retries. Giving up! [" + statusText(503) + "]"));
    EXPECT_THAT(getPauses(), ElementsAre(100));
}

TEST_F(S3Retry, WarnsOfTheServicesSlowDown) {
    answer({{503, errorDocument("SlowDown")}, {200}});
    EXPECT_EQ(perform(), 2);
    EXPECT_THAT(log_.getEntries(),
                ElementsAre("warning: Received slowdown response from S3 [Amazon S3 error: A "
                            "message(SlowDown)]",
                            "info: Received SlowDown response from S3 (try 1). Waiting 100ms and retrying."));
    EXPECT_THAT(getPauses(), ElementsAre(100));
}

TEST_F(S3Retry, OfABadRequestWithoutDocumentIsDoneAndWithOneByItsCode) {
    answer({{400}, {409}, {400, errorDocument("IncompleteBody")}, {409, errorDocument("BucketNotEmpty")}});
    EXPECT_EQ(failure().details, "BucketNotEmpty");
    EXPECT_THAT(getTransfers(), SizeIs(4));
}

TEST_F(S3Retry, JudgesEachTryByItsOwnAnswer) {
    answer({{503, errorDocument("SlowDown")}, {0, "", CURLE_COULDNT_RESOLVE_HOST}});
    const Thrown error = failure();
    EXPECT_EQ(error.type, "CCURLError");
    EXPECT_EQ(error.code, CURLE_COULDNT_RESOLVE_HOST);
    EXPECT_THAT(getTransfers(), SizeIs(2));
}

/// Throws from the sink, and so from the transfer.
class CThrowingSink : public kel::CBase, public CNetRequest::IDataSink {
public:
    explicit CThrowingSink(std::function<void()> raise) : raise_(std::move(raise)) {}
    void write(const void*, unsigned int, int, const HeaderMap&) override { raise_(); }

private:
    std::function<void()> raise_;
};

TEST_F(S3Retry, IsNotDoneForTheCallersOwnErrors) {
    for (const Fault& fault : getFaults()) {
        const P<CNetRequest::IDataSink> sink = new CThrowingSink(fault.raise);
        request_->setReceiveDataSink(sink);
        answer({{200, "body", CURLE_WRITE_ERROR}});
        EXPECT_EQ(failure(), fault.asTransferred) << fault.name;
    }
    EXPECT_THAT(getPauses(), IsEmpty());
    EXPECT_THAT(log_.getEntries(), IsEmpty());
}

/// Throws what is no CError, past the request.
class CThrowingListener : public kel::CBase, public CNetRequest::IDoneListener {
public:
    void onRequestDone(CNetRequest*, const kel::CError*) override { throw std::runtime_error("listener"); }
};

TEST_F(S3Retry, IsNotDoneForAnExceptionThatIsNoCError) {
    const P<CNetRequest::IDoneListener> listener = new CThrowingListener();
    request_->setDoneListener(listener);
    answer({{500}});
    EXPECT_EQ(failure().type, "std::runtime_error");
    EXPECT_THAT(getTransfers(), SizeIs(1));
    EXPECT_THAT(log_.getEntries(), IsEmpty());
}

TEST_F(S3Retry, RewindsTheBody) {
    client_.preparePutObjectRequest(*request_, "bucket", "key", "hello", 5, "");
    std::vector<std::string> bodies;
    curl_.playTransfer([&](const LibcurlSide& curl) {
        std::string body(10, '?');
        body.resize(curl.read(body.data(), 1, body.size()));
        bodies.push_back(body);
        curl_.answerInfo(CURLINFO_RESPONSE_CODE, bodies.size() < 3 ? 500 : 200);
        return CURLE_OK;
    });
    EXPECT_EQ(perform(), 3);
    EXPECT_THAT(bodies, Each("hello"));
}

} // namespace

} // namespace vantra::test
