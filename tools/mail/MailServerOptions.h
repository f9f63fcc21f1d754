/// @file mail/MailServerOptions.h
/// The options of how a mail server is reached.
#pragma once

#include "options/LoginOptions.h"

#include <vantra/NetRequest.h>
#include <vantra/SMTPClient.h>

#include <kel/String.h>
#include <kel/Time.h>

#include <optional>

namespace CLI { // NOLINT(readability-identifier-naming)
class App;
}

namespace vantra::tool {

/// --server, --tls, --timeout and the login. Lives as long as the parser, which fills it.
class CMailServerOptions {
public:
    CMailServerOptions() = default;
    CMailServerOptions(const CMailServerOptions&) = delete;
    CMailServerOptions& operator=(const CMailServerOptions&) = delete;

    /// Adds the options to a verb. To be called once.
    void addTo(CLI::App& verb);

    /// Whether the password comes from standard input.
    [[nodiscard]] bool readPasswordFromStandardInput() const noexcept { return login_.readsStandardInput(); }

    /// @throws kel::CError if the password file cannot be read.
    [[nodiscard]] CSMTPParams getParams() const;

    /// Configures a request that was set up for those parameters.
    void applyTo(CNetRequest& request) const;

private:
    void parseServer(const std::string& argument);
    void parseTLS(const std::string& argument);

    kel::String host_;
    int port_ = 0;
    CSMTPParams::ConnectType connectType_ = CSMTPParams::ConnectTypeUnencrypted;
    CLoginOptions login_;
    std::optional<kel::CTimeSpan> timeout_;
};

} // namespace vantra::tool
