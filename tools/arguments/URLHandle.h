/// @file URLHandle.h
/// Owners of what libcurl's URL interface hands out.
#pragma once

#include <curl/curl.h>

#include <memory>

namespace vantra::tool {

struct URLDeleter {
    void operator()(CURLU* url) const noexcept { curl_url_cleanup(url); }
};
using URLHandle = std::unique_ptr<CURLU, URLDeleter>;

struct CURLStringDeleter {
    void operator()(char* text) const noexcept { curl_free(text); }
};
using CURLString = std::unique_ptr<char, CURLStringDeleter>;

/// A part of a URL (curl_url_get).
struct URLPart {
    CURLUcode result;
    CURLString text; ///< null unless the result is CURLUE_OK
};
inline URLPart getURLPart(const URLHandle& url, CURLUPart part, unsigned int flags) {
    char* text = nullptr;
    const CURLUcode result = curl_url_get(url.get(), part, &text, flags);
    return {result, CURLString(text)};
}

} // namespace vantra::tool
