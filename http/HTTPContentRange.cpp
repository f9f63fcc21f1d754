#include "vantra/HTTPContentRange.h"

#include <kel/Error.h>
#include <kel/Number.h>

#include <string_view>

namespace vantra {

using kel::CError;
using kel::int64;
using kel::P;
using kel::String;

namespace {

struct ContentRangeParts {
    std::wstring_view unit;
    std::wstring_view positions;
    std::wstring_view size;
};

[[noreturn]] void throwInvalid(std::wstring_view value) {
    throw CError("Invalid HTTP Content-Range header: " + String(value));
}

/// @param value trimmed, so that it cannot start with a blank and the unit is never empty.
ContentRangeParts splitContentRange(std::wstring_view value) {
    const std::size_t blank = value.find(L' ');
    if (blank == std::wstring_view::npos) throwInvalid(value);
    const std::size_t slash = value.find(L'/', blank);
    if (slash == std::wstring_view::npos) throwInvalid(value);
    return {value.substr(0, blank), value.substr(blank + 1, slash - blank - 1), value.substr(slash + 1)};
}

} // namespace

// A DLL exports a constant of a class only where it is defined.
constexpr kel::int64 CHTTPContentRange::unknown; // NOLINT(readability-redundant-declaration)

CHTTPContentRange::CHTTPContentRange(const String& unit, int64 first, int64 last, int64 entireContentSize)
    : unit_(unit), first_(first), last_(last), entireContentSize_(entireContentSize) {}

CHTTPContentRange::CHTTPContentRange(const CHTTPContentRange&) = default;
CHTTPContentRange::CHTTPContentRange(CHTTPContentRange&&) noexcept = default;
CHTTPContentRange& CHTTPContentRange::operator=(const CHTTPContentRange&) = default;
CHTTPContentRange& CHTTPContentRange::operator=(CHTTPContentRange&&) noexcept = default;
CHTTPContentRange::~CHTTPContentRange() = default;

P<CHTTPContentRange> CHTTPContentRange::parse(const String& headerValue) {
    const std::wstring_view value = kel::trimView(headerValue.view());
    const ContentRangeParts parts = splitContentRange(value);
    int64 first = unknown;
    int64 last = unknown;
    const std::size_t dash = parts.positions.find(L'-');
    if (dash != std::wstring_view::npos) {
        first = kel::parseInt64(parts.positions.substr(0, dash));
        last = kel::parseInt64(parts.positions.substr(dash + 1));
    } else if (parts.positions != L"*") {
        throwInvalid(value);
    }
    const int64 size = parts.size == L"*" ? unknown : kel::parseInt64(parts.size);
    return new CHTTPContentRange(String(parts.unit).toLower(), first, last, size);
}

} // namespace vantra
