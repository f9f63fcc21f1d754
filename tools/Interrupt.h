/// @file Interrupt.h
/// The door to the user's wish that the program stop (Ctrl-C, a request to terminate). posix/ and windows/
/// hold one implementation each.
#pragma once

namespace vantra::tool {

/// While one lives, the first such wish is noted instead of ending the process at once, so that the transfers
/// that run can be given up (see TransferMonitor.h) and what they left behind be removed. A second one ends
/// the process. One at a time, whatever the number of transfers.
class CInterruptGuard {
public:
    CInterruptGuard() noexcept;
    CInterruptGuard(const CInterruptGuard&) = delete;
    CInterruptGuard& operator=(const CInterruptGuard&) = delete;
    ~CInterruptGuard();
};

/// Whether such a wish was noted. Any thread.
[[nodiscard]] bool isInterrupted() noexcept;

/// Ends the process with ExitInterrupted after Ctrl-C, otherwise the way the noted wish would have done it.
[[noreturn]] void endAsInterrupted() noexcept;

} // namespace vantra::tool
