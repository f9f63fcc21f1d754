/// @file RequestOptions.h
/// The options of every verb that makes requests.
#pragma once

#include "HeaderArgument.h"
#include "URLArgument.h"

#include <vantra/NetRequest.h>

#include <kel/Time.h>

#include <optional>
#include <vector>

namespace CLI { // NOLINT(readability-identifier-naming)
class App;
}

namespace vantra::tool {

/// Headers, login, TLS and time limit as the user gave them. Lives as long as the parser, which fills it.
class CRequestOptions {
public:
    CRequestOptions() = default;
    CRequestOptions(const CRequestOptions&) = delete;
    CRequestOptions& operator=(const CRequestOptions&) = delete;

    /// Adds the options to a verb. To be called once.
    void addTo(CLI::App& verb);

    /// What can be said about an address before anything is read or sent.
    /// @throws CUsageError if an option does not fit it.
    void checkFor(const CURLArgument& url) const;

    /// Configures a request for the address: these options, and what holds for every transfer of the tool (at
    /// most 50 redirects, which lead to HTTP and HTTPS only).
    /// @throws kel::CError if a file that an option names cannot be read.
    void applyTo(CNetRequest& request, const CURLArgument& url) const;

private:
    void addHeaderOption(CLI::App& verb);
    void addTLSOptions(CLI::App& verb);
    void addTimeoutOption(CLI::App& verb);
    void addLoginOptions(CLI::App& verb);
    void applyTLS(CNetRequest& request) const;
    void applyHeaders(CNetRequest& request) const;
    void applyLogin(CNetRequest& request, const CURLArgument& url) const;
    [[nodiscard]] std::optional<Login> getLogin() const;

    std::vector<HeaderArgument> headers_;
    bool insecure_ = false;
    std::optional<kel::String> caFile_;
    std::optional<kel::CTimeSpan> timeout_;
    std::optional<kel::String> user_;
    std::optional<kel::String> password_;
    std::optional<kel::String> passwordFile_;
};

} // namespace vantra::tool
