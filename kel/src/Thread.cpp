#include "kel/Thread.h"

#include "kel/Log.h"
#include "kel/SafeGlobal.h"
#include "Platform.h"

#include <chrono>
#include <list>
#include <mutex>
#include <system_error>
#include <utility>

namespace kel {

namespace {

/// The handles of threads whose objects were let go of on the threads themselves, where nobody could join
/// them. Every start() joins those that have ended, the end of the process all of them.
class CDisownedThreads {
public:
    /// Never destroyed: a thread may come to its end during the end of the process.
    static CDisownedThreads& get() {
        static CDisownedThreads* const threads = [] {
            CSafeGlobalDisposer::get().addDisposeFunc([] { get().joinAll(); });
            return new CDisownedThreads();
        }();
        return *threads;
    }

    void add(std::thread thread) {
        const std::lock_guard lock(mutex_);
        entries_.push_back({std::move(thread), false});
    }

    /// To be called on the thread as its last act.
    void markCurrentEnded() {
        const std::lock_guard lock(mutex_);
        for (Entry& entry : entries_) {
            if (entry.thread.get_id() == std::this_thread::get_id()) entry.ended = true;
        }
    }

    void joinEnded() {
        join([](const Entry& entry) { return entry.ended; });
    }

    void joinAll() {
        join([](const Entry&) { return true; });
    }

private:
    struct Entry {
        std::thread thread;
        bool ended;
    };

    template <class Condition>
    void join(Condition condition) {
        // Joined outside the lock, which the threads themselves need to come to their end.
        for (std::thread& thread : take(condition)) thread.join();
    }

    template <class Condition>
    std::list<std::thread> take(Condition condition) {
        const std::lock_guard lock(mutex_);
        std::list<std::thread> taken;
        for (auto entry = entries_.begin(); entry != entries_.end();) {
            // No thread can wait for itself; its own handle is left to the next one.
            const bool isCurrent = entry->thread.get_id() == std::this_thread::get_id();
            if (!isCurrent && condition(*entry)) {
                taken.push_back(std::move(entry->thread));
                entry = entries_.erase(entry);
            } else {
                ++entry;
            }
        }
        return taken;
    }

    std::mutex mutex_;
    std::list<Entry> entries_;
};

void sleepInSystem(int milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); }

std::atomic<CThread::SleepFunction> replacedSleep{nullptr};

} // namespace

CThread::CThread(IRunnable* runnable, bool stopOnDelete) : runnable_(runnable), stopOnDelete_(stopOnDelete) {}

CThread::~CThread() {
    stopSignalled_.store(true, std::memory_order_release);
    if (!thread_.joinable()) return;
    if (thread_.get_id() != getCurrentID()) {
        thread_.join();
        return;
    }
    // The last reference went when the thread had left threadMain() already, with its thread-local objects.
    CDisownedThreads::get().add(std::move(thread_));
    CDisownedThreads::get().markCurrentEnded();
}

void CThread::start() {
    CDisownedThreads::get().joinEnded();
    CMutexLock lock(mutex_);
    if (started_) throw CError("Thread " + describe() + " was started before.");
    alive_.store(true, std::memory_order_release);
    try {
        thread_ = std::thread([this] { threadMain(); });
    } catch (const std::exception& exception) {
        alive_.store(false, std::memory_order_release);
        throw CError("Error starting thread " + describe() + ".", String(), -1, CProps(),
                     CStdExceptionError::exceptionToError(exception).get());
    }
    started_ = true;
    id_ = thread_.get_id();
}

void CThread::stop(bool wait) {
    signalStop();
    if (wait) join();
}

void CThread::signalStop() { stopSignalled_.store(true, std::memory_order_release); }

bool CThread::checkContinue() { return !stopSignalled_.load(std::memory_order_acquire); }

void CThread::join() {
    {
        CMutexLock lock(mutex_);
        if (!started_ || isOwnThread()) return;
    }
    CMutexLock lock(joinMutex_);
    if (thread_.joinable()) thread_.join();
}

CThread::ID CThread::getID() const {
    CMutexLock lock(mutex_);
    // The system gives the identity of a thread that has ended to another one.
    return isAlive() ? id_ : ID();
}

void CThread::setThreadName(const String& name) {
    CMutexLock lock(mutex_);
    name_ = name;
}

String CThread::getThreadName() const {
    CMutexLock lock(mutex_);
    return name_;
}

PC<CError> CThread::getRunError() const {
    CMutexLock lock(mutex_);
    return runError_;
}

void CThread::sleep(int milliseconds) {
    if (milliseconds <= 0) return;
    const SleepFunction replaced = replacedSleep.load(std::memory_order_acquire);
    (replaced ? replaced : &sleepInSystem)(milliseconds);
}

CThread::SleepFunction CThread::setSleepFunction(SleepFunction function) {
    return replacedSleep.exchange(function, std::memory_order_acq_rel);
}

void CThread::deleteThis() noexcept {
    // The waiting below may let references be taken and given back again, on the thread above all.
    if (deletionBegun_.exchange(true, std::memory_order_acq_rel)) return;
    try {
        if (isOwnThread()) {
            if (isAlive()) {
                deleteAfterRun_ = true;
                CDisownedThreads::get().add(std::move(thread_));
                signalStop();
                return;
            }
        } else if (stopOnDelete_) {
            stop(true);
        }
    } catch (...) {
        onExceptionInDestructorIgnored("CThread");
        if (deleteAfterRun_) return;
    }
    CBase::deleteThis();
}

void CThread::runImpl() {
    if (runnable_) runnable_->run();
}

void CThread::onRunFinished() {}

void CThread::onThreadExit() {}

void CThread::threadMain() noexcept {
    {
        // Lets start() come to its end first: whoever called it may let go of the object from then on.
        CMutexLock lock(mutex_);
    }
    runGuarded([this] {
        const String name = getThreadName();
        if (!name.isEmpty()) platform::setCurrentThreadName(name);
        runImpl();
    });
    runGuarded([this] { onRunFinished(); });
    alive_.store(false, std::memory_order_release);
    if (!deleteAfterRun_) return;
    CBase::deleteThis();
    CDisownedThreads::get().markCurrentEnded();
}

template <class Function>
void CThread::runGuarded(Function function) noexcept {
    try {
        function();
    } catch (...) {
        onRunException();
    }
}

void CThread::onRunException() noexcept {
    try {
        const P<CError> error = CStdExceptionError::currentExceptionToError();
        {
            CMutexLock lock(mutex_);
            if (!runError_) runError_ = error;
        }
        logError(error.get(), "Exception in thread " + describe() + ".");
    } catch (...) {
        // Out of memory: the thread ends all the same.
    }
}

String CThread::describe() const {
    CMutexLock lock(mutex_);
    return name_.isEmpty() ? String("(unnamed)") : name_;
}

bool CThread::isOwnThread() const {
    CMutexLock lock(mutex_);
    return id_ == getCurrentID();
}

void threadYield(bool sleepBriefly) {
    if (sleepBriefly)
        sleepInSystem(1);
    else
        std::this_thread::yield();
}

} // namespace kel
