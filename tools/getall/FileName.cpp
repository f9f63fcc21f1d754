#include "FileName.h"

#include <vantra/HeaderValues.h>
#include <vantra/URLEncoding.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace vantra::tool {

using kel::String;
using kel::TMap;

namespace {

constexpr std::size_t maxBytes = 200; // leaves room for a number; file systems take 255
constexpr const char* nameOfNothing = "index.html";

bool isForbidden(wchar_t c) {
    constexpr std::wstring_view marks = L"<>:\"|?*";
    return c < L' ' || (c >= L'\x7F' && c <= L'\x9F') || marks.find(c) != std::wstring_view::npos;
}

/// Where the extension begins, with its dot.
std::size_t findExtension(const String& name) {
    const std::size_t dot = name.findLast(L'.');
    return dot == String::npos || dot == 0 ? name.length() : dot;
}

bool isDeviceName(const String& name) {
    constexpr std::array<const char*, 4> devices{"CON", "PRN", "AUX", "NUL"};
    constexpr std::array<const char*, 2> numbered{"COM", "LPT"};
    const String stem = name.substr(0, name.find(L'.')).trim().toUpper();
    const auto isStem = [&](const char* device) { return stem == device; };
    const auto isNumberedStem = [&](const char* device) {
        return stem.length() == 4 && stem.startsWith(device) && stem.view()[3] >= L'0' &&
               stem.view()[3] <= L'9';
    };
    return std::any_of(devices.begin(), devices.end(), isStem) ||
           std::any_of(numbered.begin(), numbered.end(), isNumberedStem);
}

/// At most so many bytes of UTF-8, and no part of a character.
String cutToBytes(const String& text, std::size_t bytes) {
    std::u32string characters = text.toUTF32();
    while (String::fromUTF32(characters).toUTF8().size() > bytes) characters.pop_back();
    return String::fromUTF32(characters);
}

String cutAheadOfExtension(const String& name) {
    if (name.toUTF8().size() <= maxBytes) return name;
    const String extension = cutToBytes(name.substr(findExtension(name)), maxBytes / 2);
    return cutToBytes(name.substr(0, findExtension(name)), maxBytes - extension.toUTF8().size()) + extension;
}

String trimEnd(const String& name) {
    const std::size_t last = name.view().find_last_not_of(L" .");
    return last == std::wstring_view::npos ? String() : name.substr(0, last + 1);
}

} // namespace

String makeSafeFileName(const String& name) {
    const std::size_t separator = name.view().find_last_of(L"/\\");
    std::wstring characters(separator == std::wstring_view::npos ? name.view()
                                                                 : name.view().substr(separator + 1));
    std::replace_if(characters.begin(), characters.end(), &isForbidden, L'_');
    String safe = trimEnd(String(characters.c_str(), characters.size()).trim());
    if (safe.isEmpty()) return nameOfNothing;
    if (safe.startsWith(L".")) safe = "_" + safe.substr(1);
    if (isDeviceName(safe)) safe = "_" + safe;
    return trimEnd(cutAheadOfExtension(safe));
}

String getFileNameFromURL(const CURLArgument& url) {
    const std::wstring_view text = url.getText().view();
    const std::size_t host = text.find(L"://") + 3;
    const std::size_t end = std::min(text.find_first_of(L"?#", host), text.size());
    const std::wstring_view rest = text.substr(host, end - host);
    const std::size_t slash = rest.rfind(L'/');
    if (slash == std::wstring_view::npos) return nameOfNothing;
    const std::wstring_view last = rest.substr(slash + 1);
    return makeSafeFileName(urlUnescape(String(last.data(), last.size()), false));
}

String getFileNameFromHeaders(const TMap<String, String>& responseHeaders) {
    TMap<String, String> parameters;
    (void)parseContentDispositionHeader(responseHeaders.lookup("content-disposition"), parameters);
    const String name = parameters.lookup("filename").trim();
    return name.isEmpty() ? name : makeSafeFileName(name);
}

String numberFileName(const String& name, int number) {
    if (number == 1) return name;
    const std::size_t extension = findExtension(name);
    return name.substr(0, extension) + " (" + String::fromInt(number) + ")" + name.substr(extension);
}

} // namespace vantra::tool
