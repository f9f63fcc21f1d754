/// Keeps credentials out of the transfer log. Private to the library.
#pragma once

#include <curl/curl.h>

#include <kel/String.h>

#include <string_view>

namespace vantra {

/// What the log shows in place of what it keeps back.
inline constexpr std::wstring_view strippedLogText = L"~stripped~";

/// Goes through the messages of one transfer in their order.
class CLogCredentials {
public:
    /// @param isHTTP whether the transfer is HTTP; the commands that log in elsewhere mean nothing there.
    explicit CLogCredentials(bool isHTTP) noexcept : isHTTP_(isHTTP) {}

    /// The text of a message, which is not data, without the credentials in it.
    kel::String strip(curl_infotype type, const kel::String& text);

private:
    kel::String stripCommand(const kel::String& text);

    const bool isHTTP_;
    bool isLoggingIn_ = false; // between a client's AUTH and the server's verdict
};

} // namespace vantra
