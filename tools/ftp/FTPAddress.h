/// @file ftp/FTPAddress.h
/// A file or directory on an FTP server as the user names it.
#pragma once

#include "arguments/URLArgument.h"

#include <kel/String.h>

#include <string>

namespace vantra::tool {

/// A URL of the scheme ftp or ftps. Its path is percent-encoded and relative to the directory of the login;
/// one that begins with two slashes starts at the server's root.
class CFTPAddress {
public:
    /// @param argumentName for the error's text.
    /// @throws CUsageError for anything else than such a URL.
    CFTPAddress(const std::string& argumentName, const std::string& argument);

    [[nodiscard]] const CURLArgument& getURL() const noexcept { return url_; }
    /// With the port, if the URL names one.
    [[nodiscard]] const kel::String& getHost() const noexcept { return host_; }
    /// Decoded.
    [[nodiscard]] const kel::String& getPath() const noexcept { return path_; }
    /// Whether the scheme is ftps.
    [[nodiscard]] bool hasImplicitTLS() const noexcept { return hasImplicitTLS_; }

private:
    CURLArgument url_;
    kel::String host_;
    kel::String path_;
    bool hasImplicitTLS_ = false;
};

} // namespace vantra::tool
