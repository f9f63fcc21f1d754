#include "kel/Signal.h"

#include <chrono>

namespace kel {

void CSignal::set() {
    // Notified under the lock: a waiter that is let through may destroy the signal at once.
    const std::lock_guard lock(mutex_);
    set_ = true;
    condition_.notify_all();
}

void CSignal::reset() {
    const std::lock_guard lock(mutex_);
    set_ = false;
}

bool CSignal::isSet() const {
    const std::lock_guard lock(mutex_);
    return set_;
}

bool CSignal::wait(int timeoutMs) const {
    std::unique_lock lock(mutex_);
    const auto isSetNow = [this] { return set_; };
    if (timeoutMs < 0) {
        condition_.wait(lock, isSetNow);
        return true;
    }
    return condition_.wait_for(lock, std::chrono::milliseconds(timeoutMs), isSetNow);
}

} // namespace kel
