#include "Doubles.h"
#include "Thrown.h"

#include "vantra/NetRequest.h"

#include "support/ScriptedServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace vantra::test {

namespace {

using kel::P;
using kel::String;
using testing::ElementsAre;
using testing::IsEmpty;
using testsupport::okResponse;
using testsupport::Script;
using testsupport::ScriptedServer;

/// Sinks and sources that throw in the middle of a transfer by libcurl itself, each kind of thing that can be
/// thrown.
class ClientFault : public testing::TestWithParam<std::size_t> {
protected:
    ClientFault() {
        request_->setURL(String(server_.url("/path")));
        request_->setCustomHTTPHeaders(makeHeadersWithoutExpect());
        request_->setDoneListener(listener_);
    }

    void TearDown() override {
        request_ = nullptr;
        EXPECT_THAT(server_.finish(), IsEmpty());
    }

    const Fault& fault() const { return getFaults().at(GetParam()); }

    Thrown perform(Script script) {
        server_.play(std::move(script));
        listener_->outcomes.clear();
        const Thrown thrown = thrownBy([&] { request_->perform(); });
        EXPECT_THAT(listener_->outcomes, ElementsAre(thrown));
        return thrown;
    }

    ScriptedServer server_;
    P<CTestRequest> request_ = new CTestRequest();
    P<CRecordingListener> listener_ = new CRecordingListener();
};

INSTANTIATE_TEST_SUITE_P(All, ClientFault, testing::Range(std::size_t{0}, getFaults().size()));

/// A body that libcurl hands over in several blocks, at least one for each chunk.
const std::string chunkedResponse =
    "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nConnection: close\r\n\r\n"
    "3\r\none\r\n3\r\ntwo\r\n5\r\nthree\r\n4\r\nfour\r\n0\r\n\r\n";
constexpr int chunks = 4;

const std::string storedResponse = okResponse("stored", "Connection: close\r\n");

TEST_P(ClientFault, OfASinkAtEachBlockIsWhatPerformThrows) {
    for (int call = 1; call <= chunks; ++call) {
        const P<CRecordingSink> sink = new CRecordingSink();
        sink->writes.failAt(call, fault().raise);
        request_->setReceiveDataSink(sink);
        EXPECT_EQ(perform(Script().expectRequest().send(chunkedResponse).stall()), fault().asTransferred)
            << call;
        EXPECT_EQ(sink->writes.getCalls(), call);
        EXPECT_EQ(sink->blocks.size(), static_cast<std::size_t>(call - 1));
        EXPECT_THAT(std::string("onetwothreefour"), testing::StartsWith(sink->getBytes()));

        // libcurl closed the connection, and the same request and sink do their work on the next.
        sink->writes.clear();
        sink->blocks.clear();
        EXPECT_EQ(perform(Script().expectRequest().send(chunkedResponse)), nothingThrown) << call;
        EXPECT_EQ(sink->getBytes(), "onetwothreefour");
    }
}

TEST_P(ClientFault, OfASinkInTheBodyOfAnErrorStatusIsWhatPerformThrows) {
    const P<CRecordingSink> sink = new CRecordingSink();
    sink->writes.failAt(1, fault().raise);
    request_->setReceiveDataSink(sink);
    EXPECT_EQ(
        perform(Script().expectRequest().send("HTTP/1.1 500 Oops\r\nContent-Length: 4\r\n\r\nbody").stall()),
        fault().asTransferred);
}

/// How many requests brought the whole of a slow source. Counted rather than looked for at the end: the
/// server may read the head of a request that was given up after that of the next one.
std::ptrdiff_t countWholeBodies(const testsupport::ScriptedServer& server) {
    const auto requests = server.requests();
    return std::count_if(requests.begin(), requests.end(),
                         [](const auto& request) { return request.body == "01234"; });
}

/// A source of five bytes that is read byte by byte.
P<CRecordingSource> makeSlowSource() {
    P<CRecordingSource> source = new CRecordingSource("01234");
    source->blockSize = 1;
    return source;
}

TEST_P(ClientFault, OfASourceAtEachReadIsWhatPerformThrows) {
    request_->setHTTPMethod("PUT");
    request_->setSendDataSize(5);
    for (int call = 1; call <= 5; ++call) {
        const P<CRecordingSource> source = makeSlowSource();
        source->reads.failAt(call, fault().raise);
        request_->setSendDataSource(source);
        EXPECT_EQ(perform(Script().expectHead().stall()), fault().asTransferred) << call;
        EXPECT_EQ(source->reads.getCalls(), call);
        EXPECT_EQ(source->position, call - 1);

        source->reads.clear();
        EXPECT_EQ(perform(Script().expectRequest().send(storedResponse)), nothingThrown) << call;
        EXPECT_EQ(countWholeBodies(server_), call);
        EXPECT_EQ(getBody(*request_), "stored");
    }
}

TEST_P(ClientFault, OfASourceOfUnknownSizeAtEachReadTheLastIncludedIsWhatPerformThrows) {
    request_->setHTTPMethod("PUT");
    for (int call = 1; call <= 6; ++call) {
        const P<CRecordingSource> source = makeSlowSource();
        source->reads.failAt(call, fault().raise);
        request_->setSendDataSource(source);
        EXPECT_EQ(perform(Script().expectHead().stall()), fault().asTransferred) << call;
        EXPECT_EQ(source->reads.getCalls(), call);

        source->reads.clear();
        EXPECT_EQ(perform(Script().expectRequest().send(storedResponse)), nothingThrown) << call;
        EXPECT_EQ(countWholeBodies(server_), call);
    }
}

TEST_P(ClientFault, OfASeekForARedirectIsWhatPerformThrows) {
    request_->setHTTPMethod("POST");
    const P<CRecordingSource> source = new CRecordingSource("data");
    request_->setSendDataSource(source);
    request_->setSendDataSize(4);
    source->seeks.failAt(1, fault().raise);
    const std::string redirect =
        "HTTP/1.1 307 Temporary Redirect\r\nLocation: /next\r\nContent-Length: 0\r\n\r\n";
    EXPECT_EQ(perform(Script().expectRequest().send(redirect).stall()), fault().asTransferred);
    EXPECT_EQ(source->seeks.getCalls(), 1);

    // Now the second seek, at the redirect of the next perform, which itself begins with a seek.
    source->seeks = {};
    source->seeks.failAt(2, fault().raise);
    EXPECT_EQ(perform(Script().expectRequest().send(redirect).stall()), fault().asTransferred);

    source->seeks.clear();
    EXPECT_EQ(perform(Script().expectRequest().send(redirect).expectRequest().send(storedResponse)),
              nothingThrown);
    EXPECT_EQ(server_.requests().back().startLine, "POST /next HTTP/1.1");
    EXPECT_EQ(server_.requests().back().body, "data");
}

TEST_P(ClientFault, OfThePositionBeforeTheTransferLeavesTheServerAlone) {
    request_->setHTTPMethod("PUT");
    request_->setSendDataSize(4);
    const P<CRecordingSource> source = new CRecordingSource("data");
    source->positions.failAt(1, fault().raise);
    request_->setSendDataSource(source);
    EXPECT_EQ(thrownBy([&] { request_->perform(); }), fault().asThrown);
    EXPECT_EQ(server_.connectionCount(), 0U);
    EXPECT_EQ(perform(Script().expectRequest().send(storedResponse)), nothingThrown);
    EXPECT_EQ(server_.requests().back().body, "data");
}

TEST_P(ClientFault, OfTheSeekBeforeTheTransferLeavesTheServerAlone) {
    request_->setHTTPMethod("PUT");
    request_->setSendDataSize(4);
    const P<CRecordingSource> source = new CRecordingSource("data");
    source->position = 2;
    source->seeks.failAt(1, fault().raise);
    request_->setSendDataSource(source);
    EXPECT_EQ(thrownBy([&] { request_->perform(); }), fault().asThrown);
    EXPECT_EQ(server_.connectionCount(), 0U);
    EXPECT_EQ(perform(Script().expectRequest().send(storedResponse)), nothingThrown);
    EXPECT_EQ(server_.requests().back().body, "data");
}

TEST_P(ClientFault, OfASourceWinsOverTheSinksLaterOne) {
    request_->setHTTPMethod("PUT");
    request_->setSendDataSize(4);
    const P<CRecordingSource> source = new CRecordingSource("data");
    const P<CRecordingSink> sink = new CRecordingSink();
    source->reads.failAt(1, fault().raise);
    sink->writes.failAt(1, [] { throw COwnError("too late", ""); });
    request_->setSendDataSource(source);
    request_->setReceiveDataSink(sink);
    EXPECT_EQ(perform(Script().expectHead().stall()), fault().asTransferred);
}

TEST_P(ClientFault, LeavesTheLogOfTheTransfer) {
    request_->setVerbose(true);
    request_->setVerboseSettings(CNetRequest::VerboseLogDataContent, CNetRequest::VerboseLogDataSize);
    const P<CRecordingSink> sink = new CRecordingSink();
    sink->writes.failAt(1, fault().raise);
    request_->setReceiveDataSink(sink);
    EXPECT_EQ(perform(Script().expectRequest().send(okResponse("body")).stall()), fault().asTransferred);
    std::vector<std::string> received;
    const P<kel::CXMLElement> log = request_->getVerboseOutput(1000);
    for (const P<kel::CXMLElement>& message : log->getChildren()) {
        if (message->getName() == "receive") received.push_back(message->getText().toUTF8());
    }
    EXPECT_THAT(received, ElementsAre("HTTP/1.1 200 OK", "Content-Length: 4", "", "body"));
}

} // namespace

} // namespace vantra::test
