#include "vantra/AsyncNetRequestThread.h"

#include <kel/Error.h>

namespace vantra {

using kel::CInvalidArgError;
using kel::CMutexLock;
using kel::P;

namespace {

constexpr int longestTurnWaitMs = 100;
constexpr int removalCheckMs = 250; // how often a waiting remover looks whether the worker still lives

} // namespace

class CAsyncNetRequestThread::CRemoveRequest : public kel::CBase {
public:
    explicit CRemoveRequest(CNetRequest* requestToRemove) : request(requestToRemove) {}

    P<CNetRequest> request; // null for all
    kel::CSignal done;      // set once the order is carried out
    bool result = false;    // written before `done` is set
};

CAsyncNetRequestThread::CAsyncNetRequestThread(IProgressHandler* handler)
    : CThread(nullptr, true), progressHandler_(handler) {
    setThreadName("vantra.asyncNetRequest");
}

CAsyncNetRequestThread::~CAsyncNetRequestThread() {
    try {
        stop(true);
    } catch (...) {
        kel::onExceptionInDestructorIgnored("vantra::CAsyncNetRequestThread");
    }
}

void CAsyncNetRequestThread::addRequest(CNetRequest* request) {
    if (!request) throw CInvalidArgError("CAsyncNetRequestThread::addRequest", "request must not be null");
    const CMutexLock lock(addMutex_);
    addQueue_.push_back(request);
}

bool CAsyncNetRequestThread::removeRequest(CNetRequest* request) {
    const P<CRemoveRequest> order = new CRemoveRequest(request);
    {
        const CMutexLock lock(removeMutex_);
        removeQueue_.push_back(order);
    }
    if (getID() == getCurrentID()) return false;
    while (isAlive()) {
        if (order->done.wait(removalCheckMs)) return order->result;
    }
    // It may have been carried out in the worker's last turn.
    return order->done.isSet() && order->result;
}

void CAsyncNetRequestThread::removeAllRequests() { removeRequest(nullptr); }

void CAsyncNetRequestThread::runImpl() {
    CAsyncNetRequestManager manager;
    while (checkContinue()) {
        processAddRequests(manager);
        processRemoveRequests(manager);
        manager.waitForEvents(longestTurnWaitMs);
        handleManagerEvents(manager);
        if (progressHandler_) progressHandler_->handleProgress();
    }
    onThreadExit();
}

void CAsyncNetRequestThread::onThreadExit() {}

void CAsyncNetRequestThread::processAddRequests(CAsyncNetRequestManager& manager) {
    const CMutexLock lock(addMutex_);
    while (!addQueue_.empty()) {
        const std::size_t last = addQueue_.size() - 1;
        manager.addRequest(addQueue_[last]);
        // By its position: rewinding the request's source may have added another behind it.
        addQueue_.erase(addQueue_.begin() + static_cast<std::ptrdiff_t>(last));
    }
}

void CAsyncNetRequestThread::processRemoveRequests(CAsyncNetRequestManager& manager) {
    const CMutexLock lock(removeMutex_);
    while (!removeQueue_.empty()) {
        const P<CRemoveRequest> order = removeQueue_.back();
        removeQueue_.pop_back();
        if (order->request) {
            order->result = manager.removeRequest(order->request);
        } else {
            manager.removeAllRequests();
            order->result = true;
        }
        order->done.set();
    }
}

void CAsyncNetRequestThread::handleManagerEvents(CAsyncNetRequestManager& manager) {
    manager.handleEvents(nullptr);
}

} // namespace vantra
