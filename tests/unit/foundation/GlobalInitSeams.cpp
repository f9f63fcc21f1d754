#include "GlobalInitSeams.h"

#include <kel/Error.h>
#include <kel/SafeGlobal.h>

#include <cstdio>
#include <mutex>

namespace globalinitseams {

namespace {

struct State {
    std::mutex mutex;
    std::vector<std::string> events;
    CURLcode curlGlobalInitResult = CURLE_OK;
    bool openSSLFails = false;
    std::function<void()> openSSLHook;
    std::function<void()> curlGlobalInitHook;
    std::function<void(bool)> threadYieldHook;
    kel::CSafeGlobalDisposer::DisposeFunc disposeFunc = nullptr;
    const kel::CBase* reportedObject = nullptr;
};

/// Outlives all other static objects, since their end is observed too.
State& getState() {
    static State& state = *new State();
    return state;
}

void report(const char* word) {
    if (getState().reportedObject) std::fprintf(stderr, "%s\n", word);
}

void addEvent(const std::string& event) {
    const std::lock_guard lock(getState().mutex);
    getState().events.push_back(event);
    report(event.c_str());
}

void disposeAndReport() {
    report("dispose");
    getState().disposeFunc();
}

} // namespace

std::vector<std::string> getEvents() {
    const std::lock_guard lock(getState().mutex);
    return getState().events;
}

void setCurlGlobalInitResult(CURLcode code) { getState().curlGlobalInitResult = code; }

void setOpenSSLFails() { getState().openSSLFails = true; }

void setOpenSSLHook(std::function<void()> hook) { getState().openSSLHook = std::move(hook); }

void setCurlGlobalInitHook(std::function<void()> hook) { getState().curlGlobalInitHook = std::move(hook); }

void setThreadYieldHook(std::function<void(bool sleepBriefly)> hook) {
    getState().threadYieldHook = std::move(hook);
}

void reportEventsOf(const kel::CBase& object) { getState().reportedObject = &object; }

} // namespace globalinitseams

using globalinitseams::addEvent;
using globalinitseams::getState;

extern "C" CURLcode __real_curl_global_init(long flags);
extern "C" CURLcode __wrap_curl_global_init(long flags) {
    addEvent("curl_global_init(" + std::to_string(flags) + ")");
    if (getState().curlGlobalInitHook) getState().curlGlobalInitHook();
    if (getState().curlGlobalInitResult != CURLE_OK) return getState().curlGlobalInitResult;
    return __real_curl_global_init(flags);
}

extern "C" void __real_curl_global_cleanup();
extern "C" void __wrap_curl_global_cleanup() {
    addEvent("curl_global_cleanup");
    __real_curl_global_cleanup();
}

extern "C" void __real__ZN5sigil12COpenSSLInit17ensureInitializedEv();
extern "C" void __wrap__ZN5sigil12COpenSSLInit17ensureInitializedEv() {
    addEvent("OpenSSL");
    if (getState().openSSLHook) getState().openSSLHook();
    if (getState().openSSLFails) throw kel::CError("OpenSSL initialization failed.");
    __real__ZN5sigil12COpenSSLInit17ensureInitializedEv();
}

using kel::CSafeGlobalDisposer;

extern "C" void
__real__ZN3kel19CSafeGlobalDisposer14addDisposeFuncEPFvvE(CSafeGlobalDisposer* self,
                                                          CSafeGlobalDisposer::DisposeFunc function);
extern "C" void
__wrap__ZN3kel19CSafeGlobalDisposer14addDisposeFuncEPFvvE(CSafeGlobalDisposer* self,
                                                          CSafeGlobalDisposer::DisposeFunc function) {
    addEvent("addDisposeFunc");
    getState().disposeFunc = function;
    __real__ZN3kel19CSafeGlobalDisposer14addDisposeFuncEPFvvE(self, &globalinitseams::disposeAndReport);
}

extern "C" void __real__ZN3kel11threadYieldEb(bool sleepBriefly);
extern "C" void __wrap__ZN3kel11threadYieldEb(bool sleepBriefly) {
    if (getState().threadYieldHook) return getState().threadYieldHook(sleepBriefly);
    __real__ZN3kel11threadYieldEb(sleepBriefly);
}

// kel::CBase::~CBase() as derived classes call it; the second argument is the table of their virtual bases.
extern "C" void __real__ZN3kel5CBaseD2Ev(kel::CBase* self, const void* const* table);
extern "C" void __wrap__ZN3kel5CBaseD2Ev(kel::CBase* self, const void* const* table) {
    if (self == getState().reportedObject) globalinitseams::report("release");
    __real__ZN3kel5CBaseD2Ev(self, table);
}
