/// @file support/AccessLog.h
/// What NginxServer notes about each request.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace testsupport {

/// One request as nginx saw it. A text is empty when the client did not send it.
struct AccessLogEntry {
    std::string method;
    std::string uri; ///< as sent, with the query and all escapes
    std::string protocol;
    int status = 0;
    std::string host;
    std::string authorization;
    std::string userAgent;
    std::string accept;
    std::string acceptEncoding;
    std::string range;
    std::string referer;
    std::string cookie;
    std::string contentType;
    std::string contentLength;
    std::string transferEncoding;
    std::string expect;
    std::string tlsProtocol;               ///< as in "TLSv1.3"; empty without TLS
    std::string clientCertificate;         ///< the subject, as in "CN=client"
    std::uint64_t connection = 0;          ///< the connection's number, unique in the server's life
    std::uint64_t requestOfConnection = 0; ///< 1 for the first request on its connection
};

/// The value of nginx's log_format directive, after its name, whose lines parseAccessLogLine() reads.
std::string accessLogFormat();

/// Reads one line, a flat JSON object.
/// @throws std::runtime_error if the line is not what accessLogFormat() makes.
AccessLogEntry parseAccessLogLine(std::string_view line);

} // namespace testsupport
