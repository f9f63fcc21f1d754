#include "support/NginxServer.h"

#include "support/FilePath.h"
#include "support/ServerStart.h"
#include "support/TcpClient.h"
#include "support/Wait.h"

#include <atomic>
#include <filesystem>
#include <random>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace testsupport {

namespace {

constexpr std::size_t fixedPortCount = 7;

NginxPorts namedPorts(const std::vector<std::uint16_t>& ports) {
    NginxPorts named{ports.at(0), ports.at(1), ports.at(2), ports.at(3),
                     ports.at(4), ports.at(5), ports.at(6), {}};
    named.reverseProxies.assign(ports.begin() + fixedPortCount, ports.end());
    return named;
}

} // namespace

NginxServer::NginxServer(NginxOptions options) : authority_(std::move(options.authority)) {
    if (!authority_) authority_ = std::make_shared<CertificateAuthority>();
    writeDocuments();
    NginxConfiguration configuration;
    configuration.folder = folder_.path();
    configuration.authorityFile = authority_->caFile();
    configuration.moreLocations = options.moreLocations;
    configuration.certificates = makeCertificates();
    configuration.reverseProxies = options.reverseProxies;
    const auto launchOn = [&](const std::vector<std::uint16_t>& ports) {
        return launch(ports, configuration);
    };
    process_ = startServer(fixedPortCount + options.reverseProxies.size(), launchOn).process;
}

void NginxServer::writeDocuments() const {
    folder_.writeFile("www/hello.txt", helloContent());
    folder_.writeFile("www/page.html", pageContent());
    folder_.writeFile("www/empty.txt", "");
    folder_.writeFile("www/big.bin", bigContent());
    folder_.writeFile("htpasswd", userName() + ":{PLAIN}" + password() + "\n");
}

NginxCertificates NginxServer::makeCertificates() {
    const std::vector<std::string> names{"DNS:localhost", "IP:127.0.0.1"};
    CertificateOptions expired;
    expired.expired = true;
    return {authority_->issue("localhost", names), authority_->issue("other.example", {"DNS:other.example"}),
            authority_->issue("localhost", names, expired), authority_->selfSigned("localhost", names)};
}

std::unique_ptr<ChildProcess> NginxServer::launch(const std::vector<std::uint16_t>& ports,
                                                  NginxConfiguration configuration) {
    ports_ = namedPorts(ports);
    configuration.ports = ports_;
    const std::string file = folder_.writeFile("nginx.conf", makeNginxConfiguration(configuration));
    return std::make_unique<ChildProcess>(
        std::vector<std::string>{"nginx", "-p", folder_.path(), "-c", file, "-e", "stderr"});
}

std::string NginxServer::url(std::string_view path) const {
    return "http://127.0.0.1:" + std::to_string(ports_.http) + std::string(path);
}

std::string NginxServer::httpsUrl(std::string_view path) const { return httpsUrl(ports_.https, path); }

std::string NginxServer::httpsUrl(std::uint16_t port, std::string_view path) {
    return "https://localhost:" + std::to_string(port) + std::string(path);
}

std::string NginxServer::documentRoot() const { return folder_.file("www"); }

std::string NginxServer::fileContent(std::string_view path) const {
    return folder_.readFile("www/" + std::string(path));
}

/// The server's only worker finishes one thing after the other. Once it has logged a request of ours, all
/// that it had answered before that is in the log, too.
std::vector<AccessLogEntry> NginxServer::accessLog() const {
    static std::atomic<unsigned> count{0};
    const std::string target = std::string(nginxLogMarkerPath) + "?" + std::to_string(++count);
    requestLogMarker(target);
    std::vector<AccessLogEntry> entries;
    const auto readUpToMarker = [&] {
        entries.clear();
        std::istringstream lines(folder_.readFile("access.log"));
        for (std::string line; std::getline(lines, line) && !lines.eof();)
            entries.push_back(parseAccessLogLine(line));
        return !entries.empty() && entries.back().uri == target;
    };
    constexpr std::chrono::seconds limit{10};
    if (!waitUntil(readUpToMarker, limit))
        throw std::runtime_error("nginx did not log a request: " + errorLog());
    std::erase_if(entries,
                  [](const AccessLogEntry& entry) { return entry.uri.starts_with(nginxLogMarkerPath); });
    return entries;
}

void NginxServer::requestLogMarker(const std::string& target) const {
    TcpClient client(ports_.http);
    client.send("GET " + target + " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n");
    client.readToEnd();
}

void NginxServer::clearAccessLog() {
    accessLog();
    // nginx appends, so it goes on at the new end of the file.
    std::filesystem::resize_file(pathOf(folder_.file("access.log")), 0);
}

std::string NginxServer::errorLog() const { return folder_.readFile("error.log"); }

std::string NginxServer::pageContent() {
    return "<!DOCTYPE html>\n<html><head><title>A page</title></head><body><p>gr\xc3\xbc\xc3\x9f "
           "dich</p></body></html>\n";
}

const std::string& NginxServer::bigContent() {
    static const std::string content = [] {
        constexpr std::size_t size = 1U << 20U;
        constexpr std::mt19937_64::result_type seed = 20231;
        std::mt19937_64 generator(seed);
        std::string bytes;
        bytes.reserve(size);
        while (bytes.size() < size) {
            auto word = generator();
            for (std::size_t index = 0; index < sizeof word; ++index, word >>= 8) {
                bytes += static_cast<char>(word & 0xff);
            }
        }
        return bytes;
    }();
    return content;
}

} // namespace testsupport
