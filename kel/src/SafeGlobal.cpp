#include "kel/SafeGlobal.h"

#include "kel/Error.h"
#include "kel/Log.h"
#include "Platform.h"

#include <atomic>
#include <mutex>
#include <vector>

namespace kel {

namespace {

/// The functions that still wait for their call, the latest at the end.
class CDisposeStack {
public:
    /// Never destroyed: functions may be added until the very end of the process.
    static CDisposeStack& get() {
        static CDisposeStack* const stack = new CDisposeStack();
        return *stack;
    }

    void push(CSafeGlobalDisposer::DisposeFunc function) {
        const std::lock_guard lock(mutex_);
        functions_.push_back(function);
    }

    /// The latest function, which leaves the stack; null if there is none.
    [[nodiscard]] CSafeGlobalDisposer::DisposeFunc pop() { return popAbove(0); }

    /// The same, but null if no more than so many are left.
    [[nodiscard]] CSafeGlobalDisposer::DisposeFunc popAbove(std::size_t count) {
        const std::lock_guard lock(mutex_);
        if (functions_.size() <= count) return nullptr;
        const auto function = functions_.back();
        functions_.pop_back();
        return function;
    }

    [[nodiscard]] std::size_t getCount() {
        const std::lock_guard lock(mutex_);
        return functions_.size();
    }

private:
    std::mutex mutex_;
    std::vector<CSafeGlobalDisposer::DisposeFunc> functions_;
};

void call(CSafeGlobalDisposer::DisposeFunc function) noexcept {
    try {
        function();
    } catch (...) {
        try {
            const P<CError> error = CStdExceptionError::currentExceptionToError();
            logError(error.get(), "Exception in dispose function (ignored).");
        } catch (...) {
            // Out of memory at the end of the process: there is nobody left to tell.
        }
    }
}

/// Whether callLatest() runs on this thread.
thread_local bool isCalling = false;

/// Whether the exit handlers of the process are being called.
std::atomic<bool> isProcessEnding{false};

/// The exit handler, registered once for each addition. What a function adds meanwhile is called right after
/// it; not every system would call a handler that is registered by another one.
void callLatest() {
    isProcessEnding = true;
    CDisposeStack& stack = CDisposeStack::get();
    const auto function = stack.pop();
    if (!function) return;
    const std::size_t countBefore = stack.getCount();
    isCalling = true;
    call(function);
    while (const auto added = stack.popAbove(countBefore)) call(added);
    isCalling = false;
}

/// For what was added too late for an exit handler.
void callForgotten() {
    if (isProcessEnding) callLatest();
}

} // namespace

CSafeGlobalDisposer::CSafeGlobalDisposer() = default;

CSafeGlobalDisposer& CSafeGlobalDisposer::get() {
    static CSafeGlobalDisposer* const disposer = new CSafeGlobalDisposer();
    return *disposer;
}

void CSafeGlobalDisposer::addDisposeFunc(DisposeFunc function) {
    CDisposeStack::get().push(function);
    if (isCalling) return;
    // Refused only when the exit handlers are through: then the end of the process is now.
    if (!platform::callAtExit(&callLatest)) return callLatest();
    platform::callAtUnload(&callForgotten);
}

} // namespace kel
