/// @file support/ScriptedConnection.h
/// The server's end of one connection to a ScriptedServer, for handlers and for the steps of a Script.
#pragma once

#include "support/Event.h"
#include "support/HttpRequest.h"
#include "support/Latch.h"
#include "support/Sockets.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace testsupport {

class ScriptedRecord;

/// The client ended the connection in the middle of something.
class ClientGone : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The client sent something else than it should have.
class UnexpectedBytes : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Thrown to end a connection's thread when its server is destroyed. Not a std::exception, so that a handler
/// which catches those lets it through.
struct ServerStopped {};

/// The server's end of one connection.
///
/// Every member which waits has no time limit of its own and ends with ServerStopped when the server is
/// destroyed. What is read is recorded byte for byte. Thread safety: used by the connection's own thread
/// only.
class ScriptedConnection {
public:
    /// @param stop happens when the server is destroyed.
    ScriptedConnection(Socket socket, const Event& stop, std::size_t number, ScriptedRecord& record);

    /// The connection's number, from 0 in the order of arrival.
    std::size_t number() const { return number_; }

    /// Whether this side has not ended the connection.
    bool isOpen() const { return socket_.isOpen(); }

    /// Reads a request with its body, as told by Content-Length or the chunked coding. Does not answer
    /// "Expect: 100-continue".
    /// @return nothing if the client ended the connection instead of sending a request.
    /// @throws ClientGone if the client ended the connection within the request; UnexpectedBytes if it is no
    /// HTTP/1 request.
    std::optional<HttpRequest> readRequest();

    /// Reads a request's head only; readBody() has to follow if there is a body to read. See readRequest().
    std::optional<HttpRequest> readHead();

    /// Reads the body which belongs to the head read last.
    std::string readBody();

    /// Reads so many bytes.
    std::string readBytes(std::size_t count);

    /// Reads up to and including a text.
    std::string readUntil(std::string_view terminator);

    /// Reads a line and answers it without its CRLF.
    /// @throws UnexpectedBytes if it ends in a bare LF.
    std::string readLine();

    void send(std::string_view bytes);

    /// Sends in pieces of the given size (the last may be shorter), each in a segment of its own, with pauses
    /// between.
    void sendInChunks(std::string_view bytes, std::size_t chunkSize, std::chrono::milliseconds pause);

    void delay(std::chrono::milliseconds time);

    /// Reads on but does nothing until the latch, if any, is released or the client goes away.
    /// @return whether the latch was released.
    bool stall(const std::shared_ptr<Latch>& latch = nullptr);

    /// Like stall(), but leaves unread what the client sends, so that the client cannot send on in the end. A
    /// client that goes away may remain unnoticed while it has something left to send.
    bool stallWithoutReading(const std::shared_ptr<Latch>& latch = nullptr);

    /// Waits for the latch, whatever the client does.
    void waitFor(const std::shared_ptr<Latch>& latch);

    /// Ends the connection in order. What the client has sent by now is read first, because the system
    /// answers unread bytes with a reset.
    void close();

    /// Ends the server's sending; the client can go on.
    void halfClose();

    /// Ends the connection with a reset, once the client's system has got all that was sent.
    void reset();

    /// Waits for the client to end the connection.
    /// @throws UnexpectedBytes if it sends something instead, unless this side has said that it is done by
    /// halfClose().
    void waitForEnd();

private:
    bool waitUntilReady(Readiness readiness, std::optional<std::chrono::milliseconds> limit);
    bool receiveMore();
    void requireMore(std::string_view awaited);
    void receivePending();
    std::string takeBytes(std::size_t count);
    std::string readChunkedBody();
    bool stallUntilReleased(const std::shared_ptr<Latch>& latch, bool isReading);
    void requireOpen() const;

    Socket socket_;
    const Event& stop_;
    const std::size_t number_;
    ScriptedRecord& record_;
    std::string unread_; // received, and not yet asked for by a read
    HttpRequest lastHead_;
    std::size_t lastRequestNumber_ = 0;
    bool isHalfClosed_ = false;
};

/// Bytes in quotation marks, shortened, with escapes for what cannot be printed.
std::string quoted(std::string_view bytes);

} // namespace testsupport
