#include "support/AccessLog.h"

#include "support/FlatJson.h"

#include <array>
#include <map>
#include <stdexcept>

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
    const std::map<std::string, std::string> values = parseFlatJson(line);
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
