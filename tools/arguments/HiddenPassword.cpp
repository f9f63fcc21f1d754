#include "arguments/HiddenPassword.h"

#include <algorithm>
#include <string_view>

namespace vantra::tool {

using kel::String;

namespace {

constexpr std::wstring_view authorityStart = L"://";
constexpr std::wstring_view authorityEnds = L"/\\?#'\" ";

/// The authority of a URL, without the password of its login (RFC 3986 §3.2.1).
String hidePassword(std::wstring_view authority) {
    const std::size_t at = authority.rfind(L'@');
    const std::size_t colon = authority.find(L':');
    if (at == std::wstring_view::npos || colon >= at) return String(std::wstring(authority));
    return String(std::wstring(authority.substr(0, colon + 1))) + "~stripped~" +
           String(std::wstring(authority.substr(at)));
}

/// Where the next authority may begin.
std::size_t findAuthority(std::wstring_view text) {
    const std::size_t behindScheme = text.find(authorityStart);
    const std::size_t quote = text.find(L'\'');
    if (behindScheme < quote) return behindScheme + authorityStart.size();
    return quote == std::wstring_view::npos ? quote : quote + 1;
}

} // namespace

String hidePasswords(const String& text) {
    std::wstring_view rest = text.view();
    String shown;
    for (;;) {
        const std::size_t start = findAuthority(rest);
        if (start == std::wstring_view::npos) break;
        std::size_t end = std::min(rest.find_first_of(authorityEnds, start), rest.size());
        if (end > start && rest.substr(end - 1).starts_with(authorityStart)) --end; // it was a scheme
        shown.append(rest.substr(0, start));
        shown += hidePassword(rest.substr(start, end - start));
        rest.remove_prefix(end);
    }
    return shown.append(rest);
}

} // namespace vantra::tool
