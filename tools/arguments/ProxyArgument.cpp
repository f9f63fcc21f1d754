#include "arguments/ProxyArgument.h"

#include <curl/curl.h>

#include "arguments/ArgumentText.h"
#include "arguments/URLHandle.h"
#include "Errors.h"

#include <algorithm>
#include <array>
#include <new>

namespace vantra::tool {

using kel::String;

namespace {

constexpr std::array<const char*, 6> schemes{"http", "https", "socks4", "socks4a", "socks5", "socks5h"};

[[noreturn]] void refuse(const std::string& option) {
    throw CUsageError(String(option) + ": is neither 'system' nor 'none' nor the address of a proxy such as "
                                       "http://gate.example:3128; its scheme may be http, https, socks4, "
                                       "socks4a, socks5 or socks5h");
}

void checkScheme(const std::string& option, const String& address) {
    const std::size_t end = address.find("://");
    if (end == String::npos) return;
    const String scheme = address.substr(0, end).toLower();
    if (std::find(schemes.begin(), schemes.end(), scheme) == schemes.end()) refuse(option);
}

/// Empty when there is none.
String getPart(const URLHandle& url, CURLUPart part) {
    const auto [result, text] = getURLPart(url, part, 0);
    return result == CURLUE_OK ? String(text.get()) : String();
}

/// As libcurl will do it, which takes an address without a scheme for one of HTTP.
void checkParts(const std::string& option, const String& address) {
    const URLHandle url(curl_url());
    if (!url) throw std::bad_alloc();
    const unsigned int flags = CURLU_NON_SUPPORT_SCHEME | CURLU_GUESS_SCHEME;
    if (curl_url_set(url.get(), CURLUPART_URL, address.toUTF8().c_str(), flags) != CURLUE_OK) refuse(option);
    const String path = getPart(url, CURLUPART_PATH);
    if (!path.isEmpty() && path != "/") refuse(option);
    if (!getPart(url, CURLUPART_PASSWORD).isEmpty())
        throw CUsageError(String(option) + ": must not hold a password, since others can read the command "
                                           "line; set http_proxy and so on in the environment instead");
}

} // namespace

CProxyArgument::CProxyArgument(const std::string& option, const std::string& argument)
    : address_(toArgumentText(option, argument)) {
    isSystem_ = address_ == "system";
    if (isSystem_ || address_ == "none") {
        address_ = String();
        return;
    }
    refuseControlCharacters(option, address_);
    if (address_.isEmpty() || address_.contains(" ")) refuse(option);
    checkScheme(option, address_);
    checkParts(option, address_);
}

void CProxyArgument::applyTo(CNetRequest& request) const {
    if (isSystem_)
        request.setProxyForCurrentURLFromUserSettings();
    else
        request.setProxy(address_);
}

} // namespace vantra::tool
