#include "request/CallbackTrampolines.h"
#include "vantra/HTTPStatusLine.h"
#include "vantra/NetRequest.h"

#include <kel/Log.h>

#include <algorithm>
#include <cstdio>

namespace vantra {

using kel::CStdExceptionError;
using kel::int64;
using kel::P;
using kel::String;
using kel::TMap;

std::size_t CNetRequest::CallbackTrampolines::write(char* data, std::size_t size, std::size_t nmemb,
                                                    void* request) noexcept {
    return static_cast<CNetRequest*>(request)->writeHandler(data, size, nmemb);
}

std::size_t CNetRequest::CallbackTrampolines::read(char* buffer, std::size_t size, std::size_t nmemb,
                                                   void* request) noexcept {
    return static_cast<CNetRequest*>(request)->readHandler(buffer, size, nmemb);
}

int CNetRequest::CallbackTrampolines::seek(void* request, curl_off_t offset, int origin) noexcept {
    return static_cast<CNetRequest*>(request)->seekHandler(offset, origin);
}

std::size_t CNetRequest::CallbackTrampolines::header(char* line, std::size_t size, std::size_t nmemb,
                                                     void* request) noexcept {
    return static_cast<CNetRequest*>(request)->headerHandler(line, size * nmemb);
}

void CNetRequest::storePendingError() noexcept {
    try {
        if (!pendingError_) pendingError_ = CStdExceptionError::currentExceptionToError();
    } catch (...) {
        // No memory for the report: libcurl's own error for an aborted callback has to do.
    }
}

std::size_t CNetRequest::writeHandler(const char* data, std::size_t size, std::size_t nmemb) noexcept {
    const std::size_t length = size * nmemb;
    const P<IDataSink> sink = receiveSink_; // it may replace itself
    if (!sink) return length;
    try {
        if (httpStatusCode_ == -1 && isHTTP_) settleStatusCode();
        static const TMap<String, String> noHeaders;
        sink->write(data, static_cast<unsigned int>(length), httpStatusCode_,
                    sinkReadsHeaders_ ? getResponseHeaderMap() : noHeaders);
        return length;
    } catch (...) {
        storePendingError();
        return length == 0 ? 1 : 0; // any other number than the block's aborts
    }
}

void CNetRequest::settleStatusCode() {
    try {
        httpStatusCode_ = getStatusCodeFromHTTPStatusLine(httpStatusLine_);
    } catch (const std::exception& error) {
        kel::logError(&error, "Error parsing HTTP status line - ignoring (statusLine: '" + httpStatusLine_ +
                                  "', method: '" + method_ + "', URL: '" + url_ + "')");
        httpStatusCode_ = 0;
    }
}

std::size_t CNetRequest::readHandler(char* buffer, std::size_t size, std::size_t nmemb) noexcept {
    if (!sendDataSource_) return 0;
    try {
        return readSendData(buffer, limitToSendData(size * nmemb));
    } catch (...) {
        storePendingError();
        return CURL_READFUNC_ABORT;
    }
}

/// libcurl would send all that a read gives, what lies behind the announced end of the body included.
std::size_t CNetRequest::limitToSendData(std::size_t length) const noexcept {
    if (sendDataSize_ < 0) return length;
    const int64 left = std::max<int64>(sendDataSize_ - sendDataPosition_, 0);
    return left < static_cast<int64>(length) ? static_cast<std::size_t>(left) : length;
}

std::size_t CNetRequest::readSendData(char* buffer, std::size_t length) {
    if (length == 0) return 0;
    const P<IDataSource> source = sendDataSource_; // it may replace itself
    const unsigned int count =
        source->read(buffer, static_cast<unsigned int>(length), getResponseHeaderMap());
    sendDataPosition_ += count;
    return count;
}

int CNetRequest::seekHandler(int64 offset, int origin) noexcept {
    const P<IDataSource> source = sendDataSource_; // it may replace itself
    if (!source) return CURL_SEEKFUNC_FAIL;
    try {
        switch (origin) {
        case SEEK_SET:
            break;
        case SEEK_CUR:
            offset += source->getPosition();
            break;
        case SEEK_END: {
            const int64 size = source->getSize();
            if (size == -1) return CURL_SEEKFUNC_FAIL;
            offset += size;
            break;
        }
        default:
            return CURL_SEEKFUNC_FAIL;
        }
        source->seek(offset);
        sendDataPosition_ = offset;
        return CURL_SEEKFUNC_OK;
    } catch (...) {
        storePendingError();
        return CURL_SEEKFUNC_FAIL;
    }
}

std::size_t CNetRequest::headerHandler(const char* line, std::size_t length) noexcept {
    try {
        handleHeaderLine({line, length});
    } catch (const std::exception& error) {
        kel::logWarning(&error, "Exception during CNetRequest header parsing (ignored).");
    } catch (...) {
        kel::logWarning("Exception during CNetRequest header parsing (ignored).");
    }
    return length;
}

void CNetRequest::handleHeaderLine(std::string_view line) {
    if (String::tryFromUTF8(line, headerLine_)) {
        addResponseLine(line);
    } else {
        headerLine_ = String::fromLatin1(line);
        addResponseLine(headerLine_.toUTF8());
    }
    if (!isHTTP_) {
        watchFTPReply(line);
        return;
    }
    if (headerLine_.startsWith(L"HTTP/")) {
        if (!httpStatusLine_.isEmpty()) headerAssembler_.reset();
        httpStatusLine_ = headerLine_.trim();
    } else {
        headerAssembler_.handleHeaderLine(headerLine_);
    }
}

} // namespace vantra
