#include "CurlRecorder.h"
#include "Doubles.h"
#include "Thrown.h"

#include "vantra/NetRequest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <string>

namespace vantra::test {

namespace {

using kel::int64;
using kel::P;
using testing::ElementsAre;
using testing::IsEmpty;

using Headers = std::map<std::string, std::string>;
using Block = CRecordingSink::Block;

/// The callbacks that a request has registered with libcurl, called with whatever libcurl might hand over.
class Callback : public testing::Test {
protected:
    Callback() {
        request_->setURL("http://example.org/");
        request_->setReceiveDataSink(sink_);
        request_->setSendDataSource(source_);
    }

    const LibcurlSide& curl() const { return recorder_.sideOf(request_->getHandle()); }

    /// The error that a callback has stored.
    Thrown takePendingError() {
        recorder_.answerInfo(CURLINFO_RESPONSE_CODE, 200);
        request_->setAsyncInfo(true, CURLE_OK);
        return thrownBy([&] { request_->checkAsyncResult(); });
    }

    CurlRecorder recorder_;
    P<CTestRequest> request_ = new CTestRequest();
    P<CRecordingSink> sink_ = new CRecordingSink();
    P<CRecordingSource> source_ = new CRecordingSource("0123456789");
};

using WriteCallback = Callback;
using ReadCallback = Callback;
using SeekCallback = Callback;
using HeaderCallback = Callback;

// Write

TEST_F(WriteCallback, HandsTheBlockTheStatusAndTheHeadersToTheSink) {
    curl().headers({"HTTP/1.1 206 Partial Content\r\n", "Content-Type: a/b\r\n", "\r\n"});
    EXPECT_EQ(curl().write("block"), 5U);
    EXPECT_THAT(sink_->blocks, ElementsAre(Block{"block", 206, {{"content-type", "a/b"}}}));
}

TEST_F(WriteCallback, MultipliesSizeAndCount) {
    curl().headers({"HTTP/1.1 200 OK\r\n"});
    EXPECT_EQ(curl().write("123456", 2, 3), 6U);
    EXPECT_EQ(sink_->getBytes(), "123456");
}

TEST_F(WriteCallback, HandsOverBytesOfAllValues) {
    curl().headers({"HTTP/1.1 200 OK\r\n"});
    std::string bytes;
    for (int value = 0; value < 256; ++value) bytes += static_cast<char>(value);
    EXPECT_EQ(curl().write(bytes), 256U);
    EXPECT_EQ(sink_->getBytes(), bytes);
}

TEST_F(WriteCallback, HandsOverAnEmptyBlock) {
    curl().headers({"HTTP/1.1 200 OK\r\n"});
    EXPECT_EQ(curl().write(""), 0U);
    EXPECT_EQ(curl().writeNull(), 0U);
    EXPECT_THAT(sink_->blocks, ElementsAre(Block{"", 200, {}}, Block{"", 200, {}}));
}

TEST_F(WriteCallback, HandsAnEmptyBlockToTheDefaultBuffer) {
    curl().headers({"HTTP/1.1 200 OK\r\n"});
    request_->setDefaultReceiveDataStream();
    EXPECT_EQ(curl().writeNull(), 0U);
    EXPECT_EQ(getBody(*request_), "");
}

TEST_F(WriteCallback, AcceptsAndDropsEverythingWithoutASink) {
    request_->setReceiveDataSink(nullptr);
    EXPECT_EQ(curl().write("12345", 1, 5), 5U);
    EXPECT_EQ(curl().write("123456", 3, 2), 6U);
    EXPECT_EQ(curl().writeNull(), 0U);
    EXPECT_EQ(getBody(*request_), "");
    EXPECT_EQ(takePendingError(), nothingThrown);
}

TEST_F(WriteCallback, SettlesTheStatusWithTheFirstBlock) {
    curl().headers({"HTTP/1.1 200 OK\r\n"});
    curl().write("a");
    curl().headers({"HTTP/1.1 500 Too Late\r\n"});
    curl().write("b");
    EXPECT_THAT(sink_->blocks, ElementsAre(Block{"a", 200, {}}, Block{"b", 200, {}}));
}

TEST_F(WriteCallback, GivesNoStatusWhenTheTransferIsNotHTTP) {
    request_->setURL("ftp://example.org/");
    curl().headers({"HTTP/1.1 200 OK\r\n"});
    curl().write("a");
    EXPECT_THAT(sink_->blocks, ElementsAre(Block{"a", -1, {}}));
}

TEST_F(WriteCallback, LogsAStatusLineThatCannotBeReadOnceAndGivesZero) {
    const LogCapture log;
    request_->setHTTPMethod("PUT");
    curl().headers({"HTTP/1.1\r\n"});
    curl().write("a");
    curl().write("b");
    EXPECT_THAT(sink_->blocks, ElementsAre(Block{"a", 0, {}}, Block{"b", 0, {}}));
    EXPECT_THAT(
        log.getEntries(),
        ElementsAre("error: Error parsing HTTP status line - ignoring (statusLine: 'HTTP/1.1', method: "
                    "'PUT', URL: 'http://example.org/') [Invalid HTTP status line: 'HTTP/1.1']"));
}

TEST_F(WriteCallback, LogsThatThereWasNoStatusLine) {
    const LogCapture log;
    EXPECT_EQ(curl().write("a"), 1U);
    EXPECT_THAT(sink_->blocks, ElementsAre(Block{"a", 0, {}}));
    EXPECT_THAT(
        log.getEntries(),
        ElementsAre("error: Error parsing HTTP status line - ignoring (statusLine: '', method: '', URL: "
                    "'http://example.org/') [Invalid HTTP status line: '']"));
}

TEST_F(WriteCallback, LogsAStatusCodeThatIsNoNumber) {
    const LogCapture log;
    curl().headers({"HTTP/1.1 2x0 OK\r\n"});
    curl().write("a");
    EXPECT_THAT(sink_->blocks, ElementsAre(Block{"a", 0, {}}));
    EXPECT_THAT(
        log.getEntries(),
        ElementsAre("error: Error parsing HTTP status line - ignoring (statusLine: 'HTTP/1.1 2x0 OK', "
                    "method: '', URL: 'http://example.org/') [Invalid integer: '2x0'.]"));
}

TEST_F(WriteCallback, DoesNotReadTheStatusLineWithoutASink) {
    const LogCapture log;
    request_->setReceiveDataSink(nullptr);
    curl().write("a");
    EXPECT_THAT(log.getEntries(), IsEmpty());
}

TEST_F(WriteCallback, AbortsWithZeroAndStoresWhatTheSinkThrows) {
    for (const Fault& fault : getFaults()) {
        request_->setAsyncInfo(false, CURLE_OK);
        curl().headers({"HTTP/1.1 200 OK\r\n"});
        sink_->writes = {};
        sink_->writes.failAt(1, fault.raise);
        EXPECT_EQ(curl().write("block"), 0U) << fault.name;
        EXPECT_EQ(takePendingError(), fault.asTransferred) << fault.name;
    }
}

TEST_F(WriteCallback, AbortsAnEmptyBlockWithOne) {
    curl().headers({"HTTP/1.1 200 OK\r\n"});
    sink_->writes.failAt(1, getFaults().front().raise);
    EXPECT_EQ(curl().writeNull(), 1U);
    EXPECT_EQ(takePendingError(), getFaults().front().asTransferred);
}

TEST_F(WriteCallback, KeepsTheFirstErrorOfTheSink) {
    curl().headers({"HTTP/1.1 200 OK\r\n"});
    sink_->writes.failAt(1, [] { throw COwnError("first", ""); });
    EXPECT_EQ(curl().write("a"), 0U);
    sink_->writes.failAt(2, [] { throw COwnError("second", ""); });
    EXPECT_EQ(curl().write("b"), 0U);
    EXPECT_EQ(takePendingError().message, "first");
}

TEST_F(WriteCallback, LetsTheSinkReplaceItself) {
    static std::atomic<int> alive; // outlives the request
    alive = 0;
    class CReplacingSink : public CRecordingSink {
    public:
        CReplacingSink(std::atomic<int>* count, CNetRequest& request)
            : CRecordingSink(count), request_(request) {}
        void write(const void* data, unsigned int length, int status, const HeaderMap& headers) override {
            request_.setDefaultReceiveDataStream();
            EXPECT_EQ(alive, 1); // as long as it runs
            CRecordingSink::write(data, length, status, headers);
        }

    private:
        CNetRequest& request_;
    };
    curl().headers({"HTTP/1.1 200 OK\r\n"});
    request_->setReceiveDataSink(new CReplacingSink(&alive, *request_));
    EXPECT_EQ(curl().write("first"), 5U);
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(curl().write("second"), 6U);
    EXPECT_EQ(getBody(*request_), "second");
}

// Read

TEST_F(ReadCallback, GivesTheSourcesBytesAndTheHeadersSoFar) {
    curl().headers({"HTTP/1.1 100 Continue\r\n", "A: b\r\n"});
    char buffer[20] = {};
    EXPECT_EQ(curl().read(buffer, 2, 10), 10U);
    EXPECT_STREQ(buffer, "0123456789");
    EXPECT_THAT(source_->takeCalls(), ElementsAre("read 10 of 20"));
    EXPECT_EQ(source_->lastHeaders, (Headers{{"a", "b"}}));
}

TEST_F(ReadCallback, StopsAtTheAnnouncedSize) {
    request_->setSendDataSize(7);
    char buffer[5];
    EXPECT_EQ(curl().read(buffer, 1, 5), 5U);
    EXPECT_EQ(curl().read(buffer, 1, 5), 2U);
    EXPECT_EQ(curl().read(buffer, 1, 5), 0U);
    EXPECT_THAT(source_->takeCalls(), ElementsAre("read 5 of 5", "read 2 of 2"));
}

TEST_F(ReadCallback, CountsTheAnnouncedSizeFromWhereASeekLedTo) {
    request_->setSendDataSize(7);
    char buffer[20];
    EXPECT_EQ(curl().read(buffer, 1, 20), 7U);
    curl().seek(4, 0);
    EXPECT_EQ(curl().read(buffer, 1, 20), 3U);
    curl().seek(-2, 1);
    EXPECT_EQ(curl().read(buffer, 1, 20), 2U);
    curl().seek(-10, 2);
    EXPECT_EQ(curl().read(buffer, 1, 20), 7U);
    curl().seek(9, 0);
    EXPECT_EQ(curl().read(buffer, 1, 20), 0U);
}

TEST_F(ReadCallback, CountsTheAnnouncedSizeAnewForEachTransferAndSource) {
    request_->setSendDataSize(7);
    char buffer[20];
    EXPECT_EQ(curl().read(buffer, 1, 20), 7U);
    request_->setAsyncInfo(false, CURLE_OK);
    EXPECT_EQ(curl().read(buffer, 1, 20), 7U);
    request_->setSendDataSource(P<CRecordingSource>(new CRecordingSource("abcdefgh")));
    EXPECT_EQ(curl().read(buffer, 1, 20), 7U);
}

TEST_F(ReadCallback, GivesZeroAtTheEnd) {
    char buffer[4];
    source_->position = 10;
    EXPECT_EQ(curl().read(buffer, 1, 4), 0U);
}

TEST_F(ReadCallback, GivesZeroWithoutASource) {
    request_->setSendDataSource(nullptr);
    EXPECT_EQ(curl().read(nullptr, 1, 100), 0U);
    EXPECT_EQ(takePendingError(), nothingThrown);
}

TEST_F(ReadCallback, AbortsAndStoresWhatTheSourceThrows) {
    for (const Fault& fault : getFaults()) {
        request_->setAsyncInfo(false, CURLE_OK);
        source_->reads = {};
        source_->reads.failAt(1, fault.raise);
        char buffer[4];
        EXPECT_EQ(curl().read(buffer, 1, 4), std::size_t{0x10000000}) << fault.name;
        EXPECT_EQ(takePendingError(), fault.asTransferred) << fault.name;
    }
}

// Seek

TEST_F(SeekCallback, LetsTheSourceReplaceItself) {
    static std::atomic<int> alive; // outlives the request
    alive = 0;
    class CReplacingSource : public CRecordingSource {
    public:
        CReplacingSource(std::atomic<int>* count, CNetRequest& request)
            : CRecordingSource("0123456789", count), request_(request) {}
        unsigned int read(void* buffer, unsigned int maxLength, const HeaderMap& headers) override {
            giveWay();
            return CRecordingSource::read(buffer, maxLength, headers);
        }
        void seek(int64 newPosition) override {
            giveWay();
            CRecordingSource::seek(newPosition);
        }

    private:
        void giveWay() {
            request_.setSendDataSource(nullptr);
            EXPECT_EQ(alive, 1); // as long as it runs
        }

        CNetRequest& request_;
    };
    request_->setSendDataSource(new CReplacingSource(&alive, *request_));
    EXPECT_EQ(curl().seek(3, 0), CURL_SEEKFUNC_OK);
    EXPECT_EQ(alive, 0);
    request_->setSendDataSource(new CReplacingSource(&alive, *request_));
    char buffer[4];
    EXPECT_EQ(curl().read(buffer, 1, 4), 4U);
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(curl().read(buffer, 1, 4), 0U);
}

TEST_F(SeekCallback, FromTheStartSeeksTheOffset) {
    EXPECT_EQ(curl().seek(3, 0), CURL_SEEKFUNC_OK);
    EXPECT_THAT(source_->takeCalls(), ElementsAre("seek 3"));
}

TEST_F(SeekCallback, FromTheCurrentPositionAddsIt) {
    source_->position = 4;
    EXPECT_EQ(curl().seek(-3, 1), CURL_SEEKFUNC_OK);
    EXPECT_THAT(source_->takeCalls(), ElementsAre("position", "seek 1"));
}

TEST_F(SeekCallback, FromTheEndAddsTheSize) {
    EXPECT_EQ(curl().seek(-1, 2), CURL_SEEKFUNC_OK);
    EXPECT_THAT(source_->takeCalls(), ElementsAre("size", "seek 9"));
}

TEST_F(SeekCallback, FromTheEndFailsWhenTheSizeIsUnknown) {
    source_->claimedSize = -1;
    EXPECT_EQ(curl().seek(0, 2), 1);
    EXPECT_THAT(source_->takeCalls(), ElementsAre("size"));
    EXPECT_EQ(takePendingError(), nothingThrown);
}

TEST_F(SeekCallback, FromAnywhereElseFailsWithoutAskingTheSource) {
    for (const int origin : {-1, 3, 7, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        EXPECT_EQ(curl().seek(0, origin), 1) << origin;
    }
    EXPECT_THAT(source_->takeCalls(), IsEmpty());
    EXPECT_EQ(takePendingError(), nothingThrown);
}

TEST_F(SeekCallback, FailsWithoutASource) {
    request_->setSendDataSource(nullptr);
    for (const int origin : {0, 1, 2, 7}) EXPECT_EQ(curl().seek(0, origin), 1) << origin;
    EXPECT_EQ(takePendingError(), nothingThrown);
}

TEST_F(SeekCallback, SeeksFarBeyondFourGigabytes) {
    EXPECT_EQ(curl().seek(5000000000, 0), CURL_SEEKFUNC_OK);
    EXPECT_THAT(source_->takeCalls(), ElementsAre("seek 5000000000"));
}

TEST_F(SeekCallback, FailsAndStoresWhatTheSourceThrowsAtAnyOfItsOperations) {
    struct Operation {
        FaultPoint& point;
        int origin;
    };
    for (const Operation operation :
         {Operation{source_->seeks, 0}, Operation{source_->seeks, 1}, Operation{source_->seeks, 2},
          Operation{source_->positions, 1}, Operation{source_->sizes, 2}}) {
        for (const Fault& fault : getFaults()) {
            request_->setAsyncInfo(false, CURLE_OK);
            operation.point = {};
            operation.point.failAt(1, fault.raise);
            EXPECT_EQ(curl().seek(1, operation.origin), CURL_SEEKFUNC_FAIL) << fault.name;
            EXPECT_EQ(takePendingError(), fault.asTransferred) << fault.name;
            operation.point.clear();
        }
    }
}

// Header

TEST_F(HeaderCallback, CollectsStatusHeadersAndEveryLine) {
    curl().headers({"HTTP/1.1 200 OK\r\n", "Set-Cookie: a=1\r\n", "X-Long: part one\r\n", "  part two\r\n",
                    "Set-Cookie: b=2\r\n", "\r\n"});
    EXPECT_EQ(request_->getHTTPStatusLine(), "HTTP/1.1 200 OK");
    EXPECT_EQ(plain(request_->getResponseHeaderMap()),
              (Headers{{"set-cookie", "a=1,b=2"}, {"x-long", "part one part two"}}));
    EXPECT_THAT(getResponseInfo(*request_),
                ElementsAre("HTTP/1.1 200 OK\r\n", "Set-Cookie: a=1\r\n", "X-Long: part one\r\n",
                            "  part two\r\n", "Set-Cookie: b=2\r\n", "\r\n"));
}

TEST_F(HeaderCallback, StartsAnewWithEachStatusLine) {
    curl().headers({"HTTP/1.1 100 Continue\r\n", "A: interim\r\n", "\r\n", "HTTP/1.1 302 Found\r\n",
                    "A: redirect\r\n", "Location: /x\r\n", "\r\n", "HTTP/2 200 \r\n", "B: final\r\n",
                    "\r\n"});
    EXPECT_EQ(request_->getHTTPStatusLine(), "HTTP/2 200");
    EXPECT_EQ(plain(request_->getResponseHeaderMap()), (Headers{{"b", "final"}}));
    EXPECT_EQ(getResponseInfo(*request_).size(), 10U);
}

TEST_F(HeaderCallback, TellsAStatusLineByItsUpperCaseStart) {
    curl().headers({"HTTP/1.1 200 OK\r\n", "http/1.1 X: 404\r\n"});
    EXPECT_EQ(request_->getHTTPStatusLine(), "HTTP/1.1 200 OK");
    EXPECT_EQ(plain(request_->getResponseHeaderMap()), (Headers{{"http/1.1 x", "404"}}));
}

TEST_F(HeaderCallback, OnlyKeepsTheLinesOfOtherProtocols) {
    request_->setURL("ftp://example.org/");
    curl().headers({"220 Ready: go\r\n", "HTTP/1.1 200 OK\r\n", "530 Nein, für dich nicht.\r\n"});
    EXPECT_EQ(request_->getHTTPStatusLine(), "");
    EXPECT_THAT(plain(request_->getResponseHeaderMap()), IsEmpty());
    EXPECT_THAT(getResponseInfo(*request_),
                ElementsAre("220 Ready: go\r\n", "HTTP/1.1 200 OK\r\n", "530 Nein, für dich nicht.\r\n"));
}

TEST_F(HeaderCallback, LogsABadLineAndGoesOnWithTheOthers) {
    const LogCapture log;
    curl().headers(
        {"HTTP/1.1 200 OK\r\n", "A: b\r\n", "no colon here\r\n", ": no name\r\n", "C: d\r\n", "\r\n"});
    EXPECT_EQ(plain(request_->getResponseHeaderMap()), (Headers{{"a", "b"}, {"c", "d"}}));
    EXPECT_EQ(getResponseInfo(*request_).size(), 6U);
    EXPECT_THAT(
        log.getEntries(),
        ElementsAre("warning: Exception during CNetRequest header parsing (ignored). [entry contains no ':']",
                    "warning: Exception during CNetRequest header parsing (ignored). [name is empty]"));
}

TEST_F(HeaderCallback, LogsAFoldedLineWithNothingBefore) {
    const LogCapture log;
    curl().headers({"HTTP/1.1 200 OK\r\n", " folded\r\n", "A: b\r\n"});
    EXPECT_EQ(plain(request_->getResponseHeaderMap()), (Headers{{"a", "b"}}));
    EXPECT_THAT(
        log.getEntries(),
        ElementsAre("warning: Exception during CNetRequest header parsing (ignored). [Error parsing HTTP "
                    "header: first line starts with whitespace.]"));
}

TEST_F(HeaderCallback, ReadsALineThatIsNotUTF8AsLatin1) {
    const LogCapture log;
    curl().headers({"HTTP/1.1 200 Nat\xFCrlich\r\n",
                    "X-Gr\xF6\xDF"
                    "e: gro\xDF\r\n",
                    "X-Utf: größer\r\n", "\r\n"});
    EXPECT_EQ(request_->getHTTPStatusLine(), "HTTP/1.1 200 Natürlich");
    EXPECT_EQ(plain(request_->getResponseHeaderMap()), (Headers{{"x-größe", "groß"}, {"x-utf", "größer"}}));
    EXPECT_THAT(getResponseInfo(*request_),
                ElementsAre("HTTP/1.1 200 Natürlich\r\n", "X-Größe: groß\r\n", "X-Utf: größer\r\n", "\r\n"));
    EXPECT_THAT(log.getEntries(), IsEmpty());
}

TEST_F(HeaderCallback, ReadsALineOfAnotherProtocolThatIsNotUTF8AsLatin1) {
    request_->setURL("ftp://example.org/");
    curl().headers({"550 Nicht f\xFCr dich.\r\n"});
    EXPECT_THAT(getResponseInfo(*request_), ElementsAre("550 Nicht für dich.\r\n"));
}

TEST_F(HeaderCallback, TakesAHugeLine) {
    const std::string value(1U << 20U, 'v');
    curl().headers({"HTTP/1.1 200 OK\r\n", "X-Huge: " + value + "\r\n"});
    EXPECT_EQ(plain(request_->getResponseHeaderMap()), (Headers{{"x-huge", value}}));
    EXPECT_EQ(getResponseInfo(*request_).at(1), "X-Huge: " + value + "\r\n");
}

TEST_F(HeaderCallback, TakesAnEmptyLineAsALineWithoutColon) {
    const LogCapture log;
    EXPECT_EQ(curl().header(""), 0U);
    EXPECT_THAT(
        log.getEntries(),
        ElementsAre(
            "warning: Exception during CNetRequest header parsing (ignored). [entry contains no ':']"));
}

TEST_F(HeaderCallback, IgnoresTrailersInTheMapButKeepsTheirLines) {
    curl().headers({"HTTP/1.1 200 OK\r\n", "A: b\r\n", "\r\n", "Trailer: t\r\n"});
    EXPECT_EQ(plain(request_->getResponseHeaderMap()), (Headers{{"a", "b"}}));
    EXPECT_EQ(getResponseInfo(*request_).back(), "Trailer: t\r\n");
}

TEST_F(HeaderCallback, GivesTheLinesSoFarToWhoeverAsksInTheMiddle) {
    const CNetStringList& lines = request_->getResponseInfo();
    EXPECT_EQ(lines.getSList(), nullptr);
    curl().headers({"HTTP/1.1 200 OK\r\n", "A: b\r\n"});
    EXPECT_THAT(getResponseInfo(*request_), ElementsAre("HTTP/1.1 200 OK\r\n", "A: b\r\n"));
    EXPECT_THAT(getResponseInfo(*request_), ElementsAre("HTTP/1.1 200 OK\r\n", "A: b\r\n"));
    curl().headers({"\r\n", "C: d\r\n"});
    EXPECT_THAT(getResponseInfo(*request_),
                ElementsAre("HTTP/1.1 200 OK\r\n", "A: b\r\n", "\r\n", "C: d\r\n"));
    EXPECT_EQ(&request_->getResponseInfo(), &lines);
}

TEST_F(HeaderCallback, TellsTheServerRecordWhenTheHeadersAreComplete) {
    const P<CServerInfo> info = new CServerInfo();
    request_->setServerInfoToUpdate(info);
    curl().headers({"HTTP/1.1 200 OK\r\n", "Server: DAV/2 Python/3.6\r\n"});
    EXPECT_EQ(info->getServerHeader(), "");
    curl().headers({"\r\n"});
    EXPECT_EQ(info->getServerHeader(), "DAV/2 Python/3.6");
    EXPECT_TRUE(info->areGetRangesBroken());
}

TEST_F(HeaderCallback, HurriesLibcurlOnToADataConnection) {
    const auto callsOf = [&](const char* url, const std::string& line) {
        request_->setURL(url);
        recorder_.takeCalls();
        curl().headers({line});
        return recorder_.takeCalls();
    };
    for (const char* url : {"ftp://h/f", "ftps://h/f"}) {
        EXPECT_THAT(callsOf(url, "229 Entering Extended Passive Mode (|||1|)\r\n"),
                    ElementsAre("pause 1", "pause 0"));
        EXPECT_THAT(callsOf(url, "227 Entering Passive Mode (127,0,0,1,0,1)\r\n"),
                    ElementsAre("pause 1", "pause 0"));
        EXPECT_THAT(callsOf(url, "220 ready\r\n"), IsEmpty());
        EXPECT_THAT(callsOf(url, "229-ready\r\n"), IsEmpty());
    }
    EXPECT_THAT(callsOf("http://h/f", "229 Entering Extended Passive Mode (|||1|)\r\n"), IsEmpty());
}

TEST_F(HeaderCallback, TellsOnlyTheServerRecordGivenLast) {
    static std::atomic<int> alive; // outlives the request
    alive = 0;
    class CCountedInfo : public CServerInfo {
    public:
        explicit CCountedInfo(std::atomic<int>* count) : counted_(count) {}

    private:
        CCounted counted_;
    };
    request_->setServerInfoToUpdate(new CCountedInfo(&alive));
    EXPECT_EQ(alive, 1);
    const P<CServerInfo> second = new CServerInfo();
    request_->setServerInfoToUpdate(second);
    EXPECT_EQ(alive, 0);
    curl().headers({"HTTP/1.1 200 OK\r\n", "Server: s/1\r\n", "\r\n"});
    EXPECT_EQ(second->getServerHeader(), "s/1");
}

} // namespace

} // namespace vantra::test
