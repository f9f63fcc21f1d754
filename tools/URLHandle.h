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
/// A part of a URL.
using CURLString = std::unique_ptr<char, CURLStringDeleter>;

} // namespace vantra::tool
