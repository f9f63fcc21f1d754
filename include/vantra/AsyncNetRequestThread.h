/// @file vantra/AsyncNetRequestThread.h
/// Many transfers at once on a worker thread.
///
///     P<CAsyncNetRequestThread> thread = new CAsyncNetRequestThread(nullptr);
///     thread->start();
///     thread->addRequest(request);
///     request->waitAsyncDone(-1);
///     request->checkAsyncResult(); // throws CCURLError
#pragma once

#include "vantra/AsyncNetRequestManager.h"
#include "vantra/Export.h"

#include <kel/Array.h>
#include <kel/Mutex.h>
#include <kel/P.h>
#include <kel/Signal.h>
#include <kel/Thread.h>

namespace vantra {

/// A thread, "vantra.asyncNetRequest", that runs a CAsyncNetRequestManager of its own. The owner starts and
/// stops it with the operations of kel::CThread. libcurl's callbacks, done listeners and the progress handler
/// run on it.
///
/// An error of libcurl's multi interface, or one thrown while a request is attached, by the progress handler
/// or by what a subclass overrides, ends the thread (see kel::CThread::getRunError); its requests are then
/// detached without being marked done. onThreadExit() is not called then.
///
/// A subclass that overrides what the thread calls must call stop(true) in its own destructor, since its part
/// of the object goes before the destructor of this class stops the thread.
///
/// Thread safety: any thread may call any public member.
class VANTRA_API CAsyncNetRequestThread : public kel::CThread, public virtual IAsyncNetRequestManager {
public:
    /// Called on the worker once per turn of its loop: at least ten times a second while the thread runs, and
    /// not while a callback or listener blocks it.
    class VANTRA_API IProgressHandler : public virtual kel::IBase {
    public:
        /// What it throws ends the thread.
        virtual void handleProgress() = 0;
    };

    /// Does not start the thread. @param handler may be null; a reference is kept.
    explicit CAsyncNetRequestThread(IProgressHandler* handler);
    CAsyncNetRequestThread(const CAsyncNetRequestThread&) = delete;
    CAsyncNetRequestThread& operator=(const CAsyncNetRequestThread&) = delete;
    /// Stops the thread and waits for its end. Requests still running are detached without being marked done.
    ~CAsyncNetRequestThread() override;

    /// Hands a request over; the worker starts it within about 100 ms. Until then isAsyncDone() tells of its
    /// last transfer. Of several requests handed over between two turns the last is started first. On a
    /// thread that was not started it waits for the start; on one that has ended it is never started, and is
    /// let go of with the thread object.
    /// @throws kel::CInvalidArgError "request must not be null".
    void addRequest(CNetRequest* request) override;
    /// Has the worker detach a request, and waits until it has. True when it was running; false when it was
    /// not (finished, never added, or so lately added that the worker had yet to start it, which it then does
    /// all the same), when the thread does not run (one that is started later then detaches the request in
    /// its first turn), and always when called on the worker itself, which detaches the request on its next
    /// turn.
    /// @param request null for every request that runs; true then, even if there was none.
    bool removeRequest(CNetRequest* request) override;
    /// removeRequest(nullptr).
    void removeAllRequests();

protected:
    /// One removal order passed to the worker.
    class CRemoveRequest;

    void runImpl() override;
    /// Called on the worker when its loop has ended, while the manager and its requests are still there. The
    /// default does nothing.
    void onThreadExit() override;
    /// Carries out the removal orders that have come in.
    void processRemoveRequests(CAsyncNetRequestManager& manager);
    /// Called once per turn to move the transfers on. The default calls manager.handleEvents(nullptr).
    virtual void handleManagerEvents(CAsyncNetRequestManager& manager);

private:
    void processAddRequests(CAsyncNetRequestManager& manager);

    kel::CMutex addMutex_; // guards addQueue_
    kel::TArray<kel::P<CNetRequest>> addQueue_;
    kel::CMutex removeMutex_; // guards removeQueue_; never held together with addMutex_
    kel::TArray<kel::P<CRemoveRequest>> removeQueue_;
    kel::P<IProgressHandler> progressHandler_;
};

} // namespace vantra
