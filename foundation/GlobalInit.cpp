#include <curl/curl.h>

#include "vantra/GlobalInit.h"

#include <kel/Error.h>
#include <kel/Mutex.h>
#include <kel/Thread.h>
#include <sigil/OpenSSLInit.h>

#include <atomic>
#include <exception>

namespace vantra {

using kel::P;

namespace {

/// Throws as a CError what the one call that started the library met.
void throwAsError(const std::exception_ptr& failure) {
    P<kel::CError> error;
    try {
        std::rethrow_exception(failure);
    } catch (...) {
        error = kel::CStdExceptionError::currentExceptionToError();
    }
    error->throwClone();
}

} // namespace

/// Where the instance lives. A failure is remembered, so that callers who find no instance learn of it
/// instead of waiting for one that will never come.
struct CGlobalInit::Holder {
    static constexpr kel::uint64 constructed = 0x47a592fe710a82bc;
    static constexpr kel::uint64 failed = 0xfe3493ad1f6783bd;

    /// What the construction came to, for the one call that made the holder.
    struct Outcome {
        bool isConstructed = false;
        std::exception_ptr failure;
    };

    explicit Holder(Outcome& outcome) {
        const kel::CMutexLock lock(kel::getGlobalMutex());
        if (!globalInstanceGuard().beginInit()) return;
        state = 0;
        try {
            instance = new CGlobalInit();
            outcome.isConstructed = true;
        } catch (...) {
            // Kept as it is: to make an error of it needs memory, and what is thrown here would undo the
            // holder and leave the next caller waiting.
            outcome.failure = std::current_exception();
        }
        state = outcome.isConstructed ? constructed : failed;
    }

    P<CGlobalInit> instance;
    std::atomic<kel::uint64> state{0};
};

CGlobalInit::CGlobalInit() {
    sigil::COpenSSLInit::ensureInitialized();
    if (curl_global_init(CURL_GLOBAL_ALL) != CURLE_OK) throw kel::CError("curl global init failed");
}

CGlobalInit::~CGlobalInit() = default;

const P<CGlobalInit>& CGlobalInit::get() {
    Holder::Outcome outcome;
    static const Holder holder(outcome);
    // Once the holder stands, since what is registered later is called earlier at the end of the process.
    if (outcome.isConstructed)
        kel::CSafeGlobalDisposer::get().addDisposeFunc(&CGlobalInit::disposeGlobalInstance);
    if (outcome.failure) throwAsError(outcome.failure);
    for (;;) {
        switch (holder.state.load(std::memory_order_acquire)) {
        case Holder::constructed:
            return holder.instance;
        case Holder::failed:
            throw kel::CError("Construction of static object has failed.");
        default:
            kel::threadYield(true);
        }
    }
}

void CGlobalInit::ensureInitialized() { get(); }

kel::CSafeGlobalGuard& CGlobalInit::globalInstanceGuard() {
    static kel::CSafeGlobalGuard guard;
    return guard;
}

void CGlobalInit::disposeGlobalInstance() { get()->dispose(); }

void CGlobalInit::dispose() {}

} // namespace vantra
