#include "vantra/ServerInfo.h"

namespace vantra {

using kel::CMutexLock;
using kel::String;
using kel::TMap;

CServerInfo::CServerInfo() = default;

CServerInfo::~CServerInfo() = default;

void CServerInfo::updateFromHeaders(const TMap<String, String>& headers) {
    const CMutexLock lock(mutex_);
    if (!serverHeader_.isEmpty()) return;
    const auto server = headers.find("server");
    if (server == headers.end() || server->second.isEmpty()) return;
    serverHeader_ = server->second;
    const CHTTPServerHeader products(serverHeader_);
    getRangesBroken_ =
        !products.getComponentVersion("DAV").isEmpty() && !products.getComponentVersion("Python").isEmpty();
}

String CServerInfo::getServerHeader() const {
    const CMutexLock lock(mutex_);
    return serverHeader_;
}

bool CServerInfo::isGetBroken() const {
    const CMutexLock lock(mutex_);
    return getBroken_;
}

bool CServerInfo::isPutBroken() const {
    const CMutexLock lock(mutex_);
    return putBroken_;
}

bool CServerInfo::areGetRangesBroken() const {
    const CMutexLock lock(mutex_);
    return getRangesBroken_;
}

CHTTPServerHeader::CHTTPServerHeader(const String& header) : header_(header) {
    std::wstring_view rest = header_.view();
    while (!rest.empty()) {
        const std::size_t blank = rest.find(L' ');
        const std::wstring_view token = rest.substr(0, blank);
        rest.remove_prefix(blank == std::wstring_view::npos ? rest.size() : blank + 1);
        if (token.empty()) continue;
        const std::size_t slash = token.find(L'/');
        const std::wstring_view version =
            slash == std::wstring_view::npos ? std::wstring_view() : token.substr(slash + 1);
        componentVersions_[String(token.substr(0, slash))] = String(version);
    }
}

CHTTPServerHeader::CHTTPServerHeader(const CHTTPServerHeader&) = default;
CHTTPServerHeader::CHTTPServerHeader(CHTTPServerHeader&&) noexcept = default;
CHTTPServerHeader& CHTTPServerHeader::operator=(const CHTTPServerHeader&) = default;
CHTTPServerHeader& CHTTPServerHeader::operator=(CHTTPServerHeader&&) noexcept = default;
CHTTPServerHeader::~CHTTPServerHeader() = default;

bool CHTTPServerHeader::hasComponent(const String& name) const { return componentVersions_.contains(name); }

String CHTTPServerHeader::getComponentVersion(const String& name) const {
    return componentVersions_.lookup(name);
}

} // namespace vantra
