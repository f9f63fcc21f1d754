/// @file ftp/EscapingFTPClient.h
/// The client of every FTP verb.
#pragma once

#include "options/ConnectionOptions.h"
#include "options/LoginOptions.h"
#include "transfer/TransferLog.h"
#include "transfer/TransferMonitor.h"

#include <vantra/FTPClient.h>

#include <kel/String.h>

#include <optional>

namespace vantra::tool {

/// A client that takes every path as it is: names need no escape, wherever they go.
class CEscapingFTPClient : public CFTPClient {
public:
    /// @param connection, monitor must outlive the client; every request has the options and is watched.
    CEscapingFTPClient(const kel::String& host, const Login& login, ConnectType type,
                       const CConnectionOptions& connection, CTransferMonitor& monitor);

    /// Has the log take the record of each transfer ahead of the next one; that of the last one stays with
    /// the request. @param log null (the default) for none; must outlive the client.
    void setLog(CTransferLog* log) noexcept { log_ = log; }

    /// The path from the server's root on. Commands take one that begins with a slash for that, while in a
    /// URL it begins at the directory of the login: what both are told has to be the same file. Logs in to
    /// learn which directory that is (CURLINFO_FTP_ENTRY_PATH). All paths that the client is given afterwards
    /// count from the root.
    /// @param path from the directory of the login on, or with two slashes in front from the root on.
    /// @throws CCURLError
    [[nodiscard]] kel::String toPathFromRoot(CNetRequest& request, const kel::String& path);

protected:
    void beginPrepareRequest(CNetRequest& request, const kel::String& path,
                             bool createMissingDirs) const override;

private:
    [[nodiscard]] kel::String findLoginDirectory(CNetRequest& request) const;

    const CConnectionOptions& connection_;
    CTransferMonitor& monitor_;
    CTransferLog* log_ = nullptr;
    mutable bool hasTransferred_ = false;       // or is about to
    std::optional<kel::String> loginDirectory_; // without a slash at the end, once it is known
    bool countsFromRoot_ = false;
};

} // namespace vantra::tool
