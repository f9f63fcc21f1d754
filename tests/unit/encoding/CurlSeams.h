/// @file CurlSeams.h
/// Stands between the library and libcurl's functions for texts, in programs linked with --wrap for them.
#pragma once

#include <curl/curl.h>

#include <ctime>
#include <optional>
#include <vector>

namespace encodingtest {

/// Notes what happens from its construction to its destruction, and can answer in libcurl's place.
class CurlSeams {
public:
    CurlSeams();
    CurlSeams(const CurlSeams&) = delete;
    CurlSeams& operator=(const CurlSeams&) = delete;
    ~CurlSeams();

    bool escapeFails = false;               ///< curl_easy_escape then gives null
    std::optional<std::time_t> date;        ///< what curl_getdate says
    std::vector<const CURL*> escapeHandles; ///< those that curl_easy_escape was called with
    std::vector<const void*> escaped;       ///< the texts that it gave
    std::vector<const void*> freed;         ///< those that curl_free was called with
};

} // namespace encodingtest
