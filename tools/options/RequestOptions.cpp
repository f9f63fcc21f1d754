#include "options/RequestOptions.h"

#include "Errors.h"

namespace vantra::tool {

void CRequestOptions::addTo(CLI::App& verb) {
    headers_.addTo(verb);
    connection_.addTo(verb);
    login_.addTo(verb);
}

void CRequestOptions::checkFor(const CURLArgument& url) const {
    if (!url.isHTTP() && headers_.isGiven()) throw CUsageError("--header: needs an http or https URL");
    login_.checkFor(url);
}

void CRequestOptions::applyTo(CNetRequest& request, const CURLArgument& url) const {
    request.setURL(url.getText());
    request.setOptionString(CURLOPT_PROTOCOLS_STR, "http,https,ftp,ftps");
    connection_.applyTo(request);
    headers_.applyTo(request);
    applyLogin(request, url);
}

void CRequestOptions::applyLogin(CNetRequest& request, const CURLArgument& url) const {
    const std::optional<Login> login = login_.getLogin(url);
    if (!login) return;
    request.setUserName(login->user);
    request.setUserPassword(login->password);
}

} // namespace vantra::tool
