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

    void lock() { mutex_.lock(); }
    [[nodiscard]] bool tryLock() { return mutex_.try_lock(); }
    void unlock() { mutex_.unlock(); }

private:
    std::recursive_mutex mutex_;
};

/// Holds a mutex from construction to destruction, or to unlock().
class KEL_API CMutexLock {
public:
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
