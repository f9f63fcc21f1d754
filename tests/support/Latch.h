/// @file support/Latch.h
/// A point in a server's script at which it waits for the test.
///
///     auto latch = std::make_shared<Latch>();
///     server.play(Script().expectRequest().send(firstHalf).waitFor(latch).send(secondHalf));
///     ...
///     ASSERT_TRUE(latch->waitUntilReached());
///     latch->release();
#pragma once

#include "support/Event.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace testsupport {

/// Holds back whoever waits for it until the test releases it, once and for all.
///
/// Thread safety: any thread may call any member.
class Latch {
public:
    /// Lets all go on who wait now or later.
    void release();

    bool isReleased() const;

    /// Waits until a script has come to the latch.
    /// @return whether one has within the limit.
    bool waitUntilReached(std::chrono::milliseconds limit = std::chrono::seconds(10));

    /// For the waiting side: tells the test that the latch has been reached.
    void reach();

    /// For the waiting side: becomes readable, and stays so, with the release.
    const Socket& socket() const { return released_.socket(); }

private:
    Event released_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    bool isReached_ = false;
    bool isReleased_ = false;
};

} // namespace testsupport
