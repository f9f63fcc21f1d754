#include <curl/curl.h>

#include "ftp/FTPAddress.h"

#include "arguments/ArgumentText.h"
#include "arguments/URLHandle.h"
#include "Errors.h"

#include <optional>

namespace vantra::tool {

using kel::String;

namespace {

[[noreturn]] void refuse(const std::string& name, const char* reason) {
    throw CUsageError(String(name) + ": " + reason);
}

/// The part, or nothing when the URL has none.
std::optional<std::string> getPart(const std::string& name, const URLHandle& url, CURLUPart part,
                                   unsigned int flags) {
    const auto [code, text] = getURLPart(url, part, flags);
    if (code == CURLUE_URLDECODE) refuse(name, "the path stands for control characters");
    if (code != CURLUE_OK) return std::nullopt;
    return std::string(text.get());
}

} // namespace

CFTPAddress::CFTPAddress(const std::string& argumentName, const std::string& argument)
    : url_(argumentName, argument) {
    if (url_.isHTTP()) refuse(argumentName, "needs an ftp or ftps URL");
    const URLHandle url(curl_url());
    if (!url || curl_url_set(url.get(), CURLUPART_URL, url_.getText().toUTF8().c_str(), 0) != CURLUE_OK)
        refuse(argumentName, "is not a URL");
    if (getPart(argumentName, url, CURLUPART_QUERY, 0) || getPart(argumentName, url, CURLUPART_FRAGMENT, 0))
        refuse(argumentName, "? and # in a name are written %3F and %23");
    hasImplicitTLS_ = getPart(argumentName, url, CURLUPART_SCHEME, 0) == "ftps";
    host_ = String(getPart(argumentName, url, CURLUPART_HOST, 0).value_or(""));
    if (const auto port = getPart(argumentName, url, CURLUPART_PORT, 0)) host_ += ":" + String(*port);
    path_ = toArgumentText(argumentName,
                           getPart(argumentName, url, CURLUPART_PATH, CURLU_URLDECODE).value_or("/"));
}

} // namespace vantra::tool
