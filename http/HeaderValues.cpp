#include <curl/curl.h>

#include "vantra/HeaderValues.h"

#include <kel/Error.h>

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

namespace vantra {

using kel::CError;
using kel::CTime;
using kel::String;
using kel::TMap;

namespace {

struct QuotedParameter {
    std::wstring_view name;
    std::wstring_view value;
};

/// Takes the first parameter, `NAME="VALUE"`, off the front of `text`; nothing if there is none of this form.
std::optional<QuotedParameter> takeQuotedParameter(std::wstring_view& text) {
    const std::size_t equals = text.find(L'=');
    if (equals == std::wstring_view::npos) return {};
    const std::wstring_view name = kel::trimView(text.substr(0, equals));
    std::wstring_view quoted = kel::trimView(text.substr(equals + 1));
    if (!quoted.starts_with(L'"')) return {};
    quoted.remove_prefix(1);
    const std::size_t closingQuote = quoted.find(L'"');
    if (closingQuote == std::wstring_view::npos) return {};
    text = quoted.substr(closingQuote + 1);
    return QuotedParameter{name, quoted.substr(0, closingQuote)};
}

/// Takes white space and a ";" off the front of `text`; false if there is no ";".
bool takeSemicolon(std::wstring_view& text) {
    text = kel::trimView(text);
    if (!text.starts_with(L';')) return false;
    text.remove_prefix(1);
    return true;
}

constexpr bool isForbiddenInEmailAddress(char32_t c) noexcept {
    return c <= 0x1F || c == U' ' || c == U'"' || c == U'<' || c == U'>';
}

} // namespace

String parseContentDispositionHeader(const String& header, TMap<String, String>& params) {
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): `header` may be a value of `params`
    const String copy = header;
    const std::wstring_view text = copy.view();
    const std::size_t semicolon = text.find(L';');
    if (semicolon != std::wstring_view::npos) {
        std::wstring_view rest = text.substr(semicolon + 1);
        while (const std::optional<QuotedParameter> parameter = takeQuotedParameter(rest)) {
            params[String(parameter->name).toLower()] = String(parameter->value);
            if (!takeSemicolon(rest)) break;
        }
    }
    return String(kel::trimView(text.substr(0, semicolon))).toLower();
}

CTime parseTimestamp(const String& text) {
    const std::time_t seconds = curl_getdate(text.toUTF8().c_str(), nullptr);
    if (seconds == -1 || seconds == INT64_MAX) throw CError("Error parsing timestamp '" + text + "'.");
    return CTime::fromCTime(seconds);
}

bool isValidEmailAddress(const String& address) {
    const std::u32string characters = address.toUTF32();
    if (characters.starts_with(U'@')) return false;
    int atCount = 0;
    bool dotFollows = false;
    for (const char32_t c : characters) {
        if (isForbiddenInEmailAddress(c)) return false;
        if (c == U'@') ++atCount;
        if (c == U'.' && atCount > 0) dotFollows = true;
    }
    return atCount == 1 && dotFollows;
}

} // namespace vantra
