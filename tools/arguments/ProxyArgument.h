/// @file ProxyArgument.h
/// The proxy of a transfer as the user gave it.
#pragma once

#include <vantra/NetRequest.h>

#include <kel/String.h>

#include <string>

namespace vantra::tool {

/// "system", "none" or a proxy's address.
class CProxyArgument {
public:
    /// @param option the option's name, for the error's text, which never repeats the address: a password may
    /// be part of it.
    /// @throws CUsageError for anything else than "system", "none", and
    /// [SCHEME://][USER@]HOST[:PORT] with the scheme http, https, socks4, socks4a, socks5 or
    /// socks5h.
    CProxyArgument(const std::string& option, const std::string& argument);

    /// To be called after setURL(), because what the system settings say depends on the URL.
    void applyTo(CNetRequest& request) const;

private:
    bool isSystem_;
    kel::String address_; // empty for none
};

} // namespace vantra::tool
