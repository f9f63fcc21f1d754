#include "CurlRecorder.h"
#include "Doubles.h"
#include "Thrown.h"

#include "vantra/NetRequest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantra::test {

namespace {

using kel::P;
using testing::ElementsAre;

class HeadersAndLists : public testing::Test {
protected:
    std::vector<std::string> takeCalls() { return recorder_.takeCalls(); }

    CurlRecorder recorder_;
    P<CTestRequest> request_ = new CTestRequest();
};

class CCountedHeaders : public CNetHeaders {
public:
    explicit CCountedHeaders(std::atomic<int>* count) : counted_(count) {}

private:
    CCounted counted_;
};

class CCountedList : public CNetStringList {
public:
    explicit CCountedList(std::atomic<int>* count) : counted_(count) {}

private:
    CCounted counted_;
};

TEST_F(HeadersAndLists, CustomHeadersAreToldAndKept) {
    const P<CNetHeaders> headers = new CNetHeaders();
    headers->add("Accept", "text/plain");
    takeCalls();
    request_->setCustomHTTPHeaders(headers);
    EXPECT_THAT(takeCalls(), ElementsAre("HTTPHEADER = [\"Accept: text/plain\"]"));
    EXPECT_EQ(request_->getCustomHTTPHeaders(), headers);
}

TEST_F(HeadersAndLists, CustomHeadersThatLibcurlRefusesDoNotReplaceTheOldOnes) {
    const P<CNetHeaders> first = new CNetHeaders();
    request_->setCustomHTTPHeaders(first);
    recorder_.failOption(CURLOPT_HTTPHEADER, CURLE_OUT_OF_MEMORY);
    static std::atomic<int> alive; // outlives the request
    alive = 0;
    EXPECT_EQ(thrownBy([&] { request_->setCustomHTTPHeaders(new CCountedHeaders(&alive)); }),
              curlError(CURLE_OUT_OF_MEMORY, ""));
    EXPECT_EQ(request_->getCustomHTTPHeaders(), first);
    EXPECT_EQ(alive, 0);
}

TEST_F(HeadersAndLists, AreHeldUntilReplacedAndReleasedOnce) {
    static std::atomic<int> alive; // outlives the request
    alive = 0;
    request_->setCustomHTTPHeaders(new CCountedHeaders(&alive));
    request_->setFTPCustomPreCommands(new CCountedList(&alive));
    request_->setFTPCustomPostCommands(new CCountedList(&alive));
    EXPECT_EQ(alive, 3);
    request_->setCustomHTTPHeaders(nullptr);
    EXPECT_EQ(alive, 2);
    request_->setFTPCustomPreCommands(new CNetStringList());
    EXPECT_EQ(alive, 1);
    request_->setFTPCustomPostCommands(nullptr);
    EXPECT_EQ(alive, 0);
}

TEST_F(HeadersAndLists, AreReleasedByReset) {
    static std::atomic<int> alive; // outlives the request
    alive = 0;
    request_->setCustomHTTPHeaders(new CCountedHeaders(&alive));
    request_->setFTPCustomPreCommands(new CCountedList(&alive));
    request_->setFTPCustomPostCommands(new CCountedList(&alive));
    request_->reset();
    EXPECT_EQ(alive, 0);
}

TEST_F(HeadersAndLists, AreReleasedWithTheRequest) {
    static std::atomic<int> alive; // outlives the request
    alive = 0;
    request_->setCustomHTTPHeaders(new CCountedHeaders(&alive));
    request_->setFTPCustomPreCommands(new CCountedList(&alive));
    request_->setFTPCustomPostCommands(new CCountedList(&alive));
    request_->addDependencyObject(P<kel::IBase>(new CCounted(&alive)));
    request_ = nullptr;
    EXPECT_EQ(alive, 0);
}

TEST_F(HeadersAndLists, HeadersMayBeSharedByTwoRequests) {
    const P<CNetHeaders> headers = new CNetHeaders();
    headers->add("A", "b");
    const P<CNetRequest> other = new CNetRequest();
    request_->setCustomHTTPHeaders(headers);
    other->setCustomHTTPHeaders(headers);
    request_ = nullptr;
    takeCalls();
    recorder_.playTransfer([](const LibcurlSide&) { return CURLE_OK; });
    other->perform();
    EXPECT_THAT(takeCalls(), ElementsAre("HTTPHEADER = [\"A: b\"]", "perform"));
}

} // namespace

} // namespace vantra::test
