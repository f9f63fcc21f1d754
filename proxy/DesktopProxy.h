/// The proxy configuration of a desktop in the form in which its settings hold it. Private to the library.
#pragma once

#include "proxy/SystemProxy.h"

#include <kel/Int64.h>
#include <kel/String.h>

#include <vector>

namespace vantra {

struct CDesktopProxyServer {
    kel::String host; // empty when there is none
    kel::int64 port = 0;
};

struct CDesktopProxy {
    kel::String mode; // "none", "manual" or "auto"; only "manual" makes the rest count
    CDesktopProxyServer http;
    CDesktopProxyServer https;
    CDesktopProxyServer ftp;
    CDesktopProxyServer socks;
    std::vector<kel::String> ignoreHosts;
};

/// Tells each scheme's proxy as "scheme=proxy". As desktops have it, "https" uses the HTTP proxy where it has
/// none of its own, and every scheme that is still without one the SOCKS proxy, to which the lookup of host
/// names is left
/// ("socks5h://"). Servers without host or port, and hosts that hold a separator of the list, count as not
/// configured.
CSystemProxy toSystemProxy(const CDesktopProxy& desktop);

} // namespace vantra
