#include "vantra/NetRequest.h"

#include <kel/Error.h>

#include <limits>
#include <memory>

namespace vantra {

using kel::CError;
using kel::String;

namespace {

struct CurlMemoryDeleter {
    void operator()(char* memory) const noexcept { curl_free(memory); }
};

} // namespace

String CNetRequest::urlEscape(const String& text) const {
    const std::string utf8 = text.toUTF8();
    if (utf8.empty()) return ""; // libcurl takes a length of 0 for "up to the NUL"
    std::unique_ptr<char, CurlMemoryDeleter> escaped;
    if (utf8.size() <= static_cast<std::size_t>(std::numeric_limits<int>::max()))
        escaped.reset(curl_easy_escape(handle_.get(), utf8.data(), static_cast<int>(utf8.size())));
    if (!escaped) throw CError("Error URL-escaping a string.");
    return String::fromLatin1(escaped.get());
}

} // namespace vantra
