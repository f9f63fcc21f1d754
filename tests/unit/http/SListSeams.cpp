#include "SListSeams.h"

#include <stdexcept>

namespace slistseams {

namespace {

bool appendFails = false;
bool releaseThrows = false;
Recorder* recorder = nullptr;

} // namespace

FailingAppend::FailingAppend() { appendFails = true; }
FailingAppend::~FailingAppend() { appendFails = false; }

ThrowingRelease::ThrowingRelease() { releaseThrows = true; }
ThrowingRelease::~ThrowingRelease() { releaseThrows = false; }

Recorder::Recorder() { recorder = this; }
Recorder::~Recorder() { recorder = nullptr; }

void Recorder::onAppend(const curl_slist* list) {
    for (; list && list->next; list = list->next) ++nodesPassed_;
}

void Recorder::onRelease(const curl_slist* list) {
    if (list) released_.push_back(list);
}

} // namespace slistseams

extern "C" curl_slist* __real_curl_slist_append(curl_slist* list, const char* text);
extern "C" curl_slist* __wrap_curl_slist_append(curl_slist* list, const char* text) {
    if (slistseams::appendFails) return nullptr;
    if (slistseams::recorder) slistseams::recorder->onAppend(list);
    return __real_curl_slist_append(list, text);
}

extern "C" void __real_curl_slist_free_all(curl_slist* list);
extern "C" void __wrap_curl_slist_free_all(curl_slist* list) {
    if (slistseams::recorder) slistseams::recorder->onRelease(list);
    __real_curl_slist_free_all(list);
    if (slistseams::releaseThrows) throw std::runtime_error("no release");
}
