/// @file ftp/FTPOptions.h
/// The options of every FTP verb.
#pragma once

#include "ftp/EscapingFTPClient.h"
#include "ftp/FTPAddress.h"
#include "options/ConnectionOptions.h"
#include "options/LoginOptions.h"
#include "transfer/TransferMonitor.h"

#include <vantra/FTPClient.h>

#include <kel/P.h>

#include <optional>

namespace CLI { // NOLINT(readability-identifier-naming)
class App;
}

namespace vantra::tool {

/// Login, TLS, connection and the way to walk to a directory. Lives as long as the parser, which fills it.
class CFTPOptions {
public:
    CFTPOptions() = default;
    CFTPOptions(const CFTPOptions&) = delete;
    CFTPOptions& operator=(const CFTPOptions&) = delete;

    /// Adds the options to a verb. To be called once.
    void addTo(CLI::App& verb);

    /// A client of the address's server. Its requests use the options, and are watched by the monitor, which
    /// must outlive it, as must this.
    /// @throws CUsageError for options that do not fit the address; kel::CError if a file that one names
    /// cannot be read.
    [[nodiscard]] kel::P<CEscapingFTPClient> makeClient(const CFTPAddress& address,
                                                        CTransferMonitor& monitor) const;

private:
    [[nodiscard]] Login getLogin(const CFTPAddress& address) const;
    [[nodiscard]] CFTPClient::ConnectType getConnectType(const CFTPAddress& address) const;

    CLoginOptions login_;
    CConnectionOptions connection_;
    std::optional<CFTPClient::ConnectType> connectType_;
    CFTPClient::CWDType cwdType_ = CFTPClient::CWDInvalid;
};

} // namespace vantra::tool
