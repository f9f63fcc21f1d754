#include "support/TcpClient.h"

#include "support/SystemError.h"

#include <array>
#include <cerrno>
#include <stdexcept>

namespace testsupport {

TcpClient::TcpClient(std::uint16_t port, std::chrono::milliseconds limit)
    : socket_(newSocket(Blocking::yes)) {
    setTimeLimit(socket_, limit);
    sendWithoutDelay(socket_);
    const int error = startConnecting(socket_, port);
    if (error != 0) {
        errno = error;
        throwErrno("connect to port " + std::to_string(port));
    }
}

void TcpClient::send(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::ptrdiff_t size = sendSome(socket_, bytes);
        if (size < 0) throwErrno("send");
        bytes.remove_prefix(static_cast<std::size_t>(size));
    }
}

std::string TcpClient::takeBytes(std::size_t count) {
    std::string bytes = unread_.substr(0, count);
    unread_.erase(0, count);
    return bytes;
}

std::string TcpClient::readSome() {
    if (!unread_.empty()) return takeBytes(unread_.size());
    std::array<char, 65536> buffer;
    const std::ptrdiff_t size = receive(socket_, buffer);
    if (size < 0) throwErrno("receive");
    return std::string(buffer.data(), static_cast<std::size_t>(size));
}

void TcpClient::requireMore(std::string_view awaited) {
    std::string kept = takeBytes(unread_.size());
    const std::string more = readSome();
    unread_ = std::move(kept) + more;
    if (!more.empty()) return;
    throw std::runtime_error("the server closed the connection before it had sent " + std::string(awaited) +
                             ", after: " + unread_);
}

std::string TcpClient::readBytes(std::size_t count) {
    while (unread_.size() < count) requireMore(std::to_string(count) + " bytes");
    return takeBytes(count);
}

std::string TcpClient::readUntil(std::string_view terminator) {
    while (true) {
        const std::size_t found = unread_.find(terminator);
        if (found != std::string::npos) return takeBytes(found + terminator.size());
        requireMore(terminator);
    }
}

std::string TcpClient::readToEnd() {
    std::string all;
    while (true) {
        const std::string some = readSome();
        if (some.empty()) return all;
        all += some;
    }
}

void TcpClient::finishSending() {
    if (!endSending(socket_)) throwErrno("end sending");
}

void TcpClient::close() { socket_.reset(); }

void TcpClient::reset() { resetConnection(socket_); }

} // namespace testsupport
