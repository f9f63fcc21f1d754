#include "arguments/URLArgument.h"

#include <curl/curl.h>

#include "arguments/ArgumentText.h"
#include "arguments/URLHandle.h"
#include "Errors.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace vantra::tool {

using kel::String;

namespace {

constexpr std::array<std::wstring_view, 2> httpSchemes{L"http", L"https"};
constexpr std::array<std::wstring_view, 2> ftpSchemes{L"ftp", L"ftps"};

template <std::size_t N>
bool contains(const std::array<std::wstring_view, N>& schemes, const String& scheme) {
    return std::find(schemes.begin(), schemes.end(), scheme.view()) != schemes.end();
}

void checkCharacters(const String& name, const String& url) {
    if (url.isEmpty()) throw CUsageError(name + ": must not be empty");
    const std::wstring_view characters = url.view();
    if (std::any_of(characters.begin(), characters.end(),
                    [](wchar_t c) { return c <= L' ' || c == L'\x7F'; }))
        throw CUsageError(name +
                          ": contains blanks or control characters; percent-encode them (a blank is %20)");
    if (std::any_of(characters.begin(), characters.end(), [](wchar_t c) { return c > L'\x7F'; }))
        throw CUsageError(name +
                          ": contains characters that are not ASCII; percent-encode them, and write a host "
                          "name in Punycode (xn--...)");
}

bool isScheme(std::wstring_view text) {
    const auto isLetter = [](wchar_t c) {
        return kel::toLowerASCII(c) >= L'a' && kel::toLowerASCII(c) <= L'z';
    };
    const auto isSchemeCharacter = [&](wchar_t c) {
        return isLetter(c) || (c >= L'0' && c <= L'9') || c == L'+' || c == L'-' || c == L'.';
    };
    return !text.empty() && isLetter(text.front()) &&
           std::all_of(text.begin(), text.end(), isSchemeCharacter);
}

/// The scheme in lower case.
String parseScheme(const String& name, const String& url) {
    const std::size_t end = url.find("://");
    String scheme = url.substr(0, end).toLower();
    if (end == String::npos || !isScheme(scheme.view()))
        throw CUsageError(name + ": has no scheme; begin it with http://, https://, ftp:// or ftps://");
    if (!contains(httpSchemes, scheme) && !contains(ftpSchemes, scheme))
        throw CUsageError(name + ": the scheme '" + scheme +
                          "' is not supported; use http, https, ftp or ftps");
    return scheme;
}

/// libcurl takes "http:///path" for "http://path".
void checkHost(const String& name, const String& url, const String& scheme) {
    constexpr std::wstring_view ends = L"/?#";
    const std::wstring_view rest = url.view().substr(scheme.length() + std::wstring_view(L"://").size());
    if (rest.empty() || ends.find(rest.front()) != std::wstring_view::npos)
        throw CUsageError(name + ": has no host");
}

URLHandle parseURL(const String& name, const String& text) {
    URLHandle url(curl_url());
    if (!url) throw std::bad_alloc();
    const CURLUcode result = curl_url_set(url.get(), CURLUPART_URL, text.toUTF8().c_str(), 0);
    if (result != CURLUE_OK) throw CUsageError(name + ": is malformed: " + curl_url_strerror(result));
    return url;
}

/// Nothing when the URL has no such part.
std::optional<std::string> getPart(const String& name, const URLHandle& url, CURLUPart part,
                                   unsigned int flags) {
    const auto [result, value] = getURLPart(url, part, flags);
    if (result == CURLUE_NO_USER || result == CURLUE_NO_PASSWORD) return std::nullopt;
    if (result != CURLUE_OK) throw CUsageError(name + ": is malformed: " + curl_url_strerror(result));
    return std::string(value.get());
}

/// Nothing when there is no login. libcurl refuses control characters while it decodes.
std::optional<String> extractUser(const String& name, const URLHandle& url) {
    const std::optional<std::string> password = getPart(name, url, CURLUPART_PASSWORD, 0);
    if (password && !password->empty())
        throw CUsageError(name + ": must not hold a password, since others can read the command line; use "
                                 "--user and --password-file");
    const std::optional<std::string> user = getPart(name, url, CURLUPART_USER, CURLU_URLDECODE);
    if (!user && !password) return std::nullopt;
    return toArgumentText(name.toUTF8() + " (its user name)", user.value_or(""));
}

String getTextWithoutLogin(const String& name, const URLHandle& url) {
    for (const CURLUPart part : {CURLUPART_USER, CURLUPART_PASSWORD})
        curl_url_set(url.get(), part, nullptr, 0);
    return String(getPart(name, url, CURLUPART_URL, 0).value_or(""));
}

} // namespace

CURLArgument::CURLArgument(const std::string& argumentName, const std::string& argument)
    : text_(toArgumentText(argumentName, argument)) {
    const String name(argumentName);
    checkCharacters(name, text_);
    const String scheme = parseScheme(name, text_);
    isHTTP_ = contains(httpSchemes, scheme);
    checkHost(name, text_, scheme);
    const URLHandle url = parseURL(name, text_);
    user_ = extractUser(name, url);
    if (user_) text_ = getTextWithoutLogin(name, url);
}

} // namespace vantra::tool
