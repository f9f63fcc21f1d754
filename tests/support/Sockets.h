/// @file support/Sockets.h
/// The few socket calls that the fixtures share. All sockets are IPv4 loopback TCP and not inherited by
/// programs that the test starts.
///
/// Calls that report a failure by their result leave its reason in errno, with POSIX's values on every
/// system.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace testsupport {

/// Owns one socket, or what can be waited for like one, and closes it.
///
/// Thread safety: none, as for an integer.
class Socket {
public:
    using Handle = std::intptr_t; ///< as the system has it; -1 for none

    Socket() = default;
    explicit Socket(Handle handle) : handle_(handle) {}
    ~Socket() { reset(); }

    Socket(Socket&& other) noexcept : handle_(other.release()) {}
    Socket& operator=(Socket&& other) noexcept {
        if (this != &other) {
            reset();
            handle_ = other.release();
        }
        return *this;
    }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    Handle get() const { return handle_; }
    bool isOpen() const { return handle_ != none; }

    /// Closes the socket now.
    void reset();

private:
    static constexpr Handle none = -1;

    Handle release() {
        const Handle handle = handle_;
        handle_ = none;
        return handle;
    }

    Handle handle_ = none;
};

enum class Blocking { yes, no };

/// A new TCP socket.
Socket newSocket(Blocking blocking);

/// A socket bound to 127.0.0.1, whose calls block.
/// @param port the port, 0 for one which the system picks.
/// @return a socket which is not open if the port is taken.
/// @throws std::system_error for any other failure.
Socket bindLoopback(std::uint16_t port);

/// The port to which a socket is bound.
std::uint16_t localPort(const Socket& socket);

/// Lets a bound socket take connections.
/// @param backlog how many may wait to be accepted.
void listenOn(const Socket& socket, int backlog);

void makeNonBlocking(const Socket& socket);

/// Takes a connection that waits.
/// @return its socket, whose calls do not block; one which is not open, with errno, if there is none.
Socket acceptConnection(const Socket& listener);

/// Connects to 127.0.0.1, or starts to on a non-blocking socket.
/// @return 0 or an errno; EINPROGRESS if it goes on.
int startConnecting(const Socket& socket, std::uint16_t port);

/// What came of a connection attempt that has ended.
/// @return 0 or an errno.
int connectionError(const Socket& socket);

/// Receives what there is.
/// @return the number of bytes, 0 at the end, -1 with errno if it failed; EAGAIN if there is nothing yet, or
/// when the time limit has passed.
std::ptrdiff_t receive(const Socket& socket, std::span<char> buffer);

/// Sends at least one byte.
/// @return the number of bytes, -1 with errno if it failed; EPIPE or ECONNRESET if the peer is gone, EAGAIN
/// if there is no room yet, or when the time limit has passed.
std::ptrdiff_t sendSome(const Socket& socket, std::string_view bytes);

/// Ends this side's sending.
/// @return whether the connection still was.
bool endSending(const Socket& socket);

/// Closes a connection with a reset instead of an orderly end.
void resetConnection(Socket& socket);

/// Waits until the peer's system has got all that was sent, or the limit has passed. A peer that does not
/// read leaves it waiting.
void waitUntilDelivered(const Socket& socket, std::chrono::milliseconds limit);

/// Sends what is in the socket's small buffers at once, so that each send is a segment of its own.
void sendWithoutDelay(const Socket& socket);

/// How long receiving and sending on a blocking socket may wait.
void setTimeLimit(const Socket& socket, std::chrono::milliseconds limit);

/// How many bytes the system keeps for a connection that is not read from.
void setReceiveBufferSize(const Socket& socket, int bytes);

/// What waitForAny() looks for.
enum class Readiness {
    readable,  ///< something to read, or the end
    writable,  ///< room to send, or the end of an attempt to connect
    peerIsGone ///< the peer ended its sending, whether or not there is something left to read
};

/// A socket that waitForAny() waits for.
struct AwaitedSocket {
    const Socket* socket; ///< null: passed over
    Readiness readiness;
    bool isReady = false; ///< set by waitForAny(); a failed connection is ready for everything
};

/// Waits until one of the sockets is ready or the limit, if any, has passed; may return without either.
void waitForAny(std::span<AwaitedSocket> sockets, std::optional<std::chrono::milliseconds> limit);

} // namespace testsupport
