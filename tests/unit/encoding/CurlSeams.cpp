#include "CurlSeams.h"

namespace encodingtest {

namespace {

CurlSeams* active = nullptr;

} // namespace

CurlSeams::CurlSeams() { active = this; }
CurlSeams::~CurlSeams() { active = nullptr; }

} // namespace encodingtest

using encodingtest::active;

extern "C" char* __real_curl_easy_escape(CURL* handle, const char* text, int length);
extern "C" char* __wrap_curl_easy_escape(CURL* handle, const char* text, int length) {
    if (!active) return __real_curl_easy_escape(handle, text, length);
    active->escapeHandles.push_back(handle);
    if (active->escapeFails) return nullptr;
    char* const escaped = __real_curl_easy_escape(handle, text, length);
    active->escaped.push_back(escaped);
    return escaped;
}

extern "C" void __real_curl_free(void* text);
extern "C" void __wrap_curl_free(void* text) {
    if (active) active->freed.push_back(text);
    __real_curl_free(text);
}

extern "C" time_t __real_curl_getdate(const char* text, const time_t* now);
extern "C" time_t __wrap_curl_getdate(const char* text, const time_t* now) {
    return active && active->date ? *active->date : __real_curl_getdate(text, now);
}
