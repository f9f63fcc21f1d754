#include "request/LogCredentials.h"

#include <algorithm>

namespace vantra {

using kel::String;

namespace {

/// What the name of a header with credentials ends in, lower-cased: that of a proxy included.
constexpr std::wstring_view marker = L"authorization:";

/// Strips the value of every Authorization header, however its name is spelt.
String stripHeaders(const String& text) {
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

/// Strips all up to the first line break.
String stripFirstLine(const String& text) {
    const std::size_t end = std::min(text.view().find(L'\n'), text.length());
    return end == 0 ? text : String(strippedLogText).append(text.view().substr(end));
}

bool isSent(curl_infotype type) { return type == CURLINFO_HEADER_OUT || type == CURLINFO_DATA_OUT; }

bool isData(curl_infotype type) {
    return type != CURLINFO_TEXT && type != CURLINFO_HEADER_IN && type != CURLINFO_HEADER_OUT;
}

} // namespace

void CLogCredentials::begin(curl_infotype type, std::string_view bytes) {
    continuesHeaders_ = isSendingHeaders_ && isSent(type);
    continuesCredentials_ = false;
    if (!isHTTP_ || !(continuesHeaders_ || type == CURLINFO_HEADER_OUT)) return;
    const std::string headers = unfinishedLine_ + std::string(bytes);
    const String firstLine = String::fromLatin1(headers.substr(0, headers.find('\n')));
    continuesCredentials_ =
        !unfinishedLine_.empty() && firstLine.toLower().view().find(marker) != std::wstring_view::npos;
    isSendingHeaders_ = !headers.starts_with("\r\n") && headers.find("\n\r\n") == std::string::npos;
    unfinishedLine_ = isSendingHeaders_ ? headers.substr(headers.rfind('\n') + 1) : std::string();
}

String CLogCredentials::strip(curl_infotype type, const String& text) {
    if (isData(type) && !continuesHeaders_) return text;
    if (!isHTTP_) {
        if (type == CURLINFO_HEADER_OUT) return stripCommand(text);
        // Any other reply than the request to go on ends the login.
        if (type == CURLINFO_HEADER_IN && !text.startsWith(L"334")) isLoggingIn_ = false;
    }
    // In informational texts too, where libcurl repeats the headers of an HTTP/2 request.
    return stripHeaders(continuesCredentials_ ? stripFirstLine(text) : text);
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
