/// @file URLArgument.h
/// The address of a transfer as the user gave it.
#pragma once

#include <kel/String.h>

#include <optional>
#include <string>

namespace vantra::tool {

/// A well-formed URL (RFC 3986) of the scheme http, https, ftp or ftps.
///
/// Thread safety: not changed after it was made.
class CURLArgument {
public:
    /// @param argumentName for the error's text, which never repeats the URL: a password may be part of it.
    /// @throws CUsageError for anything else than such a URL, and for one with a password.
    CURLArgument(const std::string& argumentName, const std::string& argument);

    /// The URL without a user's name.
    [[nodiscard]] const kel::String& getText() const noexcept { return text_; }
    /// The name of a user that stood in the URL, percent-decoded.
    [[nodiscard]] const std::optional<kel::String>& getUser() const noexcept { return user_; }
    [[nodiscard]] bool isHTTP() const noexcept { return isHTTP_; }

private:
    kel::String text_;
    std::optional<kel::String> user_;
    bool isHTTP_;
};

} // namespace vantra::tool
