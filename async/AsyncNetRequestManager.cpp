#include "vantra/AsyncNetRequestManager.h"

#include "vantra/CURLError.h"
#include "vantra/GlobalInit.h"

#include <kel/Error.h>
#include <kel/PosixSelect.h>
#include <kel/Thread.h>

#include <algorithm>

namespace vantra {

using kel::CError;
using kel::CInvalidArgError;
using kel::CPosixSelect;
using kel::CThread;
using kel::P;
using kel::TArray;

namespace {

constexpr long longestWaitMs = 1000;
constexpr int longestWaitWithoutSocketsMs = 100;

void throwIfFailed(CURLMcode code) {
    if (code != CURLM_OK) throw CCURLError(code, "", "", -1, "", "", "", "");
}

} // namespace

CAsyncNetRequestManager::CAsyncNetRequestManager() {
    CGlobalInit::get();
    handle_.reset(curl_multi_init());
    if (!handle_) throw CError("Error creating curl multi handle.");
}

CAsyncNetRequestManager::~CAsyncNetRequestManager() {
    try {
        removeAllRequests();
    } catch (...) {
        kel::onExceptionInDestructorIgnored("vantra::CAsyncNetRequestManager");
    }
    handle_.reset(); // lets go of what is still attached, before its owners may go
}

void CAsyncNetRequestManager::addRequest(CNetRequest* request) {
    if (!request) throw CInvalidArgError("CAsyncNetRequestManager::addRequest", "request must not be null");
    request->setAsyncInfo(false, CURLE_OK);
    throwIfFailed(curl_multi_add_handle(handle_.get(), request->getHandle()));
    try {
        requests_.push_back(request);
    } catch (...) {
        curl_multi_remove_handle(handle_.get(), request->getHandle());
        throw;
    }
}

bool CAsyncNetRequestManager::removeRequest(CNetRequest* request) {
    const auto found =
        std::find_if(requests_.begin(), requests_.end(),
                     [request](const P<CNetRequest>& attached) { return attached.get() == request; });
    if (found == requests_.end()) return false;
    removeRequest(static_cast<int>(found - requests_.begin()));
    return true;
}

void CAsyncNetRequestManager::removeRequest(int index) {
    const auto position = requests_.begin() + index;
    throwIfFailed(curl_multi_remove_handle(handle_.get(), (*position)->getHandle()));
    const P<CNetRequest> removed = *position; // let go of after the array is in order again
    requests_.erase(position);
}

void CAsyncNetRequestManager::removeAllRequests() {
    for (int index = getRequestCount() - 1; index >= 0; --index) removeRequest(index);
}

int CAsyncNetRequestManager::getRequestCount() const { return static_cast<int>(requests_.size()); }

void CAsyncNetRequestManager::waitForEvents(int timeoutMs) {
    if (callMultiPerform_) return;
    fd_set read;
    fd_set write;
    fd_set exception;
    FD_ZERO(&read);
    FD_ZERO(&write);
    FD_ZERO(&exception);
    int maxFd = 0;
    throwIfFailed(curl_multi_fdset(handle_.get(), &read, &write, &exception, &maxFd));

    long curlTimeoutMs = 0;
    throwIfFailed(curl_multi_timeout(handle_.get(), &curlTimeoutMs));
    if (curlTimeoutMs == -1 || curlTimeoutMs > longestWaitMs) curlTimeoutMs = longestWaitMs;
    const int waitMs =
        static_cast<int>(timeoutMs < 0 || timeoutMs > curlTimeoutMs ? curlTimeoutMs : timeoutMs);

    if (maxFd == -1) {
        CThread::sleep(std::min(waitMs, longestWaitWithoutSocketsMs));
        return;
    }
    CPosixSelect::select(maxFd + 1, &read, &write, &exception, waitMs);
}

int CAsyncNetRequestManager::handleEvents(TArray<P<CNetRequest>>* finished) {
    int running = 0;
    const CURLMcode result = curl_multi_perform(handle_.get(), &running);
    if (result != CURLM_CALL_MULTI_PERFORM) throwIfFailed(result);
    callMultiPerform_ = result == CURLM_CALL_MULTI_PERFORM;
    return running == getRequestCount() ? 0 : handleFinishedRequests(finished);
}

int CAsyncNetRequestManager::findRequest(const CURL* handle) const {
    const auto found =
        std::find_if(requests_.begin(), requests_.end(),
                     [handle](const P<CNetRequest>& attached) { return attached->getHandle() == handle; });
    return found == requests_.end() ? -1 : static_cast<int>(found - requests_.begin());
}

int CAsyncNetRequestManager::handleFinishedRequests(TArray<P<CNetRequest>>* finished) {
    int count = 0;
    int messagesLeft = 0;
    while (const CURLMsg* message = curl_multi_info_read(handle_.get(), &messagesLeft)) {
        if (message->msg != CURLMSG_DONE) continue;
        const int index = findRequest(message->easy_handle);
        if (index == -1) continue;
        const CURLcode result = message->data.result; // the message goes with the handle
        const P<CNetRequest> request = requests_[static_cast<std::size_t>(index)];
        // Detached first: whoever waits for it may at once use the request again.
        removeRequest(index);
        ++count;
        request->setAsyncInfo(true, result);
        if (finished) finished->push_back(request);
    }
    return count;
}

} // namespace vantra
