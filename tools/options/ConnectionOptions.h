/// @file ConnectionOptions.h
/// The options of how a server is reached.
#pragma once

#include "arguments/ProxyArgument.h"

#include <vantra/NetRequest.h>

#include <kel/String.h>
#include <kel/Time.h>

#include <optional>

namespace CLI { // NOLINT(readability-identifier-naming)
class App;
}

namespace vantra::tool {

/// --insecure, --cacert, --timeout and --proxy, for every verb that makes requests. Lives as long as the
/// parser, which fills it.
class CConnectionOptions {
public:
    CConnectionOptions() = default;
    CConnectionOptions(const CConnectionOptions&) = delete;
    CConnectionOptions& operator=(const CConnectionOptions&) = delete;

    /// Adds the options to a verb. To be called once.
    void addTo(CLI::App& verb);

    /// Configures a request that has its URL: these options, and what holds for every transfer of the tool
    /// (its name, at most 50 redirects, which lead to HTTP and HTTPS only).
    /// @throws kel::CError if a file that an option names cannot be read.
    void applyTo(CNetRequest& request) const;

private:
    void addTLSOptions(CLI::App& verb);
    void addTimeoutOption(CLI::App& verb);
    void addProxyOption(CLI::App& verb);
    void applyTLS(CNetRequest& request) const;

    bool insecure_ = false;
    std::optional<kel::String> caFile_;
    std::optional<kel::CTimeSpan> timeout_;
    std::optional<CProxyArgument> proxy_;
};

} // namespace vantra::tool
