#include "vantra/ProxySettings.h"
#include "fuzz/Fuzz.h"
#include "proxy/SystemProxy.h"

#include <algorithm>

using kel::String;
using kel::TArray;
using vantra::CProxySettings;

namespace {

class OpenProxySettings : public CProxySettings {
public:
    using CProxySettings::initFromSystemProxy;
};

TArray<String> schemesOf(const CProxySettings& settings) {
    TArray<String> schemes;
    settings.getProxyURLSchemes(schemes);
    return schemes;
}

TArray<String> hostsOf(const CProxySettings& settings) {
    TArray<String> hosts;
    settings.getDirectConnectHosts(hosts);
    return hosts;
}

TArray<String> proxiesOf(const CProxySettings& settings) {
    TArray<String> proxies;
    for (const String& scheme : schemesOf(settings)) proxies.push_back(settings.getProxyForURLScheme(scheme));
    return proxies;
}

bool holdsSeparator(const String& text) {
    return text.view().find_first_of(L";, \t") != std::wstring_view::npos;
}

void checkTables(const CProxySettings& settings) {
    const TArray<String> schemes = schemesOf(settings);
    fuzz::check(std::is_sorted(schemes.begin(), schemes.end()), "schemes are in ascending order");
    for (const String& scheme : schemes) {
        const String proxy = settings.getProxyForURLScheme(scheme.toUpper());
        fuzz::check(fuzz::isLower(scheme) && !holdsSeparator(scheme), "a scheme is in lower case");
        fuzz::check(!proxy.isEmpty() && !holdsSeparator(proxy), "a scheme has a proxy");
    }
    const TArray<String> hosts = hostsOf(settings);
    fuzz::check(std::is_sorted(hosts.begin(), hosts.end()), "hosts are in ascending order");
    for (const String& host : hosts) {
        fuzz::check(fuzz::isLower(host) && fuzz::isTrimmed(host) && !host.isEmpty() && !holdsSeparator(host),
                    "a host is in lower case and trimmed");
        fuzz::check(settings.isDirectConnectHost(host.toUpper()), "a host is found in any case");
    }
}

void checkURL(const CProxySettings& settings, const String& url) {
    const String proxy = settings.getProxyForURL(url);
    const std::size_t colon = url.find(L':');
    fuzz::check(proxy.isEmpty() ||
                    (colon != String::npos && proxy == settings.getProxyForURLScheme(url.substr(0, colon))),
                "a URL has the proxy of its scheme or none");
}

void checkSameTables(const CProxySettings& left, const CProxySettings& right, const char* what) {
    fuzz::check(schemesOf(left) == schemesOf(right) && proxiesOf(left) == proxiesOf(right) &&
                    hostsOf(left) == hostsOf(right),
                what);
}

} // namespace

/// The first line is a proxy list, the second one a bypass list, the rest a URL.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view rest = fuzz::toBytes(data, size);
    const String proxyList = fuzz::toText(fuzz::takeLine(rest));
    const String bypassList = fuzz::toText(fuzz::takeLine(rest));
    const String url = fuzz::toText(rest);

    OpenProxySettings settings;
    settings.addProxiesFromString(proxyList);
    settings.addDirectConnectHostsFromString(bypassList);
    checkTables(settings);
    checkURL(settings, url);

    OpenProxySettings fromSystem;
    fromSystem.setProxyForURLScheme("old", "old");
    fromSystem.addDirectConnectHost("old");
    fromSystem.initFromSystemProxy({proxyList, bypassList});
    if (proxyList.trim().isEmpty()) settings.clear();
    checkSameTables(fromSystem, settings, "the system's settings are its two lists");

    settings.addProxiesFromString(proxyList);
    settings.addDirectConnectHostsFromString(proxyList.trim().isEmpty() ? String() : bypassList);
    checkSameTables(fromSystem, settings, "the same lists once more change nothing");
    return 0;
}
