/// @file support/NginxConfiguration.h
/// The configuration file of NginxServer.
#pragma once

#include "support/CertificateAuthority.h"

#include <cstdint>
#include <string>
#include <vector>

namespace testsupport {

/// A further HTTPS port of the server, which hands every request on to a server on this machine, with the
/// path byte for byte as the client sent it.
struct ReverseProxy {
    std::uint16_t upstreamPort = 0; ///< a plain HTTP port of 127.0.0.1
    bool isHttp2 = false;           ///< whether clients may use HTTP/2; otherwise HTTP/1.1 only
    bool buffersRequests = false;   ///< whether a request waits until all of its body has come
};

/// The ports of NginxServer, all of 127.0.0.1.
struct NginxPorts {
    std::uint16_t http = 0;
    std::uint16_t https = 0;             ///< HTTP/2 and HTTP/1.1
    std::uint16_t https1 = 0;            ///< HTTP/1.1 only
    std::uint16_t wrongHost = 0;         ///< HTTPS with a certificate for other.example
    std::uint16_t expired = 0;           ///< HTTPS with an expired certificate
    std::uint16_t selfSigned = 0;        ///< HTTPS with a certificate that no authority has signed
    std::uint16_t clientCertificate = 0; ///< HTTPS that wants a client certificate of the same authority
    std::vector<std::uint16_t> reverseProxies; ///< in the order of the options
};

/// The certificates of NginxServer.
struct NginxCertificates {
    Certificate server; ///< for localhost and 127.0.0.1
    Certificate wrongHost;
    Certificate expired;
    Certificate selfSigned;
};

/// What the configuration file is made from.
struct NginxConfiguration {
    std::string
        folder; ///< holds the document root "www", the password file "htpasswd", the logs and temporary files
    std::string authorityFile;
    std::string moreLocations;
    NginxPorts ports;
    NginxCertificates certificates;
    std::vector<ReverseProxy> reverseProxies;
};

/// The body of the response to /bench: 256 bytes.
std::string nginxBenchBody();

/// The path of the requests that NginxServer makes itself, to know that the log is up to date.
constexpr const char* nginxLogMarkerPath = "/log-marker";

std::string makeNginxConfiguration(const NginxConfiguration& configuration);

} // namespace testsupport
