/// @file vantra/AsyncNetRequestManager.h
/// Many transfers at once on one thread.
///
///     CAsyncNetRequestManager manager;
///     manager.addRequest(first);
///     manager.addRequest(second);
///     while (manager.getRequestCount() > 0) {
///         manager.waitForEvents(1000);
///         manager.handleEvents(nullptr);
///     }
///     first->checkAsyncResult(); // throws CCURLError
#pragma once

#include <curl/curl.h>

#include "vantra/Export.h"
#include "vantra/NetRequest.h"

#include <kel/Array.h>
#include <kel/Base.h>
#include <kel/P.h>

#include <memory>

namespace vantra {

/// Takes requests to run. Code that submits requests need not care whether they run on its own thread
/// (CAsyncNetRequestManager) or on a worker (CAsyncNetRequestThread).
class VANTRA_API IAsyncNetRequestManager : public virtual kel::IBase {
public:
    /// Starts a request; a reference is kept until it is done or removed. Its outcome is the request's own
    /// matter: CNetRequest::isAsyncDone, checkAsyncResult, setDoneListener.
    virtual void addRequest(CNetRequest* request) = 0;
    /// Takes a request away before it is done; it then never becomes done. Says whether it was there.
    virtual bool removeRequest(CNetRequest* request) = 0;
};

/// Runs requests on one libcurl multi handle, driven by a loop of waitForEvents and handleEvents. The wait is
/// a select(): it watches the sockets that a set holds, on Linux those whose numbers are below 1024, on
/// Windows 1024 of them (FD_SETSIZE, which the build raises from 64 for libcurl and this library). Any number
/// of transfers may run; those whose sockets are not watched go on whenever handleEvents() is called, thus
/// after a wait of 1000 ms at most.
///
/// Thread safety: one thread at a time, and the same one as long as requests run.
class VANTRA_API CAsyncNetRequestManager : public kel::CBase, public virtual IAsyncNetRequestManager {
public:
    /// @throws kel::CError "Error creating curl multi handle."; what CGlobalInit::get() throws.
    CAsyncNetRequestManager();
    /// A copy would share the multi handle.
    CAsyncNetRequestManager(const CAsyncNetRequestManager&) = delete;
    CAsyncNetRequestManager& operator=(const CAsyncNetRequestManager&) = delete;
    /// Takes every remaining request away, last to first, without marking it done.
    ~CAsyncNetRequestManager() override;

    /// Marks the request as running and attaches it. When it throws, the request is not attached by this
    /// call.
    /// @throws kel::CInvalidArgError "request must not be null"; what rewinding the request's source throws;
    /// CCURLError of the domain "curlm", such as for a request that is attached already.
    void addRequest(CNetRequest* request) override;
    /// False for null. @throws CCURLError of the domain "curlm"; the request is still attached then.
    bool removeRequest(CNetRequest* request) override;
    /// Removes every request, last to first. @throws CCURLError as removeRequest.
    void removeAllRequests();
    /// How many requests are attached.
    [[nodiscard]] int getRequestCount() const;

    /// Moves the transfers on and settles those that have finished: each is detached, then marked done, then
    /// its done listener is called. Returns how many they were.
    /// @param finished they are appended to it, in the order in which they finished; may be null.
    /// @throws CCURLError of the domain "curlm".
    virtual int handleEvents(kel::TArray<kel::P<CNetRequest>>* finished);
    /// Waits until a transfer can go on, at most `timeoutMs` milliseconds, and at most as long as libcurl's
    /// own timer or 1000 ms; a negative timeout means just that most. While there is no socket to watch, at
    /// most 100 ms.
    /// @throws CCURLError of the domain "curlm".
    virtual void waitForEvents(int timeoutMs);

protected:
    /// Detaches the request at this index of the array. @throws CCURLError; the request is still attached
    /// then.
    void removeRequest(int index);
    /// Settles what libcurl reports as finished; see handleEvents.
    int handleFinishedRequests(kel::TArray<kel::P<CNetRequest>>* finished);

private:
    struct HandleDeleter {
        void operator()(CURLM* handle) const noexcept { curl_multi_cleanup(handle); }
    };

    [[nodiscard]] int findRequest(const CURL* handle) const;

    std::unique_ptr<CURLM, HandleDeleter> handle_;
    kel::TArray<kel::P<CNetRequest>> requests_; // exactly those whose easy handles are attached
    bool callMultiPerform_ = false;             // libcurl wants to go on without waiting
};

} // namespace vantra
