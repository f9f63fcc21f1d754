#include "support/AccessLog.h"

#include <array>
#include <charconv>
#include <map>
#include <stdexcept>
#include <utility>

namespace testsupport {

namespace {

struct TextField {
    const char* name;
    const char* variable;
    std::string AccessLogEntry::*member;
};

constexpr std::array<TextField, 17> textFields{{
    {"method", "$request_method", &AccessLogEntry::method},
    {"uri", "$request_uri", &AccessLogEntry::uri},
    {"protocol", "$server_protocol", &AccessLogEntry::protocol},
    {"host", "$http_host", &AccessLogEntry::host},
    {"authorization", "$http_authorization", &AccessLogEntry::authorization},
    {"userAgent", "$http_user_agent", &AccessLogEntry::userAgent},
    {"accept", "$http_accept", &AccessLogEntry::accept},
    {"acceptEncoding", "$http_accept_encoding", &AccessLogEntry::acceptEncoding},
    {"range", "$http_range", &AccessLogEntry::range},
    {"referer", "$http_referer", &AccessLogEntry::referer},
    {"cookie", "$http_cookie", &AccessLogEntry::cookie},
    {"contentType", "$http_content_type", &AccessLogEntry::contentType},
    {"contentLength", "$http_content_length", &AccessLogEntry::contentLength},
    {"transferEncoding", "$http_transfer_encoding", &AccessLogEntry::transferEncoding},
    {"expect", "$http_expect", &AccessLogEntry::expect},
    {"tlsProtocol", "$ssl_protocol", &AccessLogEntry::tlsProtocol},
    {"clientCertificate", "$ssl_client_s_dn", &AccessLogEntry::clientCertificate},
}};

/// Reads the strings and the numbers of a flat JSON object.
class FlatJsonReader {
public:
    explicit FlatJsonReader(std::string_view text) : text_(text) {}

    std::map<std::string, std::string> read() {
        std::map<std::string, std::string> fields;
        expect('{');
        do {
            std::string name = readString();
            expect(':');
            fields[std::move(name)] = peek() == '"' ? readString() : readNumber();
        } while (accept(','));
        expect('}');
        return fields;
    }

private:
    char peek() const {
        if (position_ >= text_.size()) fail();
        return text_[position_];
    }

    char next() {
        const char character = peek();
        ++position_;
        return character;
    }

    bool accept(char character) {
        if (peek() != character) return false;
        ++position_;
        return true;
    }

    void expect(char character) {
        if (!accept(character)) fail();
    }

    std::string readString() {
        std::string value;
        expect('"');
        for (char character = next(); character != '"'; character = next()) {
            value += character == '\\' ? readEscape() : character;
        }
        return value;
    }

    /// nginx writes the short escapes, and \u00XX for the other control characters.
    char readEscape() {
        switch (const char kind = next()) {
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        case 'b':
            return '\b';
        case 'f':
            return '\f';
        case 'u':
            return readHexadecimal();
        default:
            return kind;
        }
    }

    char readHexadecimal() {
        constexpr std::size_t digitCount = 4;
        if (text_.size() - position_ < digitCount) fail();
        const char* first = text_.data() + position_;
        unsigned char code = 0;
        if (std::from_chars(first, first + digitCount, code, 16).ptr != first + digitCount) fail();
        position_ += digitCount;
        return static_cast<char>(code);
    }

    std::string readNumber() {
        const std::size_t end = text_.find_first_not_of("0123456789", position_);
        if (end == position_ || end == std::string_view::npos) fail();
        std::string digits(text_.substr(position_, end - position_));
        position_ = end;
        return digits;
    }

    [[noreturn]] void fail() const {
        throw std::runtime_error("not a line of the access log: " + std::string(text_));
    }

    std::string_view text_;
    std::size_t position_ = 0;
};

} // namespace

std::string accessLogFormat() {
    std::string format = "escape=json '{";
    for (const TextField& field : textFields) {
        format += std::string("\"") + field.name + "\":\"" + field.variable + "\",";
    }
    return format +
           R"("status":$status,"connection":$connection,"requestOfConnection":$connection_requests}')";
}

AccessLogEntry parseAccessLogLine(std::string_view line) {
    const std::map<std::string, std::string> values = FlatJsonReader(line).read();
    const auto value = [&](const std::string& name) {
        const auto found = values.find(name);
        if (found == values.end())
            throw std::runtime_error("no " + name + " in the access log: " + std::string(line));
        return found->second;
    };
    AccessLogEntry entry;
    for (const TextField& field : textFields) entry.*field.member = value(field.name);
    entry.status = std::stoi(value("status"));
    entry.connection = std::stoull(value("connection"));
    entry.requestOfConnection = std::stoull(value("requestOfConnection"));
    return entry;
}

} // namespace testsupport
