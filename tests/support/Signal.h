/// @file support/Signal.h
/// The signals that the tests send.
#pragma once

namespace testsupport {

/// A signal by its number, which is the same on every POSIX system (kill(1)).
enum class Signal { hangUp = 1, interrupt = 2, kill = 9, terminate = 15 };

/// The exit status that a shell shows for a program which a signal has ended.
constexpr int exitStatusAfter(Signal signal) { return 128 + static_cast<int>(signal); }

} // namespace testsupport
