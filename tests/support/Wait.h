/// @file support/Wait.h
/// Waiting for a condition which nothing announces, such as a line in a server's log file.
#pragma once

#include <chrono>
#include <thread>

namespace testsupport {

/// The pause between two looks at a condition: short, so that starting a server costs milliseconds.
constexpr std::chrono::milliseconds pollInterval{5};

/// Looks at a condition every few milliseconds until it holds or the limit has passed.
/// @return whether the condition held in the end.
template <typename Condition>
bool waitUntil(Condition condition, std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline) return false;
        std::this_thread::sleep_for(pollInterval);
    }
    return true;
}

} // namespace testsupport
