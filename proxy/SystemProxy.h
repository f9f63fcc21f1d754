/// The operating system's proxy configuration. Private to the library.
#pragma once

#include <kel/String.h>

namespace vantra {

/// Two lists as CProxySettings::addProxiesFromString and addDirectConnectHostsFromString read them; empty
/// when the system has nothing to say.
struct CSystemProxy {
    kel::String proxyList;
    kel::String bypassList;
};

/// The configuration of the current user, or else of the machine. What cannot be read counts as not
/// configured.
CSystemProxy getSystemProxy();

} // namespace vantra
