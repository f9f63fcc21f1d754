#include "request/SuccessStatus.h"
#include "vantra/NetRequest.h"

namespace vantra {

using kel::CError;
using kel::P;
using kel::String;

void CNetRequest::perform() {
    resetForPerform();
    clearErrorBuffer();
    try {
        performTransfer();
    } catch (const CError& error) {
        notifyDoneListener(&error);
        throw;
    }
    notifyDoneListener(nullptr);
}

void CNetRequest::performTransfer() {
    const CURLcode result = curl_easy_perform(handle_.get());
    if (result == CURLE_OK) letConnectionBeReused();
    if (pendingError_) pendingError_->throwClone();
    const String domain = getResponseCodeDomain();
    const int responseCode = getResponseCode();
    if (result != CURLE_OK) throwError(result, domain, responseCode, "");
    if (domain == "http" && !isSuccessStatus(responseCode))
        throwError(CURLE_HTTP_RETURNED_ERROR, domain, responseCode, "");
}

void CNetRequest::notifyDoneListener(const CError* error) {
    const P<IDoneListener> listener = doneListener_; // it may replace itself
    if (listener) listener->onRequestDone(this, error);
}

void CNetRequest::resetForPerform() {
    if (customHeaders_) setCustomHTTPHeaders(customHeaders_);
    headerAssembler_.reset();
    httpStatusLine_.clear();
    httpStatusCode_ = -1;
    settleVerboseData();
    verboseMessages_.clear();
    pendingError_ = nullptr;
    clearResponseLines();
    defaultReceiveStream_->seek(0);
    defaultReceiveBuffer_->setUsed(0);
    sendDataPosition_ = 0;
    letConnectionBeReused();
    if (sendDataSource_ && sendDataSource_->getPosition() != 0) sendDataSource_->seek(0);
}

int CNetRequest::getResponseCode() const {
    return ftpRefusalCode_ != 0 ? ftpRefusalCode_ : getInfoLong(CURLINFO_RESPONSE_CODE);
}

int CNetRequest::getInfoLong(CURLINFO info) const {
    long value = 0;
    if ((static_cast<int>(info) & CURLINFO_TYPEMASK) != CURLINFO_LONG)
        throwError(CURLE_BAD_FUNCTION_ARGUMENT, "", -1, "the information is no integer");
    const CURLcode result = curl_easy_getinfo(handle_.get(), info, &value);
    if (result != CURLE_OK) throwError(result, "", -1, "");
    return static_cast<int>(value);
}

double CNetRequest::getInfoDouble(CURLINFO info) const {
    double value = 0;
    if ((static_cast<int>(info) & CURLINFO_TYPEMASK) != CURLINFO_DOUBLE)
        throwError(CURLE_BAD_FUNCTION_ARGUMENT, "", -1, "the information is no floating-point number");
    const CURLcode result = curl_easy_getinfo(handle_.get(), info, &value);
    if (result != CURLE_OK) throwError(result, "", -1, "");
    return value;
}

// libcurl calls these names deprecated in favour of integer ones of the same values.
CURL_IGNORE_DEPRECATION(
    double CNetRequest::getDownloadSize() const { return getInfoDouble(CURLINFO_CONTENT_LENGTH_DOWNLOAD); }

    double CNetRequest::getDownloadedBytes() const { return getInfoDouble(CURLINFO_SIZE_DOWNLOAD); }

    double CNetRequest::getUploadSize() const { return getInfoDouble(CURLINFO_CONTENT_LENGTH_UPLOAD); }

    double CNetRequest::getUploadedBytes() const { return getInfoDouble(CURLINFO_SIZE_UPLOAD); }

    double CNetRequest::getAvgDownloadSpeed() const { return getInfoDouble(CURLINFO_SPEED_DOWNLOAD); }

    double CNetRequest::getAvgUploadSpeed() const { return getInfoDouble(CURLINFO_SPEED_UPLOAD); })

} // namespace vantra
