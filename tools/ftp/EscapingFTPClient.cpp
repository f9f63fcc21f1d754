#include "ftp/EscapingFTPClient.h"

namespace vantra::tool {

using kel::String;

CEscapingFTPClient::CEscapingFTPClient(const String& host, const Login& login, ConnectType type,
                                       const CConnectionOptions& connection, CTransferMonitor& monitor)
    : CFTPClient(host, login.user, login.password, type), connection_(connection), monitor_(monitor) {}

String CEscapingFTPClient::toPathFromRoot(CNetRequest& request, const String& path) {
    const bool beginsAtRoot = path.startsWith(L"//");
    if (!beginsAtRoot && !loginDirectory_) loginDirectory_ = findLoginDirectory(request);
    countsFromRoot_ = true;
    return beginsAtRoot ? path.substr(1) : *loginDirectory_ + path;
}

String CEscapingFTPClient::findLoginDirectory(CNetRequest& request) const {
    beginPrepareRequest(request, "/", false);
    request.setOptionInt(CURLOPT_NOBODY, 1);
    request.perform();
    const char* directory = nullptr;
    curl_easy_getinfo(request.getHandle(), CURLINFO_FTP_ENTRY_PATH, &directory);
    // A server that does not tell has but one.
    const String text = directory ? String(directory) : String();
    return text.endsWith(L"/") ? text.substr(0, text.length() - 1) : text;
}

void CEscapingFTPClient::beginPrepareRequest(CNetRequest& request, const String& path,
                                             bool createMissingDirs) const {
    if (log_ && hasTransferred_) log_->add(request);
    hasTransferred_ = true;
    const String urlPath = escapePath(path);
    const bool needsSlash = countsFromRoot_ && !path.isEmpty();
    CFTPClient::beginPrepareRequest(request, needsSlash ? "/" + urlPath : urlPath, createMissingDirs);
    request.setOptionString(CURLOPT_PROTOCOLS_STR, "ftp,ftps");
    connection_.applyTo(request);
    monitor_.attachTo(request);
}

} // namespace vantra::tool
