/// @file LoginOptions.h
/// The options of how to log in.
#pragma once

#include "URLArgument.h"

#include <kel/String.h>

#include <optional>

namespace CLI { // NOLINT(readability-identifier-naming)
class App;
}

namespace vantra::tool {

/// --user, --password and --password-file. Lives as long as the parser, which fills it.
class CLoginOptions {
public:
    CLoginOptions() = default;
    CLoginOptions(const CLoginOptions&) = delete;
    CLoginOptions& operator=(const CLoginOptions&) = delete;

    /// Adds the options to a verb. To be called once.
    void addTo(CLI::App& verb);

    /// Whether the user gave one.
    [[nodiscard]] bool isGiven() const noexcept { return user_.has_value(); }

    /// Whether the password comes from standard input.
    [[nodiscard]] bool readsStandardInput() const noexcept { return passwordFile_ && *passwordFile_ == "-"; }

    /// The login, with an empty password if none was given; nothing without --user. The first call reads
    /// --password-file.
    /// @throws kel::CError if the file cannot be read.
    [[nodiscard]] std::optional<Login> getLogin() const;

private:
    std::optional<kel::String> user_;
    std::optional<kel::String> password_;
    std::optional<kel::String> passwordFile_;
    mutable std::optional<Login> login_; // once it was asked for; standard input can be read but once
};

} // namespace vantra::tool
