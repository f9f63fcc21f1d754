#include "request/SuccessStatus.h"
#include "vantra/NetRequest.h"

#include <kel/Log.h>

namespace vantra {

using kel::CError;
using kel::CMutexLock;
using kel::CStdExceptionError;
using kel::P;

void CNetRequest::setAsyncInfo(bool done, CURLcode result) {
    if (done) {
        finishAsync(result);
        return;
    }
    const CMutexLock lock(asyncMutex_);
    resetForPerform();
    asyncDoneSignal_->reset();
    asyncResult_ = result;
    asyncErrorMessage_.clear();
}

void CNetRequest::finishAsync(CURLcode result) noexcept {
    P<IDoneListener> listener;
    P<CError> failure;
    {
        const CMutexLock lock(asyncMutex_);
        try {
            settleAsyncResult(result);
        } catch (...) {
            storePendingError();
        }
        listener = doneListener_;
        if (listener) failure = getAsyncFailure();
        // Last, since whoever waits for it may at once reuse the request.
        asyncDoneSignal_->set();
    }
    try {
        if (listener) listener->onRequestDone(this, failure);
    } catch (const std::exception& error) {
        kel::logError(&error, "Exception in a done listener (ignored).");
    } catch (...) {
        kel::logError("Exception in a done listener (ignored).");
    }
}

void CNetRequest::settleAsyncResult(CURLcode result) {
    asyncResult_ = result;
    if (result == CURLE_OK) letConnectionBeReused();
    // Unlike perform() this looks at the URL as it is spelt: clients of "HTTP://" URLs rely on every response
    // counting as a success here.
    if (result == CURLE_OK && url_.startsWith(L"http") && !isSuccessStatus(getResponseCode()))
        asyncResult_ = CURLE_HTTP_RETURNED_ERROR;
    if (asyncResult_ == CURLE_OK) {
        asyncErrorMessage_.clear();
        if (pendingError_) asyncResult_ = CURLE_ABORTED_BY_CALLBACK;
    } else {
        asyncErrorMessage_ = getErrorMessage();
        // The report of the failure reads the headers, on any thread: they have to be there by then.
        static_cast<void>(getResponseHeaderMap());
    }
}

P<CError> CNetRequest::getAsyncFailure() const noexcept {
    try {
        throwAsyncFailure();
        return nullptr;
    } catch (const std::exception& error) {
        return CStdExceptionError::exceptionToError(error);
    }
}

void CNetRequest::throwAsyncFailure() const {
    if (pendingError_) pendingError_->throwClone();
    if (asyncResult_ == CURLE_OK) return;
    throwError(asyncResult_, getResponseCodeDomain(), getResponseCode(), asyncErrorMessage_);
}

void CNetRequest::checkAsyncResult() const {
    const CMutexLock lock(asyncMutex_);
    if (asyncDoneSignal_->isSet()) throwAsyncFailure();
}

bool CNetRequest::isAsyncDone() const { return asyncDoneSignal_->isSet(); }

bool CNetRequest::waitAsyncDone(int timeout) const { return asyncDoneSignal_->wait(timeout); }

void CNetRequest::setDoneListener(IDoneListener* listener) { doneListener_ = listener; }

} // namespace vantra
