#include "CurlRecorder.h"
#include "Doubles.h"
#include "Thrown.h"

#include "vantra/NetRequest.h"

#include <kel/MemoryStream.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantra::test {

namespace {

using kel::CMemoryInStream;
using kel::CMemoryStream;
using kel::int64;
using kel::P;
using kel::String;
using kel::TBuffer;
using testing::ElementsAre;
using testing::IsEmpty;

using ByteBuffer = TBuffer<unsigned char>;

P<ByteBuffer> makeBuffer(std::string_view bytes) {
    return new ByteBuffer(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

std::string textOf(const ByteBuffer& buffer) { return {buffer.begin(), buffer.end()}; }

/// A stream whose operations are noted and whose answers are fixed.
class CNotingStream : public CCounted, public kel::IInStream, public kel::IOutStream {
public:
    using CCounted::CCounted;

    std::size_t read(void* buffer, std::size_t maxLength) override {
        calls.push_back("read " + std::to_string(maxLength));
        static_cast<char*>(buffer)[0] = 'r';
        return 1;
    }
    int64 getSize() override {
        calls.emplace_back("size");
        return 5000000000;
    }
    void seek(int64 position) override { calls.push_back("seek " + std::to_string(position)); }
    int64 getPosition() override {
        calls.emplace_back("position");
        return 4000000000;
    }
    void write(const void* data, std::size_t length) override {
        calls.push_back("write " + std::string(static_cast<const char*>(data), length));
    }
    void flush() override { calls.emplace_back("flush"); }

    std::vector<std::string> calls;
};

TEST(StreamDataSink, WritesTheBlockWhateverTheStatusAndTheHeaders) {
    const P<CNotingStream> stream = new CNotingStream();
    const P<CNetRequest::CStreamDataSink> sink = new CNetRequest::CStreamDataSink(stream);
    sink->write("abc", 3, 404, {{"a", "b"}});
    sink->write("de", 2, -1, {});
    EXPECT_THAT(stream->calls, ElementsAre("write abc", "write de"));
}

TEST(StreamDataSink, NeedsAStream) {
    EXPECT_EQ(thrownBy([] {
                  const P<CNetRequest::CStreamDataSink> sink = new CNetRequest::CStreamDataSink(nullptr);
              }),
              invalidArgError("CNetRequest::CStreamDataSink::CStreamDataSink", "stream must not be null"));
}

TEST(StreamDataSource, IsTheStreamsReadSizeSeekAndPosition) {
    const P<CNotingStream> stream = new CNotingStream();
    const P<CNetRequest::CStreamDataSource> source = new CNetRequest::CStreamDataSource(stream);
    char buffer[10] = {};
    EXPECT_EQ(source->read(buffer, 10, {{"a", "b"}}), 1U);
    EXPECT_EQ(buffer[0], 'r');
    EXPECT_EQ(source->getSize(), 5000000000);
    source->seek(3000000000);
    EXPECT_EQ(source->getPosition(), 4000000000);
    EXPECT_THAT(stream->calls, ElementsAre("read 10", "size", "seek 3000000000", "position"));
}

TEST(StreamDataSource, NeedsAStream) {
    EXPECT_EQ(
        thrownBy([] {
            const P<CNetRequest::CStreamDataSource> source = new CNetRequest::CStreamDataSource(nullptr);
        }),
        invalidArgError("CNetRequest::CStreamDataSource::CStreamDataSource", "stream must not be null"));
}

class RequestData : public testing::Test {
protected:
    RequestData() { recorder_.takeCalls(); }

    const LibcurlSide& curl() const { return recorder_.sideOf(request_->getHandle()); }

    /// Reads the source to its end as libcurl does.
    std::string readAll() const {
        std::string all;
        char buffer[7];
        while (const std::size_t length = curl().read(buffer, 1, sizeof buffer)) all.append(buffer, length);
        return all;
    }

    std::vector<std::string> takeCalls() { return recorder_.takeCalls(); }

    CurlRecorder recorder_;
    P<CTestRequest> request_ = new CTestRequest();
};

using ReceiveData = RequestData;
using SendData = RequestData;

// Receiving

TEST_F(ReceiveData, GoesToTheSink) {
    const P<CRecordingSink> sink = new CRecordingSink();
    request_->setReceiveDataSink(sink);
    EXPECT_FALSE(request_->usesDefaultReceiveBuffer());
    curl().write("body");
    EXPECT_EQ(sink->getBytes(), "body");
    EXPECT_EQ(getBody(*request_), "");
}

TEST_F(ReceiveData, GoesToTheStream) {
    const P<CMemoryStream> stream = new CMemoryStream();
    request_->setReceiveDataStream(stream);
    EXPECT_FALSE(request_->usesDefaultReceiveBuffer());
    curl().write("body, ");
    curl().write("more");
    EXPECT_EQ(textOf(*stream->getBuffer()), "body, more");
    EXPECT_EQ(getBody(*request_), "");
}

TEST_F(ReceiveData, IsDroppedWithoutASinkAndTheTransferSucceeds) {
    for (const auto& clear : {std::function<void()>([&] { request_->setReceiveDataStream(nullptr); }),
                              std::function<void()>([&] { request_->setReceiveDataSink(nullptr); })}) {
        clear();
        EXPECT_FALSE(request_->usesDefaultReceiveBuffer());
        recorder_.playTransfer(
            [](const LibcurlSide& curl) { return curl.write("body") == 4 ? CURLE_OK : CURLE_WRITE_ERROR; });
        EXPECT_EQ(thrownBy([&] { request_->perform(); }), nothingThrown);
        EXPECT_EQ(getBody(*request_), "");
    }
}

TEST_F(ReceiveData, GoesToTheDefaultBufferAgain) {
    request_->setReceiveDataSink(nullptr);
    request_->setDefaultReceiveDataStream();
    EXPECT_TRUE(request_->usesDefaultReceiveBuffer());
    curl().write("body");
    EXPECT_EQ(getBody(*request_), "body");
}

TEST_F(ReceiveData, OfEachTransferBeginsAtTheStartOfTheDefaultBuffer) {
    recorder_.playTransfer([](const LibcurlSide& curl) {
        curl.write("longer");
        return CURLE_OK;
    });
    request_->perform();
    const kel::PC<ByteBuffer> buffer = request_->getDefaultReceiveBuffer();
    recorder_.playTransfer([](const LibcurlSide& curl) {
        curl.write("s");
        return CURLE_OK;
    });
    request_->perform();
    EXPECT_EQ(getBody(*request_), "s");
    EXPECT_EQ(request_->getDefaultReceiveBuffer(), buffer);
}

TEST_F(ReceiveData, StaysInTheDefaultBufferAsLongAsSomebodyHoldsIt) {
    curl().write("body");
    const kel::PC<ByteBuffer> buffer = request_->getDefaultReceiveBuffer();
    request_ = nullptr;
    EXPECT_EQ(textOf(*buffer), "body");
}

TEST_F(ReceiveData, SinkAndStreamAreHeldUntilReplacedAndReleasedOnce) {
    static std::atomic<int> alive; // outlives the request
    alive = 0;
    request_->setReceiveDataSink(new CRecordingSink(&alive));
    EXPECT_EQ(alive, 1);
    request_->setReceiveDataStream(new CNotingStream(&alive));
    EXPECT_EQ(alive, 1);
    request_->setDefaultReceiveDataStream();
    EXPECT_EQ(alive, 0);
    request_->setReceiveDataSink(new CRecordingSink(&alive));
    request_ = nullptr;
    EXPECT_EQ(alive, 0);
}

TEST_F(ReceiveData, SinkSetAgainStaysInPlace) {
    static std::atomic<int> alive; // outlives the request
    alive = 0;
    auto* sink = new CRecordingSink(&alive);
    request_->setReceiveDataSink(sink);
    request_->setReceiveDataSink(sink);
    EXPECT_EQ(alive, 1);
    curl().write("x");
    EXPECT_EQ(sink->getBytes(), "x");
}

// Sending

TEST_F(SendData, SourceIsReadAndSetsNoSize) {
    const P<CRecordingSource> source = new CRecordingSource("from a source");
    request_->setSendDataSource(source);
    EXPECT_THAT(takeCalls(), Not(testing::Contains(testing::StartsWith("INFILESIZE"))));
    EXPECT_EQ(readAll(), "from a source");
}

TEST_F(SendData, StreamIsReadAndKeptAndSetsNoSize) {
    takeCalls();
    const P<ByteBuffer> buffer = makeBuffer("from a stream");
    const P<kel::IInStream> stream = new CMemoryInStream(buffer);
    request_->setSendDataStream(stream);
    EXPECT_EQ(request_->getSendDataStream(), stream);
    EXPECT_THAT(takeCalls(), IsEmpty());
    EXPECT_EQ(readAll(), "from a stream");
}

TEST_F(SendData, SourceMakesTheStreamForgotten) {
    request_->setSendDataStream(new CNotingStream());
    const P<CRecordingSource> source = new CRecordingSource("from a source");
    request_->setSendDataSource(source);
    EXPECT_EQ(request_->getSendDataStream(), nullptr);
    EXPECT_EQ(readAll(), "from a source");
}

TEST_F(SendData, NullSourceClearsBoth) {
    request_->setSendDataStream(new CNotingStream());
    request_->setSendDataSource(nullptr);
    EXPECT_EQ(request_->getSendDataStream(), nullptr);
    EXPECT_EQ(readAll(), "");
}

TEST_F(SendData, NullStreamClearsBoth) {
    request_->setSendDataStream(new CNotingStream());
    request_->setSendDataStream(nullptr);
    EXPECT_EQ(request_->getSendDataStream(), nullptr);
    EXPECT_EQ(readAll(), "");
}

TEST_F(SendData, StreamSetAgainStaysAlive) {
    static std::atomic<int> alive; // outlives the request
    alive = 0;
    request_->setSendDataStream(new CNotingStream(&alive));
    request_->setSendDataStream(request_->getSendDataStream());
    EXPECT_EQ(alive, 1);
    EXPECT_NE(request_->getSendDataStream(), nullptr);
}

TEST_F(SendData, StreamSetAgainByItsBarePointerStaysAlive) {
    static std::atomic<int> alive; // outlives the request
    alive = 0;
    auto* stream = new CNotingStream(&alive);
    request_->setSendDataStream(stream);
    request_->setSendDataStream(stream);
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(request_->getSendDataStream().get(), stream);
}

TEST_F(SendData, BufferIsReadInPlaceWithItsSize) {
    takeCalls();
    const P<ByteBuffer> buffer = makeBuffer(std::string_view("a\0b", 3));
    request_->setSendDataBuffer(buffer);
    EXPECT_THAT(takeCalls(), ElementsAre("INFILESIZE_LARGE = 3"));
    ASSERT_NE(request_->getSendDataStream(), nullptr);
    EXPECT_EQ(request_->getSendDataStream()->getSize(), 3);
    (*buffer)[0] = 'c';
    EXPECT_EQ(readAll(), std::string("c\0b", 3));
}

TEST_F(SendData, BufferOfAPostSetsItsSizeTwice) {
    request_->setHTTPMethod("POST");
    takeCalls();
    request_->setSendDataBuffer(makeBuffer("abc"));
    EXPECT_THAT(takeCalls(), ElementsAre("INFILESIZE_LARGE = 3", "POSTFIELDSIZE_LARGE = 3"));
}

TEST_F(SendData, BufferSetsTheSizeOfALaterPost) {
    request_->setSendDataBuffer(makeBuffer("abc"));
    takeCalls();
    request_->setHTTPMethod("POST");
    EXPECT_EQ(takeCalls().back(), "POSTFIELDSIZE_LARGE = 3");
}

TEST_F(SendData, EmptyBufferHasTheSizeZero) {
    takeCalls();
    request_->setSendDataBuffer(new ByteBuffer());
    EXPECT_THAT(takeCalls(), ElementsAre("INFILESIZE_LARGE = 0"));
    EXPECT_EQ(readAll(), "");
}

TEST_F(SendData, NullBufferClearsSourceAndSize) {
    request_->setSendDataBuffer(makeBuffer("abc"));
    takeCalls();
    request_->setSendDataBuffer(nullptr);
    EXPECT_THAT(takeCalls(), ElementsAre("INFILESIZE_LARGE = -1"));
    EXPECT_EQ(request_->getSendDataStream(), nullptr);
    EXPECT_EQ(readAll(), "");
}

TEST_F(SendData, BufferIsHeldByTheRequest) {
    request_->setSendDataBuffer(makeBuffer("only the request holds this"));
    EXPECT_EQ(readAll(), "only the request holds this");
}

TEST_F(SendData, TextIsSentAsUTF8WithTheNumberOfItsBytesAsSize) {
    takeCalls();
    request_->setSendDataAsUTF8("Grüße, 世界");
    EXPECT_THAT(takeCalls(), ElementsAre("INFILESIZE_LARGE = 15"));
    EXPECT_EQ(readAll(), "Grüße, 世界");
    ASSERT_NE(request_->getSendDataStream(), nullptr);
    EXPECT_EQ(request_->getSendDataStream()->getSize(), 15);
}

TEST_F(SendData, TextOfAPostSetsItsSizeTwice) {
    request_->setHTTPMethod("POST");
    takeCalls();
    request_->setSendDataAsUTF8("ä");
    EXPECT_THAT(takeCalls(), ElementsAre("INFILESIZE_LARGE = 2", "POSTFIELDSIZE_LARGE = 2"));
}

TEST_F(SendData, TextMayHoldNulCharactersAndBeEmpty) {
    request_->setSendDataAsUTF8(String(L"a\0b", 3));
    EXPECT_EQ(readAll(), std::string("a\0b", 3));
    takeCalls();
    request_->setSendDataAsUTF8("");
    EXPECT_THAT(takeCalls(), ElementsAre("INFILESIZE_LARGE = 0"));
    EXPECT_EQ(readAll(), "");
}

TEST_F(SendData, TextStartsAtPositionZeroSoThatTheFirstPerformNeedNotRewind) {
    request_->setSendDataAsUTF8("text");
    EXPECT_EQ(request_->getSendDataStream()->getPosition(), 0);
}

TEST_F(SendData, SizeAloneInstallsNoSource) {
    request_->setSendDataSize(4);
    EXPECT_EQ(request_->getSendDataStream(), nullptr);
    EXPECT_EQ(readAll(), "");
}

TEST_F(SendData, SourcesAndStreamsAreHeldUntilReplacedAndReleasedOnce) {
    static std::atomic<int> alive; // outlives the request
    alive = 0;
    request_->setSendDataSource(new CRecordingSource("data", &alive));
    EXPECT_EQ(alive, 1);
    request_->setSendDataStream(new CNotingStream(&alive));
    EXPECT_EQ(alive, 1);
    request_->setSendDataAsUTF8("text");
    EXPECT_EQ(alive, 0);
    request_->setSendDataSource(new CRecordingSource("data", &alive));
    request_ = nullptr;
    EXPECT_EQ(alive, 0);
}

TEST_F(SendData, StreamThatOnlyTheCallerHoldsNoLongerIsKept) {
    static std::atomic<int> alive; // outlives the request
    alive = 0;
    {
        const P<CNotingStream> stream = new CNotingStream(&alive);
        request_->setSendDataStream(stream);
    }
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(curl().seek(2, 0), CURL_SEEKFUNC_OK);
    request_->setSendDataStream(nullptr);
    EXPECT_EQ(alive, 0);
}

} // namespace

} // namespace vantra::test
