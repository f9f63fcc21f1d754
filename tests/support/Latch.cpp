#include "support/Latch.h"

namespace testsupport {

void Latch::release() {
    const std::lock_guard lock(mutex_);
    if (isReleased_) return;
    isReleased_ = true;
    released_.set();
}

bool Latch::isReleased() const {
    const std::lock_guard lock(mutex_);
    return isReleased_;
}

bool Latch::waitUntilReached(std::chrono::milliseconds limit) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, limit, [this] { return isReached_; });
}

void Latch::reach() {
    const std::lock_guard lock(mutex_);
    isReached_ = true;
    changed_.notify_all();
}

} // namespace testsupport
