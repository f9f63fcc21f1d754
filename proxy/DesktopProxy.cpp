#include "proxy/DesktopProxy.h"

#include <string_view>

namespace vantra {

using kel::String;

namespace {

/// Schemes that only a SOCKS proxy serves: the others' proxies speak HTTP and were set up for one scheme
/// each.
constexpr const char* schemesOnlyForSocks[] = {"ftps", "sftp", "smtp", "smtps"};

/// "host:port", or empty when that cannot be told.
String toHostAndPort(const CDesktopProxyServer& server) {
    const std::wstring_view host = kel::trimView(server.host.view());
    if (host.empty() || server.port <= 0 || host.find_first_of(L";, \t") != std::wstring_view::npos)
        return {};
    const bool isBareIPv6 = !host.starts_with(L'[') && host.find(L'/') == std::wstring_view::npos &&
                            host.find(L':') != host.rfind(L':');
    const String text(host);
    return (isBareIPv6 ? "[" + text + "]" : text) + ":" + String::fromInt(server.port);
}

void addToList(String& list, const String& piece) {
    if (!list.isEmpty()) list += L';';
    list += piece;
}

void addProxy(String& list, const String& scheme, const String& proxy) {
    if (!proxy.isEmpty()) addToList(list, scheme + "=" + proxy);
}

const String& firstNotEmpty(const String& first, const String& second) {
    return first.isEmpty() ? second : first;
}

} // namespace

CSystemProxy toSystemProxy(const CDesktopProxy& desktop) {
    CSystemProxy system;
    if (desktop.mode != "manual") return system;
    const String http = toHostAndPort(desktop.http);
    const String https = toHostAndPort(desktop.https);
    const String ftp = toHostAndPort(desktop.ftp);
    const String socksServer = toHostAndPort(desktop.socks);
    const String socks = socksServer.isEmpty() ? String() : "socks5h://" + socksServer;
    addProxy(system.proxyList, "http", firstNotEmpty(http, socks));
    addProxy(system.proxyList, "https", firstNotEmpty(firstNotEmpty(https, http), socks));
    addProxy(system.proxyList, "ftp", firstNotEmpty(ftp, socks));
    for (const char* const scheme : schemesOnlyForSocks) addProxy(system.proxyList, scheme, socks);
    for (const String& host : desktop.ignoreHosts) addToList(system.bypassList, host);
    return system;
}

} // namespace vantra
