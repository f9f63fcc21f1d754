/// @file RequestOptions.h
/// The options of every verb that is given URLs.
#pragma once

#include "arguments/URLArgument.h"
#include "options/ConnectionOptions.h"
#include "options/HeaderOptions.h"
#include "options/LoginOptions.h"

#include <vantra/NetRequest.h>

namespace vantra::tool {

/// Headers, connection and login as the user gave them. Lives as long as the parser, which fills it.
class CRequestOptions {
public:
    CRequestOptions() = default;
    CRequestOptions(const CRequestOptions&) = delete;
    CRequestOptions& operator=(const CRequestOptions&) = delete;

    /// Adds the options to a verb. To be called once.
    void addTo(CLI::App& verb);

    [[nodiscard]] const CHeaderOptions& getHeaders() const noexcept { return headers_; }

    [[nodiscard]] const CLoginOptions& getLogin() const noexcept { return login_; }

    /// What can be said about an address before anything is read or sent.
    /// @throws CUsageError if an option does not fit it.
    void checkFor(const CURLArgument& url) const;

    /// Configures a request for the address, which may be of no other scheme than those of CURLArgument.
    /// @throws kel::CError if a file that an option names cannot be read.
    void applyTo(CNetRequest& request, const CURLArgument& url) const;

private:
    void applyLogin(CNetRequest& request, const CURLArgument& url) const;

    CHeaderOptions headers_;
    CConnectionOptions connection_;
    CLoginOptions login_;
};

} // namespace vantra::tool
