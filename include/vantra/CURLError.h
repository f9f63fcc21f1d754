/// @file vantra/CURLError.h
/// The one exception for failed transfers, and what callers ask of any error.
///
///     try {
///         request->perform();
///     } catch (const kel::CError& error) {
///         if (getHTTPStatusCodeFromError(error) == 404) ...
///         else if (isNetworkOrServiceDownError(error)) ...
///     }
#pragma once

#include <curl/curl.h>

#include "vantra/Export.h"

#include <kel/Error.h>
#include <kel/Props.h>
#include <kel/String.h>

namespace vantra {

/// A transfer failed. The code is libcurl's: a CURLcode in the domain "curl", a CURLMcode in the domain
/// "curlm". What the server answered is in the members below and, for those who hold only a kel::CError, in
/// its parameters, each present only when it has something to say. The server's message is, for HTTP, what
/// CNetRequest::getServerErrorMessageFromResponseData makes of the body in the default receive buffer; for
/// SMTP the last reply line that begins with the response code, or else the last line, without its line end.
///
///
/// | parameter            | value                                                    | present when   |
/// |----------------------|----------------------------------------------------------|----------------|
/// | "responseCodeDomain" | protocol of the response code: "http", "ftp", "smtp"     | not empty      |
/// | "responseCode"       | the protocol's response code in decimal                  | greater than 0 |
/// | "serverMessage"      | what the server said about the failure                   | not empty      |
/// | "httpStatusLine"     | the last HTTP status line received                       | not empty      |
/// | "url"                | the URL of the request                                   | not empty      |
/// | "httpMethod"         | the request's method                                     | not empty      |
///
/// Thread safety: not changed after it was made; any thread may read it.
class VANTRA_API CCURLError : public kel::CError {
public:
    /// @{
    /// @param responseCode 0 or less when there was no response.
    CCURLError(CURLcode code, const kel::String& message, const kel::String& responseCodeDomain,
               int responseCode, const kel::String& serverMessage, const kel::String& httpStatusLine,
               const kel::String& url, const kel::String& httpMethod);
    CCURLError(CURLMcode code, const kel::String& message, const kel::String& responseCodeDomain,
               int responseCode, const kel::String& serverMessage, const kel::String& httpStatusLine,
               const kel::String& url, const kel::String& httpMethod);
    /// @}

    /// libcurl's text for the code, ": " and `message` unless that is empty, and for a positive response code
    /// " (response code: DOMAIN CODE)".
    static kel::String makeErrorText(CURLcode code, const kel::String& message,
                                     const kel::String& responseCodeDomain, int responseCode);
    /// The same for a multi code; the bracket names no domain.
    static kel::String makeErrorText(CURLMcode code, const kel::String& message, int responseCode);

    /// 0 or less when there was no response.
    [[nodiscard]] int getResponseCode() const noexcept { return responseCode_; }
    /// "http", "ftp", "smtp", or empty when there was no response.
    [[nodiscard]] kel::String getResponseCodeDomain() const { return responseCodeDomain_; }
    /// What the server said about the failure; empty when it said nothing.
    [[nodiscard]] const kel::String& getServerMessage() const noexcept { return serverMessage_; }
    /// The last HTTP status line received; empty when there was none.
    [[nodiscard]] const kel::String& getHTTPStatusLine() const noexcept { return httpStatusLine_; }
    /// The URL as the request was given it; empty for errors of no request.
    [[nodiscard]] const kel::String& getURL() const noexcept { return url_; }
    /// The method as the request was given it; empty when none was set, and for protocols other than HTTP.
    [[nodiscard]] const kel::String& getHTTPMethod() const noexcept { return httpMethod_; }

    /// The parameter "responseCode" as a number cut to 32 bits; -1 when it is absent or empty.
    /// @throws kel::CError if it is no integer.
    static int getResponseCode(const kel::CProps& params);
    /// The parameter "responseCodeDomain", empty when absent.
    static kel::String getResponseCodeDomain(const kel::CProps& params);

    [[nodiscard]] kel::P<kel::CError> clone() const override;
    [[noreturn]] void throwClone() const override;

private:
    kel::String responseCodeDomain_;
    int responseCode_;
    kel::String serverMessage_;
    kel::String httpStatusLine_;
    kel::String url_;
    kel::String httpMethod_;
};

/// The HTTP status that an error stands for, or -1. An error of the domain "http" is its own status; for
/// others the response code counts if its domain is "http", and for a "curl" error other than
/// CURLE_HTTP_RETURNED_ERROR only from 400 on: a transfer that broke down after a 302 did not fail for it.
/// @throws kel::CError as CCURLError::getResponseCode for an error whose parameter "responseCode" is no
/// integer, which none of this library's has.
VANTRA_API int getHTTPStatusCodeFromError(const kel::CError& error);

/// Whether the network, the name service or the server's service is down: a "curl" error with code 5, 6, 7 or
/// 35 (proxy or host not resolved, no connection, no TLS connection), or with the response HTTP 503 or FTP
/// 421. Time-outs do not count, nor does a response code that is no number.
VANTRA_API bool isNetworkOrServiceDownError(const std::exception& error);

} // namespace vantra
