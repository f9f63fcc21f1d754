/// @file kel/Thread.h
/// Threads.
///
///     class CWorker : public kel::CThread {
///         void runImpl() override { while (checkContinue()) workABit(); }
///     };
///     kel::P<CWorker> worker = new CWorker();
///     worker->start();
///     worker->stop(true);
#pragma once

#include "kel/Base.h"
#include "kel/Error.h"
#include "kel/Mutex.h"
#include "kel/P.h"
#include "kel/String.h"

#include <atomic>
#include <thread>

namespace kel {

/// Something that a CThread can run in place of its own runImpl().
class KEL_API IRunnable : public virtual IBase {
public:
    /// Called once, on the thread. What it throws ends the thread.
    virtual void run() = 0;
};

/// One thread of execution, started at most once. A subclass overrides runImpl(), or a runnable is given.
///
/// An exception that leaves the run ends the thread: it is logged as an error, "Exception in thread NAME.",
/// and kept for getRunError(). NAME is "(unnamed)" for a thread without a name.
///
/// The last reference may go on any thread. When it goes on the thread itself, the run is asked to stop, and
/// the object goes once it is over; the end of the process waits for such a run. Whoever holds no reference
/// must not call a member, and an object with automatic storage must be joined, or destroyed by its owner, on
/// another thread.
///
/// Thread safety: any thread may call any public member.
class KEL_API CThread : public CBase {
public:
    /// What tells threads apart; the default value stands for none.
    using ID = std::thread::id;

    /// @param runnable what to run, or null for the object's own runImpl(); a reference is kept.
    /// @param stopOnDelete whether the release of the last reference stops a thread that still runs and waits
    /// for its end before the object goes. With false the owner must call stop(true) first.
    explicit CThread(IRunnable* runnable = nullptr, bool stopOnDelete = true);
    CThread(const CThread&) = delete;
    CThread& operator=(const CThread&) = delete;
    /// Stops the thread and waits for it. A subclass whose runImpl() uses its own members must call
    /// stop(true) in its own destructor, since those members go before this destructor runs.
    ~CThread() override;

    /// Starts the thread. One that was asked to stop before runs too, but finds checkContinue() false.
    /// @throws CError "Thread NAME was started before.", or "Error starting thread NAME." (with the cause) if
    /// the system has no thread to give.
    void start();
    /// Asks the thread to end; with `wait` also waits for the end, except on the thread itself.
    virtual void stop(bool wait);
    /// Makes checkContinue() false.
    virtual void signalStop();
    /// Whether the run shall go on: false once a stop was signalled.
    [[nodiscard]] virtual bool checkContinue();
    /// Waits for the end of a started thread; returns at once for one that was not, and on the thread itself.
    void join();

    /// Whether the thread was started and its run has not ended.
    [[nodiscard]] bool isAlive() const noexcept { return alive_.load(std::memory_order_acquire); }
    /// The identity of the running thread, from the moment start() returns; the default ID while isAlive() is
    /// false.
    [[nodiscard]] ID getID() const;
    /// The identity of the calling thread.
    [[nodiscard]] static ID getCurrentID() noexcept { return std::this_thread::get_id(); }
    /// The name the system shows for the thread, set when it starts, not later (the system may show only its
    /// first part).
    void setThreadName(const String& name);
    /// The name set last; empty when none was.
    [[nodiscard]] String getThreadName() const;
    /// The first exception that left the run, or null.
    [[nodiscard]] PC<CError> getRunError() const;

    /// Lets the calling thread sleep for the given milliseconds; nothing happens for 0 or less.
    static void sleep(int milliseconds);
    /// What sleep() calls in place of the system's sleep.
    using SleepFunction = void (*)(int milliseconds);
    /// Replaces the sleep of the whole process, for tests; null puts the system's back. Returns the one
    /// before, null for the system's.
    static SleepFunction setSleepFunction(SleepFunction function);

protected:
    void deleteThis() noexcept override;
    /// What the thread does; the default runs the runnable.
    virtual void runImpl();
    /// Called on the thread after runImpl() returned or threw, while the thread still counts as alive. What
    /// it throws is treated like an exception of the run.
    virtual void onRunFinished();
    /// For subclasses whose runImpl() wants to tell them that its loop is over; never called by CThread
    /// itself.
    virtual void onThreadExit();

private:
    void threadMain() noexcept;
    template <class Function>
    void runGuarded(Function function) noexcept;
    void onRunException() noexcept;
    [[nodiscard]] bool isOwnThread() const;
    /// The name for messages.
    [[nodiscard]] String describe() const;

    P<IRunnable> runnable_;
    const bool stopOnDelete_;
    mutable CMutex mutex_; // guards what comes next
    String name_;
    ID id_;
    bool started_ = false;
    PC<CError> runError_;
    CMutex joinMutex_; // held by the one who joins
    std::thread thread_;
    std::atomic<bool> stopSignalled_{false};
    std::atomic<bool> alive_{false};
    std::atomic<bool> deletionBegun_{false};
    bool deleteAfterRun_ = false; // used on the thread alone
};

/// Lets other threads run. With `sleepBriefly` the caller sleeps for about a millisecond, for loops that wait
/// for another thread's longer work; a replaced sleep is not asked.
KEL_API void threadYield(bool sleepBriefly);

} // namespace kel
