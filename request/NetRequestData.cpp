#include "request/OptionSetter.h"
#include "vantra/NetRequest.h"

#include <limits>

namespace vantra {

using kel::CInvalidArgError;
using kel::CMemoryInStream;
using kel::CMemoryStream;
using kel::IInStream;
using kel::int64;
using kel::IOutStream;
using kel::P;
using kel::String;
using kel::TBuffer;
using kel::TMap;

CNetRequest::CStreamDataSink::CStreamDataSink(IOutStream* stream) : stream_(stream) {
    if (!stream)
        throw CInvalidArgError("CNetRequest::CStreamDataSink::CStreamDataSink", "stream must not be null");
}

CNetRequest::CStreamDataSink::~CStreamDataSink() = default;

void CNetRequest::CStreamDataSink::write(const void* data, unsigned int length, int /*httpStatusCode*/,
                                         const TMap<String, String>& /*responseHeaders*/) {
    stream_->write(data, length);
}

CNetRequest::CStreamDataSource::CStreamDataSource(IInStream* stream) : stream_(stream) {
    if (!stream)
        throw CInvalidArgError("CNetRequest::CStreamDataSource::CStreamDataSource",
                               "stream must not be null");
}

CNetRequest::CStreamDataSource::~CStreamDataSource() = default;

unsigned int CNetRequest::CStreamDataSource::read(void* buffer, unsigned int maxLength,
                                                  const TMap<String, String>& /*responseHeaders*/) {
    return static_cast<unsigned int>(stream_->read(buffer, maxLength));
}

int64 CNetRequest::CStreamDataSource::getSize() { return stream_->getSize(); }

void CNetRequest::CStreamDataSource::seek(int64 position) { stream_->seek(position); }

int64 CNetRequest::CStreamDataSource::getPosition() { return stream_->getPosition(); }

void CNetRequest::setReceiveDataSink(IDataSink* sink) {
    receiveSink_ = sink;
    sinkReadsHeaders_ = true;
}

void CNetRequest::setReceiveDataStream(IOutStream* stream) {
    receiveSink_ = stream ? new CStreamDataSink(stream) : nullptr;
    sinkReadsHeaders_ = false;
}

void CNetRequest::setDefaultReceiveDataStream() {
    receiveSink_ = defaultReceiveSink_;
    sinkReadsHeaders_ = false;
}

bool CNetRequest::usesDefaultReceiveBuffer() const noexcept { return receiveSink_ == defaultReceiveSink_; }

void CNetRequest::setSendDataSource(IDataSource* source) {
    sendDataSource_ = source;
    sendDataPosition_ = 0;
    sendDataStream_ = nullptr;
}

void CNetRequest::setSendDataStream(IInStream* stream) {
    const P<IInStream> kept = stream; // setSendDataSource may let go of the caller's last reference
    setSendDataSource(stream ? new CStreamDataSource(stream) : nullptr);
    sendDataStream_ = kept;
}

void CNetRequest::setSendDataBuffer(const TBuffer<unsigned char>* buffer) {
    const P<IInStream> stream = buffer ? new CMemoryInStream(buffer) : nullptr;
    setSendDataStream(stream);
    setSendDataSize(buffer ? static_cast<int64>(buffer->getUsed()) : -1);
}

void CNetRequest::setSendDataAsUTF8(const String& text) {
    const std::string utf8 = text.toUTF8();
    const P<CMemoryStream> stream = new CMemoryStream();
    stream->write(utf8.data(), utf8.size());
    stream->seek(0);
    setSendDataStream(stream);
    setSendDataSize(static_cast<int64>(utf8.size()));
}

void CNetRequest::setRange(int64 offset, int64 length) {
    String range = String::fromInt(offset) + "-";
    if (length != -1) {
        // Beyond the largest number is as good as up to it.
        constexpr int64 largest = std::numeric_limits<int64>::max();
        const bool isBeyond = offset > 0 && length > largest - offset;
        range += String::fromInt(isBeyond ? largest : offset + length - 1);
    }
    setText(CURLOPT_RANGE, range);
}

void CNetRequest::setCustomHTTPHeaders(CNetHeaders* headers) {
    const P<CNetHeaders> kept = headers;
    setOption(CURLOPT_HTTPHEADER, headers ? headers->getSList() : nullptr);
    customHeaders_ = kept;
}

void CNetRequest::setServerInfoToUpdate(CServerInfo* info) { headerAssembler_.setServerInfoToUpdate(info); }

} // namespace vantra
