#include "vantra/ProxySettings.h"

#include "proxy/SystemProxy.h"

#include <kel/Error.h>
#include <kel/Thread.h>

#include <algorithm>
#include <atomic>

namespace vantra {

using kel::CError;
using kel::CMutexLock;
using kel::P;
using kel::String;
using kel::TArray;
using kel::TMap;

namespace {

/// Calls `use` with each piece of a list, without white space at its ends; empty ones are skipped.
template <class Use>
void forEachPiece(std::wstring_view list, Use use) {
    while (!list.empty()) {
        const std::size_t separator = list.find_first_of(L";, \t");
        const std::wstring_view piece = kel::trimView(list.substr(0, separator));
        list.remove_prefix(separator == std::wstring_view::npos ? list.size() : separator + 1);
        if (!piece.empty()) use(piece);
    }
}

bool isDecimalNumber(std::wstring_view text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](wchar_t c) { return c >= L'0' && c <= L'9'; });
}

/// @param afterScheme what follows the first ":" of a URL.
std::wstring_view getHost(std::wstring_view afterScheme) {
    const std::size_t start = afterScheme.find_first_not_of(L'/');
    if (start == std::wstring_view::npos) return {};
    std::wstring_view host = afterScheme.substr(start);
    for (const wchar_t terminator : {L'/', L'?', L'#'}) {
        const std::size_t end = host.find(terminator);
        if (end == std::wstring_view::npos) continue;
        host = host.substr(0, end);
        break;
    }
    return host.substr(0, host.rfind(L':'));
}

template <class Value>
void appendKeys(const TMap<String, Value>& map, TArray<String>& keys) {
    for (const auto& entry : map) keys.push_back(entry.first);
}

} // namespace

CProxySettings::CProxySettings() = default;

CProxySettings::~CProxySettings() = default;

void CProxySettings::setProxyForURLScheme(const String& scheme, const String& proxy) {
    const CMutexLock lock(mutex_);
    if (proxy.isEmpty())
        proxies_.erase(scheme.toLower());
    else
        proxies_[scheme.toLower()] = proxy;
}

String CProxySettings::getProxyForURLScheme(const String& scheme) const {
    const CMutexLock lock(mutex_);
    return proxies_.lookup(scheme.toLower());
}

void CProxySettings::getProxyURLSchemes(TArray<String>& schemes) const {
    const CMutexLock lock(mutex_);
    appendKeys(proxies_, schemes);
}

void CProxySettings::addProxiesFromString(const String& text) {
    const CMutexLock lock(mutex_);
    forEachPiece(text.view(), [this](std::wstring_view piece) { addProxy(piece); });
}

void CProxySettings::addProxy(std::wstring_view piece) {
    const std::size_t equals = piece.find(L'=');
    if (equals != std::wstring_view::npos) {
        setProxyForURLScheme(String(piece.substr(0, equals)), String(piece.substr(equals + 1)));
        return;
    }
    const std::size_t colon = piece.find(L':');
    if (colon == std::wstring_view::npos || isDecimalNumber(piece.substr(colon + 1)))
        setProxyForUsualSchemes(String(piece));
    else
        setProxyForURLScheme(String(piece.substr(0, colon)), String(piece));
}

void CProxySettings::setProxyForUsualSchemes(const String& proxy) {
    for (const char* const scheme : {"http", "https", "ftp"}) setProxyForURLScheme(scheme, proxy);
}

void CProxySettings::addDirectConnectHost(const String& host) {
    const CMutexLock lock(mutex_);
    directConnectHosts_[host.toLower()] = true;
}

void CProxySettings::removeDirectConnectHost(const String& host) {
    const CMutexLock lock(mutex_);
    directConnectHosts_.erase(host.toLower());
}

void CProxySettings::addDirectConnectHostsFromString(const String& text) {
    const CMutexLock lock(mutex_);
    forEachPiece(text.view(), [this](std::wstring_view host) { addDirectConnectHost(String(host)); });
}

void CProxySettings::getDirectConnectHosts(TArray<String>& hosts) const {
    const CMutexLock lock(mutex_);
    appendKeys(directConnectHosts_, hosts);
}

bool CProxySettings::isDirectConnectHost(const String& host) const {
    const CMutexLock lock(mutex_);
    return directConnectHosts_.contains(host.toLower());
}

String CProxySettings::getProxyForURL(const String& url) const {
    const std::wstring_view text = url.view();
    const std::size_t colon = text.find(L':');
    if (colon == std::wstring_view::npos) return {};
    String proxy = getProxyForURLScheme(String(text.substr(0, colon)));
    if (proxy.isEmpty() || isDirectConnectHost(String(getHost(text.substr(colon + 1))))) return {};
    return proxy;
}

void CProxySettings::clear() {
    const CMutexLock lock(mutex_);
    proxies_.clear();
    directConnectHosts_.clear();
}

void CProxySettings::initFromUserSettings() {
    const CMutexLock lock(mutex_);
    initFromSystemProxy(getSystemProxy());
}

void CProxySettings::initFromSystemProxy(const CSystemProxy& proxy) {
    const CMutexLock lock(mutex_);
    clear();
    if (kel::trimView(proxy.proxyList.view()).empty()) return;
    addProxiesFromString(proxy.proxyList);
    addDirectConnectHostsFromString(proxy.bypassList);
}

/// Where the process's instance lives. A failure is remembered, so that callers who find no instance learn of
/// it instead of waiting for one that will never come.
struct CProxySettings::UserSettings {
    enum class State { Pending, Ready, Failed };

    /// Never destroyed: threads may ask until the very end of the process.
    static UserSettings& get() {
        static UserSettings* const settings = new UserSettings();
        return *settings;
    }

    void make() {
        try {
            instance = createAndInitFromUserSettings();
            kel::CSafeGlobalDisposer::get().addDisposeFunc(&CProxySettings::disposeUserSettings);
        } catch (...) {
            state = State::Failed;
            throw;
        }
        state = State::Ready;
    }

    void waitUntilMade() const {
        while (state == State::Pending) kel::threadYield(true);
        if (state == State::Failed) throw CError("Construction of static object has failed.");
    }

    std::atomic<State> state{State::Pending};
    kel::CMutex mutex; // once the instance is made, its holder is read and cleared under this
    P<CProxySettings> instance;
};

P<CProxySettings> CProxySettings::getUserSettings() {
    UserSettings& settings = UserSettings::get();
    if (userSettingsGuard().beginInit())
        settings.make();
    else
        settings.waitUntilMade();
    const CMutexLock lock(settings.mutex);
    return settings.instance ? settings.instance : createAndInitFromUserSettings();
}

kel::CSafeGlobalGuard& CProxySettings::userSettingsGuard() {
    static kel::CSafeGlobalGuard guard;
    return guard;
}

P<CProxySettings> CProxySettings::createAndInitFromUserSettings() {
    P<CProxySettings> settings = new CProxySettings();
    settings->initFromUserSettings();
    return settings;
}

void CProxySettings::disposeUserSettings() {
    UserSettings& settings = UserSettings::get();
    const CMutexLock lock(settings.mutex);
    settings.instance = nullptr;
}

} // namespace vantra
