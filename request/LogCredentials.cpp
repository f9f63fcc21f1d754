#include "request/LogCredentials.h"

#include <algorithm>

namespace vantra {

using kel::String;

namespace {

/// Strips the value of every Authorization header, that of a proxy included, however its name is spelt.
String stripHeaders(const String& text) {
    constexpr std::wstring_view marker = L"authorization:";
    const String lower = text.toLower();
    const std::wstring_view source = text.view();
    String stripped;
    std::size_t copied = 0;
    for (;;) {
        const std::size_t found = lower.view().find(marker, copied);
        if (found == std::wstring_view::npos) break;
        std::size_t start = found + marker.size();
        while (start < source.size() && (source[start] == L' ' || source[start] == L'\t')) ++start;
        const std::size_t end = std::min(source.find(L'\n', start), source.size());
        stripped.append(source.substr(copied, start - copied));
        if (end > start) stripped.append(strippedLogText);
        copied = end;
    }
    stripped.append(source.substr(copied));
    return stripped;
}

/// @param length how much of the text is to be kept; nothing is stripped where no more follows.
String stripBehind(const String& text, std::size_t length) {
    if (text.length() <= length) return text;
    return String(text.view().substr(0, length)).append(strippedLogText);
}

} // namespace

String CLogCredentials::strip(curl_infotype type, const String& text) {
    if (!isHTTP_) {
        if (type == CURLINFO_HEADER_OUT) return stripCommand(text);
        // Any other reply than the request to go on ends the login.
        if (type == CURLINFO_HEADER_IN && !text.startsWith(L"334")) isLoggingIn_ = false;
    }
    // In informational texts too, where libcurl repeats the headers of an HTTP/2 request.
    return stripHeaders(text);
}

/// A command of FTP (RFC 959 §4.1.1) or SMTP (RFC 4954 §4). A proxy's tunnel is asked for in HTTP here too.
String CLogCredentials::stripCommand(const String& text) {
    const String lower = text.toLower();
    if (lower.startsWith(L"pass ") || lower.startsWith(L"acct ")) return stripBehind(text, 5);
    if (lower.startsWith(L"auth ")) {
        isLoggingIn_ = true;
        const std::size_t mechanismEnd = text.view().find(L' ', 5);
        return mechanismEnd == std::wstring_view::npos ? text : stripBehind(text, mechanismEnd + 1);
    }
    // The answer to a challenge: a line of nothing but credentials.
    if (isLoggingIn_) return stripBehind(text, 0);
    return stripHeaders(text);
}

} // namespace vantra
