#include "support/Latch.h"

#include <sys/eventfd.h>

namespace testsupport {

Latch::Latch()
    : released_(checkedDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "make an event descriptor")) {}

void Latch::release() {
    const std::lock_guard lock(mutex_);
    if (isReleased_) return;
    isReleased_ = true;
    if (::eventfd_write(released_.get(), 1) != 0) throwErrno("release a latch");
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
