/// @file kel/Signal.h
/// A flag that threads can wait for.
#pragma once

#include "kel/Base.h"

#include <condition_variable>
#include <mutex>

namespace kel {

/// Stays set until reset(); every waiter is let through while it is set (a manual-reset event).
///
/// Thread safety: any thread may call any member.
class KEL_API CSignal : public CBase {
public:
    /// Sets the flag and lets every waiter go on.
    void set();
    /// Takes the flag back; who waits from now on waits for the next set().
    void reset();
    /// Whether the flag is set at this moment.
    [[nodiscard]] bool isSet() const;
    /// Waits until the signal is set, at most `timeoutMs` milliseconds (0: only looks; negative: without
    /// limit). Returns whether it was set.
    bool wait(int timeoutMs) const;

private:
    mutable std::mutex mutex_;
    mutable std::condition_variable condition_;
    bool set_ = false;
};

} // namespace kel
