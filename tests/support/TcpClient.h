/// @file support/TcpClient.h
/// A client that sends and receives plain bytes.
///
///     TcpClient client(server.port());
///     client.send("GET / HTTP/1.0\r\n\r\n");
///     EXPECT_EQ(client.readToEnd(), "HTTP/1.0 204 No Content\r\n\r\n");
#pragma once

#include "support/Sockets.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace testsupport {

/// A TCP connection to a port of 127.0.0.1. Every member that waits gives up after a time.
///
/// All members throw std::system_error when the connection fails, with ECONNRESET after a reset and EAGAIN
/// when the time has passed. Thread safety: one thread at a time.
class TcpClient {
public:
    /// @param limit how long a member may wait for the next byte to go either way.
    explicit TcpClient(std::uint16_t port, std::chrono::milliseconds limit = std::chrono::seconds(10));

    void send(std::string_view bytes);

    /// Receives what the next call of recv() brings: at least one byte, or nothing at the end.
    std::string readSome();

    /// Receives so many bytes.
    /// @throws std::runtime_error if the server ends the connection before that.
    std::string readBytes(std::size_t count);

    /// Receives up to and including a text; see readBytes().
    std::string readUntil(std::string_view terminator);

    /// Receives all until the server ends the connection.
    std::string readToEnd();

    /// Ends this side's sending.
    void finishSending();

    /// Ends the connection in order.
    void close();

    /// Ends the connection with a reset.
    void reset();

private:
    std::string takeBytes(std::size_t count);
    void requireMore(std::string_view awaited);

    Socket socket_;
    std::string unread_;
};

} // namespace testsupport
