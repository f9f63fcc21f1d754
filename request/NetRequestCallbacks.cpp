#include "request/CallbackTrampolines.h"
#include "vantra/HTTPStatusLine.h"
#include "vantra/NetRequest.h"

#include <kel/Log.h>

#include <cstdio>

namespace vantra {

using kel::CStdExceptionError;
using kel::int64;
using kel::String;

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
    if (!receiveSink_) return length;
    try {
        if (httpStatusCode_ == -1 && isHTTP_) settleStatusCode();
        receiveSink_->write(data, static_cast<unsigned int>(length), httpStatusCode_, getResponseHeaderMap());
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
        return sendDataSource_->read(buffer, static_cast<unsigned int>(size * nmemb), getResponseHeaderMap());
    } catch (...) {
        storePendingError();
        return CURL_READFUNC_ABORT;
    }
}

int CNetRequest::seekHandler(int64 offset, int origin) noexcept {
    if (!sendDataSource_) return CURL_SEEKFUNC_FAIL;
    try {
        switch (origin) {
        case SEEK_SET:
            sendDataSource_->seek(offset);
            return CURL_SEEKFUNC_OK;
        case SEEK_CUR:
            sendDataSource_->seek(offset + sendDataSource_->getPosition());
            return CURL_SEEKFUNC_OK;
        case SEEK_END: {
            const int64 size = sendDataSource_->getSize();
            if (size == -1) return CURL_SEEKFUNC_FAIL;
            sendDataSource_->seek(offset + size);
            return CURL_SEEKFUNC_OK;
        }
        default:
            return CURL_SEEKFUNC_FAIL;
        }
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
    if (!isHTTP_) return;
    if (headerLine_.startsWith(L"HTTP/")) {
        if (!httpStatusLine_.isEmpty()) headerAssembler_.reset();
        httpStatusLine_ = headerLine_.trim();
    } else {
        headerAssembler_.handleHeaderLine(headerLine_);
    }
}

} // namespace vantra
