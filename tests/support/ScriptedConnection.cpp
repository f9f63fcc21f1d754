#include "support/ScriptedConnection.h"

#include "support/ScriptedRecord.h"
#include "support/SystemError.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>

namespace testsupport {

namespace {

using std::chrono::milliseconds;

std::size_t parseNumber(std::string_view text, int base, const char* meaning) {
    std::size_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (error != std::errc() || end != text.data() + text.size()) {
        throw UnexpectedBytes(std::string("not a ") + meaning + ": " + quoted(text));
    }
    return value;
}

} // namespace

std::string quoted(std::string_view bytes) {
    constexpr std::size_t longest = 200;
    constexpr const char* digits = "0123456789abcdef";
    std::string text = "\"";
    for (const char character : bytes.substr(0, longest)) {
        const auto code = static_cast<unsigned char>(character);
        if (character == '\r')
            text += "\\r";
        else if (character == '\n')
            text += "\\n";
        else if (character == '"' || character == '\\')
            text += {'\\', character};
        else if (code < 0x20 || code >= 0x7f)
            text += {'\\', 'x', digits[code / 16], digits[code % 16]};
        else
            text += character;
    }
    text += '"';
    if (bytes.size() > longest) text += "... (" + std::to_string(bytes.size()) + " bytes)";
    return text;
}

ScriptedConnection::ScriptedConnection(Socket socket, const Event& stop, std::size_t number,
                                       ScriptedRecord& record)
    : socket_(std::move(socket)), stop_(stop), number_(number), record_(record) {
    sendWithoutDelay(socket_);
}

void ScriptedConnection::requireOpen() const {
    if (!socket_.isOpen()) throw std::logic_error("the connection has been closed by the script itself");
}

/// Waits until the connection is ready.
/// @return false if the limit passed.
bool ScriptedConnection::waitUntilReady(Readiness readiness, std::optional<milliseconds> limit) {
    requireOpen();
    std::array<AwaitedSocket, 2> awaited{{{&stop_.socket(), Readiness::readable}, {&socket_, readiness}}};
    waitForAny(awaited, limit);
    if (awaited[0].isReady) throw ServerStopped();
    return awaited[1].isReady;
}

/// Receives what there is, or waits for it.
/// @return false if the client has ended its sending.
bool ScriptedConnection::receiveMore() {
    std::array<char, 65536> buffer;
    while (true) {
        const std::ptrdiff_t size = receive(socket_, buffer);
        if (size == 0) return false;
        if (size > 0) {
            const std::string_view bytes(buffer.data(), static_cast<std::size_t>(size));
            record_.addReceived(number_, bytes);
            unread_.append(bytes);
            return true;
        }
        if (errno == ECONNRESET) throw ClientGone("the client reset the connection");
        if (errno != EAGAIN && errno != EINTR) throwErrno("receive");
        waitUntilReady(Readiness::readable, std::nullopt);
    }
}

void ScriptedConnection::requireMore(std::string_view awaited) {
    requireOpen();
    if (receiveMore()) return;
    throw ClientGone("the client closed the connection before it had sent " + std::string(awaited) +
                     "; unread until then: " + quoted(unread_));
}

/// Receives what has come already, without waiting.
void ScriptedConnection::receivePending() {
    try {
        while (waitUntilReady(Readiness::readable, milliseconds(0)) && receiveMore()) {
        }
    } catch (const ClientGone&) {
        // Whoever is about to close does not mind.
    }
}

std::string ScriptedConnection::takeBytes(std::size_t count) {
    std::string bytes = unread_.substr(0, count);
    unread_.erase(0, count);
    return bytes;
}

std::string ScriptedConnection::readBytes(std::size_t count) {
    while (unread_.size() < count) requireMore(std::to_string(count) + " bytes");
    return takeBytes(count);
}

std::string ScriptedConnection::readUntil(std::string_view terminator) {
    std::size_t searched = 0;
    while (true) {
        const std::size_t found = unread_.find(terminator, searched);
        if (found != std::string::npos) return takeBytes(found + terminator.size());
        // The terminator may begin in what is here and end in what comes next.
        searched = unread_.size() - std::min(unread_.size(), terminator.size() - 1);
        requireMore(quoted(terminator));
    }
}

std::string ScriptedConnection::readLine() {
    std::string line = readUntil("\n");
    if (!line.ends_with("\r\n")) throw UnexpectedBytes("a line without CRLF: " + quoted(line));
    line.resize(line.size() - 2);
    return line;
}

std::optional<HttpRequest> ScriptedConnection::readHead() {
    requireOpen();
    if (unread_.empty() && !receiveMore()) return std::nullopt;
    const std::string head = readUntil("\r\n\r\n");
    try {
        lastHead_ = parseRequestHead(head);
    } catch (const std::runtime_error& error) {
        throw UnexpectedBytes(error.what());
    }
    lastHead_.connection = number_;
    lastRequestNumber_ = record_.addRequest(lastHead_);
    return lastHead_;
}

std::string ScriptedConnection::readBody() {
    std::string body;
    if (lastHead_.header("Transfer-Encoding") == "chunked") {
        body = readChunkedBody();
    } else if (const auto length = lastHead_.header("Content-Length")) {
        body = readBytes(parseNumber(*length, 10, "Content-Length"));
    }
    record_.completeRequest(lastRequestNumber_, body);
    return body;
}

std::string ScriptedConnection::readChunkedBody() {
    std::string body;
    while (true) {
        const std::string sizeLine = readLine();
        const std::size_t size =
            parseNumber(std::string_view(sizeLine).substr(0, sizeLine.find(';')), 16, "chunk size");
        if (size == 0) break;
        body += readBytes(size);
        if (const std::string end = readBytes(2); end != "\r\n") {
            throw UnexpectedBytes("a chunk ends in " + quoted(end));
        }
    }
    while (!readLine().empty()) {
    } // trailers
    return body;
}

std::optional<HttpRequest> ScriptedConnection::readRequest() {
    std::optional<HttpRequest> request = readHead();
    if (request) {
        request->body = readBody();
        request->isComplete = true;
    }
    return request;
}

void ScriptedConnection::send(std::string_view bytes) {
    requireOpen();
    while (!bytes.empty()) {
        const std::ptrdiff_t size = sendSome(socket_, bytes);
        if (size >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(size));
        } else if (errno == EPIPE || errno == ECONNRESET) {
            throw ClientGone("the client closed the connection with " + std::to_string(bytes.size()) +
                             " bytes left to send");
        } else if (errno == EAGAIN) {
            waitUntilReady(Readiness::writable, std::nullopt);
        } else if (errno != EINTR) {
            throwErrno("send");
        }
    }
}

void ScriptedConnection::sendInChunks(std::string_view bytes, std::size_t chunkSize, milliseconds pause) {
    if (chunkSize == 0) throw std::logic_error("chunks of no size");
    while (!bytes.empty()) {
        const std::size_t size = std::min(chunkSize, bytes.size());
        send(bytes.substr(0, size));
        bytes.remove_prefix(size);
        if (!bytes.empty()) delay(pause);
    }
}

void ScriptedConnection::delay(milliseconds time) {
    std::array<AwaitedSocket, 1> awaited{{{&stop_.socket(), Readiness::readable}}};
    waitForAny(awaited, time);
    if (awaited[0].isReady) throw ServerStopped();
}

bool ScriptedConnection::stall(const std::shared_ptr<Latch>& latch) {
    return stallUntilReleased(latch, true);
}

bool ScriptedConnection::stallWithoutReading(const std::shared_ptr<Latch>& latch) {
    return stallUntilReleased(latch, false);
}

bool ScriptedConnection::stallUntilReleased(const std::shared_ptr<Latch>& latch, bool isReading) {
    requireOpen();
    if (latch) latch->reach();
    const Readiness readiness = isReading ? Readiness::readable : Readiness::peerIsGone;
    while (true) {
        std::array<AwaitedSocket, 3> awaited{{{&stop_.socket(), Readiness::readable},
                                              {latch ? &latch->socket() : nullptr, Readiness::readable},
                                              {&socket_, readiness}}};
        waitForAny(awaited, std::nullopt);
        if (awaited[0].isReady) throw ServerStopped();
        if (awaited[1].isReady) return true;
        if (!awaited[2].isReady) continue;
        try {
            if (!isReading || !receiveMore()) return false;
        } catch (const ClientGone&) {
            return false;
        }
    }
}

void ScriptedConnection::waitFor(const std::shared_ptr<Latch>& latch) {
    latch->reach();
    std::array<AwaitedSocket, 2> awaited{
        {{&stop_.socket(), Readiness::readable}, {&latch->socket(), Readiness::readable}}};
    while (!awaited[0].isReady && !awaited[1].isReady) waitForAny(awaited, std::nullopt);
    if (awaited[0].isReady) throw ServerStopped();
}

void ScriptedConnection::close() {
    requireOpen();
    receivePending();
    socket_.reset();
}

void ScriptedConnection::halfClose() {
    requireOpen();
    if (!endSending(socket_)) throw ClientGone("the client was gone before the half-close");
    isHalfClosed_ = true;
}

void ScriptedConnection::reset() {
    requireOpen();
    // A reset discards what waits to be sent.
    constexpr milliseconds limit{1000};
    waitUntilDelivered(socket_, limit);
    resetConnection(socket_);
}

void ScriptedConnection::waitForEnd() {
    if (!socket_.isOpen()) return;
    try {
        while (true) {
            if (!unread_.empty() && !isHalfClosed_)
                throw UnexpectedBytes("unexpected bytes: " + quoted(unread_));
            if (!receiveMore()) return;
        }
    } catch (const ClientGone&) {
        // A reset is an end too: clients reset a connection on which they have not read everything.
    }
}

} // namespace testsupport
