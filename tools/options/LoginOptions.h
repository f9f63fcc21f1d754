/// @file LoginOptions.h
/// The options of how to log in.
#pragma once

#include "arguments/URLArgument.h"

#include <kel/String.h>

#include <optional>

namespace CLI { // NOLINT(readability-identifier-naming)
class App;
}

namespace vantra::tool {

/// A user's name and password for a server.
struct Login {
    kel::String user;
    kel::String password;
};

/// --user and --password-file. Lives as long as the parser, which fills it.
class CLoginOptions {
public:
    CLoginOptions() = default;
    CLoginOptions(const CLoginOptions&) = delete;
    CLoginOptions& operator=(const CLoginOptions&) = delete;

    /// Adds the options to a verb. To be called once.
    void addTo(CLI::App& verb);

    /// Whether the password comes from standard input.
    [[nodiscard]] bool readsStandardInput() const noexcept { return passwordFile_ && *passwordFile_ == "-"; }

    /// What can be said about an address before anything is read.
    /// @throws CUsageError if both it and --user name a user.
    void checkFor(const CURLArgument& url) const;

    /// The login, with an empty password if none was given; nothing without --user. The first call reads
    /// --password-file.
    /// @throws kel::CError if the file cannot be read.
    [[nodiscard]] std::optional<Login> getLogin() const;
    /// The same for an address, whose own user has an empty password.
    [[nodiscard]] std::optional<Login> getLogin(const CURLArgument& url) const;

private:
    std::optional<kel::String> user_;
    std::optional<kel::String> passwordFile_;
    mutable std::optional<Login> login_; // once it was asked for; standard input can be read but once
};

} // namespace vantra::tool
