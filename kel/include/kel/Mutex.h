/// @file kel/Mutex.h
/// Mutual exclusion.
#pragma once

#include "kel/Export.h"

#include <mutex>

namespace kel {

/// A recursive mutex: the thread that holds it may take it again.
class KEL_API CMutex {
public:
    CMutex() = default;
    CMutex(const CMutex&) = delete;
    CMutex& operator=(const CMutex&) = delete;

    /// Waits until no other thread holds it. Each lock() needs an unlock().
    void lock() { mutex_.lock(); }
    /// Takes it only if no other thread holds it; says whether it did.
    [[nodiscard]] bool tryLock() { return mutex_.try_lock(); }
    /// Gives it back; only on the thread that took it.
    void unlock() { mutex_.unlock(); }

private:
    std::recursive_mutex mutex_;
};

/// Holds a mutex from construction to destruction, or to unlock().
class KEL_API CMutexLock {
public:
    /// Waits for the mutex, which must outlive the lock.
    explicit CMutexLock(CMutex& mutex) : mutex_(&mutex) { mutex_->lock(); }
    CMutexLock(const CMutexLock&) = delete;
    CMutexLock& operator=(const CMutexLock&) = delete;
    ~CMutexLock() { unlock(); }

    /// Gives the mutex back early; a second call does nothing.
    void unlock() {
        if (mutex_) mutex_->unlock();
        mutex_ = nullptr;
    }

private:
    CMutex* mutex_;
};

/// One mutex for the whole process, for the making of process-wide objects. Never destroyed.
[[nodiscard]] KEL_API CMutex& getGlobalMutex();

} // namespace kel
