#include "support/HttpRequest.h"

#include <algorithm>
#include <stdexcept>

namespace testsupport {

namespace {

char lowered(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool equalIgnoringCase(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return lowered(a) == lowered(b); });
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::vector<std::string> splitLines(std::string_view head) {
    std::vector<std::string> lines;
    while (!head.empty()) {
        const std::size_t end = head.find("\r\n");
        if (end == 0 || end == std::string_view::npos) break;
        lines.emplace_back(head.substr(0, end));
        head.remove_prefix(end + 2);
    }
    return lines;
}

} // namespace

std::string HttpRequest::method() const { return startLine.substr(0, startLine.find(' ')); }

std::string HttpRequest::target() const {
    const std::size_t first = startLine.find(' ') + 1;
    return startLine.substr(first, startLine.find(' ', first) - first);
}

std::optional<std::string> HttpRequest::header(std::string_view name) const {
    const std::vector<std::string> values = headers(name);
    if (values.empty()) return std::nullopt;
    return values.front();
}

std::vector<std::string> HttpRequest::headers(std::string_view name) const {
    std::vector<std::string> values;
    for (const std::string_view line : headerLines) {
        const std::size_t colon = line.find(':');
        if (equalIgnoringCase(line.substr(0, colon), name))
            values.emplace_back(trimmed(line.substr(colon + 1)));
    }
    return values;
}

HttpRequest parseRequestHead(std::string_view head) {
    std::vector<std::string> lines = splitLines(head);
    HttpRequest request;
    if (!lines.empty()) request.startLine = lines.front();
    if (std::count(request.startLine.begin(), request.startLine.end(), ' ') != 2) {
        throw std::runtime_error("not an HTTP request line: \"" + request.startLine + "\"");
    }
    request.headerLines.assign(lines.begin() + 1, lines.end());
    for (const std::string& line : request.headerLines) {
        if (line.find(':') == std::string::npos)
            throw std::runtime_error("a header without a colon: \"" + line + "\"");
    }
    return request;
}

std::string okResponse(std::string_view body, std::string_view moreHeaders) {
    std::string response = "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n";
    return response.append(moreHeaders).append("\r\n").append(body);
}

} // namespace testsupport
