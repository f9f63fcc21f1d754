#include "s3/Endpoint.h"

#include <algorithm>
#include <string_view>

namespace vantra {

using kel::String;

namespace {

constexpr bool isASCIIDigit(wchar_t c) noexcept { return c >= L'0' && c <= L'9'; }

constexpr bool isASCIIAlphanumeric(wchar_t c) noexcept {
    const wchar_t lower = kel::toLowerASCII(c);
    return isASCIIDigit(c) || (lower >= L'a' && lower <= L'z');
}

/// Of a host name; those outside of ASCII are libcurl's to translate.
bool isHostCharacter(wchar_t c) noexcept {
    return isASCIIAlphanumeric(c) || c == L'-' || c == L'.' || c == L'_' || static_cast<unsigned>(c) > 0xA0;
}

/// Of an address in square brackets (RFC 3986 §3.2.2, RFC 6874).
bool isAddressCharacter(wchar_t c) noexcept {
    return isASCIIAlphanumeric(c) || c == L':' || c == L'.' || c == L'%';
}

/// Of an escaped path (RFC 3986 §3.3).
bool isPathCharacter(wchar_t c) noexcept {
    return isASCIIAlphanumeric(c) ||
           std::wstring_view(L"/-._~%!$&'()*+,;=:@").find(c) != std::wstring_view::npos;
}

bool isPort(std::wstring_view text) noexcept {
    constexpr int highest = 65535;
    if (text.empty() || !std::all_of(text.begin(), text.end(), isASCIIDigit)) return false;
    int port = 0;
    for (const wchar_t digit : text) {
        port = port * 10 + static_cast<int>(digit - L'0');
        if (port > highest) return false;
    }
    return port > 0;
}

/// The length of the host at the start of "HOST" or "HOST:PORT"; 0 if there is none.
std::size_t getHostLength(std::wstring_view authority) noexcept {
    if (!authority.starts_with(L'[')) {
        const std::wstring_view host = authority.substr(0, authority.find(L':'));
        return std::all_of(host.begin(), host.end(), isHostCharacter) ? host.size() : 0;
    }
    const std::size_t end = authority.find(L']');
    if (end == std::wstring_view::npos) return 0;
    const std::wstring_view address = authority.substr(1, end - 1);
    const bool isAddress = address.find(L':') != std::wstring_view::npos &&
                           std::all_of(address.begin(), address.end(), isAddressCharacter);
    return isAddress ? end + 1 : 0;
}

bool isAuthority(std::wstring_view authority) noexcept {
    const std::size_t hostLength = getHostLength(authority);
    if (hostLength == 0) return false;
    const std::wstring_view rest = authority.substr(hostLength);
    return rest.empty() || (rest.front() == L':' && isPort(rest.substr(1)));
}

} // namespace

std::optional<String> parseEndpoint(const String& url) {
    const std::wstring_view text = url.view();
    const std::size_t schemeEnd = text.find(L"://");
    if (schemeEnd == std::wstring_view::npos) return {};
    const String scheme = String(text.substr(0, schemeEnd)).toLower();
    const std::wstring_view rest = text.substr(schemeEnd + 3);
    const std::size_t pathStart = std::min(rest.find(L'/'), rest.size());
    const std::wstring_view path = rest.substr(pathStart);
    const bool isEndpoint = (scheme == "http" || scheme == "https") &&
                            isAuthority(rest.substr(0, pathStart)) &&
                            std::all_of(path.begin(), path.end(), isPathCharacter);
    if (!isEndpoint) return {};
    String endpoint = scheme;
    endpoint.append(text.substr(schemeEnd));
    if (!endpoint.endsWith(L"/")) endpoint += L'/';
    return endpoint;
}

} // namespace vantra
