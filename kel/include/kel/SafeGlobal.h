/// @file kel/SafeGlobal.h
/// Process-wide objects that are built on first use and let go at the end of the process.
#pragma once

#include "kel/Export.h"

#include <atomic>

namespace kel {

/// Decides who builds a process-wide object.
///
/// Thread safety: any thread.
class KEL_API CSafeGlobalGuard {
public:
    CSafeGlobalGuard() = default;
    CSafeGlobalGuard(const CSafeGlobalGuard&) = delete;
    CSafeGlobalGuard& operator=(const CSafeGlobalGuard&) = delete;

    /// True for the first caller in the life of the process, who then builds the object; false for every
    /// other.
    [[nodiscard]] bool beginInit() noexcept { return !begun_.exchange(true, std::memory_order_acq_rel); }

private:
    std::atomic<bool> begun_{false};
};

/// Lets go of process-wide objects when the process ends.
///
/// Thread safety: any thread.
class KEL_API CSafeGlobalDisposer {
public:
    /// What addDisposeFunc() takes.
    using DisposeFunc = void (*)();

    /// The one of the process, never destroyed.
    [[nodiscard]] static CSafeGlobalDisposer& get();

    /// Has `function` called at the normal end of the process, later additions first. An exception that it
    /// throws is logged and dropped. An addition made while the functions run is called too.
    ///
    /// The call comes before the destructors of the static objects that were complete when the function was
    /// added, and after those of objects completed later: a function added in the initialiser of a static
    /// object must not use that object.
    void addDisposeFunc(DisposeFunc function);

    CSafeGlobalDisposer(const CSafeGlobalDisposer&) = delete;
    CSafeGlobalDisposer& operator=(const CSafeGlobalDisposer&) = delete;

private:
    CSafeGlobalDisposer();
};

} // namespace kel
