/// @file Tables.h
/// The content of proxy settings as values to compare.
#pragma once

#include "vantra/ProxySettings.h"

#include <map>
#include <string>
#include <vector>

namespace proxytest {

/// Proxy by scheme. Read through the list of schemes, which has to be in ascending order and without
/// repetition.
inline std::map<std::string, std::string> proxiesOf(const vantra::CProxySettings& settings) {
    kel::TArray<kel::String> schemes;
    settings.getProxyURLSchemes(schemes);
    std::map<std::string, std::string> proxies;
    const kel::String* previous = nullptr;
    for (const kel::String& scheme : schemes) {
        const bool isInOrder = !previous || *previous < scheme;
        proxies[(isInOrder ? "" : "not in order: ") + scheme.toUTF8()] =
            settings.getProxyForURLScheme(scheme).toUTF8();
        previous = &scheme;
    }
    return proxies;
}

inline std::vector<std::string> hostsOf(const vantra::CProxySettings& settings) {
    kel::TArray<kel::String> hosts;
    settings.getDirectConnectHosts(hosts);
    std::vector<std::string> texts;
    for (const kel::String& host : hosts) texts.push_back(host.toUTF8());
    return texts;
}

using Proxies = std::map<std::string, std::string>;
using Hosts = std::vector<std::string>;

} // namespace proxytest
