#include "MultiDouble.h"

#include <kel/Int64.h>
#include <kel/Signal.h>

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <utility>

using vantra::test::MultiDouble;

extern "C" {
CURLM* __real_curl_multi_init();
CURLMcode __real_curl_multi_cleanup(CURLM* multi);
CURLMcode __real_curl_multi_add_handle(CURLM* multi, CURL* handle);
CURLMcode __real_curl_multi_remove_handle(CURLM* multi, CURL* handle);
bool __real__ZNK3kel7CSignal4waitEi(const kel::CSignal* signal, int milliseconds);

CURLM* __wrap_curl_multi_init();
CURLMcode __wrap_curl_multi_cleanup(CURLM* multi);
CURLMcode __wrap_curl_multi_add_handle(CURLM* multi, CURL* handle);
CURLMcode __wrap_curl_multi_remove_handle(CURLM* multi, CURL* handle);
CURLMcode __wrap_curl_multi_perform(CURLM* multi, int* running);
CURLMcode __wrap_curl_multi_fdset(CURLM* multi, fd_set* read, fd_set* write, fd_set* exception,
                                  int* greatest);
CURLMcode __wrap_curl_multi_timeout(CURLM* multi, long* milliseconds);
CURLMsg* __wrap_curl_multi_info_read(CURLM* multi, int* left);
int WRAPPED_SELECT(int count, fd_set* read, fd_set* write, fd_set* exception, kel::int64 milliseconds);
bool __wrap__ZNK3kel7CSignal4waitEi(const kel::CSignal* signal, int milliseconds);
}

namespace vantra::test {

namespace {

std::atomic<MultiDouble*> active{nullptr};

/// In place of a sleep. Lets other threads run, since a worker's loop does not wait any more.
void noteSleep(int milliseconds) {
    MultiDouble::getActive()->note("sleep " + std::to_string(milliseconds));
    kel::threadYield(true);
}

} // namespace

MultiDouble::MultiDouble() : previousSleep_(kel::CThread::setSleepFunction(&noteSleep)) {
    if (active.exchange(this)) throw std::logic_error("there is a MultiDouble already");
}

MultiDouble::~MultiDouble() {
    kel::CThread::setSleepFunction(previousSleep_);
    active = nullptr;
}

MultiDouble* MultiDouble::getActive() {
    MultiDouble* const found = active;
    if (!found) throw std::logic_error("there is no MultiDouble");
    return found;
}

kel::P<CTestRequest> MultiDouble::make(const std::string& name) {
    kel::P<CTestRequest> request = new CTestRequest();
    this->name(*request, name);
    return request;
}

void MultiDouble::name(const CNetRequest& request, const std::string& name) {
    const std::lock_guard lock(mutex_);
    names_[request.getHandle()] = name;
}

std::vector<std::string> MultiDouble::takeCalls() {
    const std::lock_guard lock(mutex_);
    return std::exchange(calls_, {});
}

std::vector<std::string> MultiDouble::takeHandleCalls() {
    std::vector<std::string> calls = takeCalls();
    std::erase_if(calls, [](const std::string& call) {
        return !call.starts_with("add ") && !call.starts_with("remove ");
    });
    return calls;
}

std::vector<int> MultiDouble::takeSignalWaits() {
    const std::lock_guard lock(mutex_);
    return std::exchange(signalWaits_, {});
}

void MultiDouble::note(const std::string& text) {
    const std::lock_guard lock(mutex_);
    calls_.push_back(text);
}

CURL* MultiDouble::handleOf(const std::string& name) const {
    const auto found =
        std::find_if(names_.begin(), names_.end(), [&](const auto& entry) { return entry.second == name; });
    if (found == names_.end()) throw std::logic_error("there is no request " + name);
    return const_cast<CURL*>(found->first);
}

std::string MultiDouble::nameOf(const CURL* handle) const {
    const auto found = names_.find(handle);
    return found == names_.end() ? "?" : found->second;
}

void MultiDouble::finish(const std::string& name, CURLcode result) {
    const std::lock_guard lock(mutex_);
    CURLMsg message{};
    message.msg = CURLMSG_DONE;
    message.easy_handle = handleOf(name);
    message.data.result = result;
    messages_.push_back(message);
    std::erase(running_, message.easy_handle);
}

void MultiDouble::postMessage(const std::string& name, CURLMSG kind) {
    const std::lock_guard lock(mutex_);
    CURLMsg message{};
    message.msg = kind;
    message.easy_handle = handleOf(name);
    messages_.push_back(message);
}

void MultiDouble::failNext(const std::string& call, CURLMcode code) {
    const std::lock_guard lock(mutex_);
    failures_[call] = code;
}

void MultiDouble::setTimer(long milliseconds) {
    const std::lock_guard lock(mutex_);
    timerMs_ = milliseconds;
}

void MultiDouble::setSocket(int socket) {
    const std::lock_guard lock(mutex_);
    socket_ = socket;
}

CURLMcode MultiDouble::takeFailure(const std::string& call) {
    const auto found = failures_.find(call);
    if (found == failures_.end()) {
        calls_.push_back(call);
        return CURLM_OK;
    }
    const CURLMcode code = found->second;
    failures_.erase(found);
    return code;
}

CURLM* MultiDouble::onInit(CURLM* (*real)()) {
    const std::lock_guard lock(mutex_);
    return takeFailure("init") == CURLM_OK ? real() : nullptr;
}

CURLMcode MultiDouble::onAdd(CURLM* multi, CURL* handle) {
    const std::lock_guard lock(mutex_);
    const std::string call = "add " + nameOf(handle);
    if (failures_.count(call) != 0) return takeFailure(call);
    const CURLMcode result = __real_curl_multi_add_handle(multi, handle);
    if (result != CURLM_OK) return result;
    running_.push_back(handle);
    return takeFailure(call);
}

CURLMcode MultiDouble::onRemove(CURLM* multi, CURL* handle) {
    const std::lock_guard lock(mutex_);
    const std::string call = "remove " + nameOf(handle);
    if (failures_.count(call) != 0) return takeFailure(call);
    if (current_.easy_handle == handle) current_ = CURLMsg{CURLMSG_NONE, nullptr, {nullptr}};
    std::erase(running_, handle);
    calls_.push_back(call);
    return __real_curl_multi_remove_handle(multi, handle);
}

CURLMcode MultiDouble::onPerform(int* running) {
    const std::lock_guard lock(mutex_);
    *running = static_cast<int>(running_.size());
    return takeFailure("perform");
}

CURLMcode MultiDouble::onSockets(fd_set* read, int* greatest) {
    const std::lock_guard lock(mutex_);
    *greatest = socket_;
    if (socket_ >= 0) FD_SET(static_cast<curl_socket_t>(socket_), read);
    return takeFailure("fdset");
}

CURLMcode MultiDouble::onTimeout(long* milliseconds) {
    const std::lock_guard lock(mutex_);
    *milliseconds = timerMs_;
    return takeFailure("timeout");
}

CURLMsg* MultiDouble::onMessage(int* left) {
    const std::lock_guard lock(mutex_);
    takeFailure("info");
    if (messages_.empty()) {
        *left = 0;
        return nullptr;
    }
    current_ = messages_.front();
    messages_.pop_front();
    *left = static_cast<int>(messages_.size());
    return &current_;
}

void MultiDouble::onSignalWait(int milliseconds) {
    const std::lock_guard lock(mutex_);
    signalWaits_.push_back(milliseconds);
}

} // namespace vantra::test

CURLM* __wrap_curl_multi_init() { return MultiDouble::getActive()->onInit(&__real_curl_multi_init); }

CURLMcode __wrap_curl_multi_cleanup(CURLM* multi) {
    MultiDouble::getActive()->onCleanup();
    return __real_curl_multi_cleanup(multi);
}

CURLMcode __wrap_curl_multi_add_handle(CURLM* multi, CURL* handle) {
    return MultiDouble::getActive()->onAdd(multi, handle);
}

CURLMcode __wrap_curl_multi_remove_handle(CURLM* multi, CURL* handle) {
    return MultiDouble::getActive()->onRemove(multi, handle);
}

CURLMcode __wrap_curl_multi_perform(CURLM*, int* running) {
    return MultiDouble::getActive()->onPerform(running);
}

CURLMcode __wrap_curl_multi_fdset(CURLM*, fd_set* read, fd_set*, fd_set*, int* greatest) {
    return MultiDouble::getActive()->onSockets(read, greatest);
}

CURLMcode __wrap_curl_multi_timeout(CURLM*, long* milliseconds) {
    return MultiDouble::getActive()->onTimeout(milliseconds);
}

CURLMsg* __wrap_curl_multi_info_read(CURLM*, int* left) { return MultiDouble::getActive()->onMessage(left); }

int WRAPPED_SELECT(int count, fd_set* read, fd_set*, fd_set*, kel::int64 milliseconds) {
    // Only what is in the set counts as watched.
    const bool isWatched = FD_ISSET(static_cast<curl_socket_t>(count - 1), read) != 0;
    MultiDouble::getActive()->note("select " + std::to_string(isWatched ? count : 0) + " " +
                                   std::to_string(milliseconds));
    kel::threadYield(true);
    return 0;
}

bool __wrap__ZNK3kel7CSignal4waitEi(const kel::CSignal* signal, int milliseconds) {
    MultiDouble::getActive()->onSignalWait(milliseconds);
    return __real__ZNK3kel7CSignal4waitEi(signal, milliseconds);
}
