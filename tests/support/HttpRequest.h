/// @file support/HttpRequest.h
/// An HTTP request as a test server received it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace testsupport {

/// One HTTP/1 request: its head line by line, and its body without the chunked coding.
struct HttpRequest {
    std::size_t connection = 0;           ///< the number of its connection, from 0
    std::string startLine;                ///< as in "GET /path HTTP/1.1", without the line end
    std::vector<std::string> headerLines; ///< in the order sent, without the line ends
    std::string body;                     ///< empty until the whole body has come
    bool isComplete = false;              ///< whether the body, if any, has come

    std::string method() const;
    std::string target() const;

    /// The value of the first header with the name, whatever its case, without blanks around it.
    std::optional<std::string> header(std::string_view name) const;

    /// The values of all headers with the name, in the order sent; see header().
    std::vector<std::string> headers(std::string_view name) const;
};

/// Takes a request's head apart.
/// @param head the bytes up to and including the blank line.
/// @throws std::runtime_error if the start line has no method and target, or a header line no colon.
HttpRequest parseRequestHead(std::string_view head);

/// The response "HTTP/1.1 200 OK" with a Content-Length header, more headers and a body.
/// @param moreHeaders whole header lines, each with its CRLF.
std::string okResponse(std::string_view body, std::string_view moreHeaders = {});

} // namespace testsupport
