#include "kel/SafeGlobal.h"

#include "kel/Error.h"
#include "kel/Log.h"
#include "Platform.h"

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
    [[nodiscard]] CSafeGlobalDisposer::DisposeFunc pop() {
        const std::lock_guard lock(mutex_);
        if (functions_.empty()) return nullptr;
        const auto function = functions_.back();
        functions_.pop_back();
        return function;
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

/// The exit handler, registered once for each addition. The system calls one that is registered by a function
/// called here right after this one.
void callLatest() {
    if (const auto function = CDisposeStack::get().pop()) call(function);
}

} // namespace

CSafeGlobalDisposer::CSafeGlobalDisposer() = default;

CSafeGlobalDisposer& CSafeGlobalDisposer::get() {
    static CSafeGlobalDisposer* const disposer = new CSafeGlobalDisposer();
    return *disposer;
}

void CSafeGlobalDisposer::addDisposeFunc(DisposeFunc function) {
    CDisposeStack::get().push(function);
    // Refused only when the exit handlers are through: then the end of the process is now.
    if (!platform::callAtExit(&callLatest)) callLatest();
}

} // namespace kel
