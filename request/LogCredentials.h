/// Keeps credentials out of the transfer log. Private to the library.
#pragma once

#include <curl/curl.h>

#include <kel/String.h>

#include <string>
#include <string_view>

namespace vantra {

/// What the log shows in place of what it keeps back.
inline constexpr std::wstring_view strippedLogText = L"~stripped~";

/// Goes through the messages of one transfer in their order: begin() for each of them, then strip() for those
/// whose content is shown.
class CLogCredentials {
public:
    /// @param isHTTP whether the transfer is HTTP; the commands that log in elsewhere mean nothing there.
    explicit CLogCredentials(bool isHTTP) noexcept : isHTTP_(isHTTP) {}

    /// Looks at all bytes of the message that strip() is to be called for.
    void begin(curl_infotype type, std::string_view bytes);
    /// The text of the message, from its start on, without the credentials in it. A body stays as it is.
    kel::String strip(curl_infotype type, const kel::String& text);

private:
    kel::String stripCommand(const kel::String& text);

    const bool isHTTP_;
    bool isLoggingIn_ = false; // between a client's AUTH and the server's verdict

    // A request whose headers libcurl cannot send all at once comes in several messages, the later ones as
    // headers or as data.
    bool isSendingHeaders_ = false;     // whether the headers go on in the next message sent
    std::string unfinishedLine_;        // what the last message began of a header
    bool continuesHeaders_ = false;     // whether the present message begins with the rest of the headers
    bool continuesCredentials_ = false; // whether it begins with a part of such a header
};

} // namespace vantra
