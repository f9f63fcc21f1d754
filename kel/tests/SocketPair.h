/// @file SocketPair.h
/// The door to connected sockets for a test. posix/ and windows/ hold one implementation each.
#pragma once

#include "kel/SocketSets.h"

#include <cstdint>
#include <initializer_list>

/// Two sockets that are connected with each other. Sockets are numbers here, as on either system.
class CSocketPair {
public:
    using Socket = std::uintptr_t;

    CSocketPair();
    CSocketPair(const CSocketPair&) = delete;
    CSocketPair& operator=(const CSocketPair&) = delete;
    ~CSocketPair();

    [[nodiscard]] Socket nearSide() const noexcept { return near_; }
    [[nodiscard]] Socket farSide() const noexcept { return far_; }
    /// One more than the greater number.
    [[nodiscard]] int getCount() const noexcept;
    /// Sends one byte to the near side.
    void sendFromFar() const;
    /// Takes one byte on the near side.
    void receiveNear() const;
    /// Leaves no room for another byte to be sent from the near side.
    void fillNear() const;

    [[nodiscard]] static fd_set makeSet(std::initializer_list<Socket> sockets);
    [[nodiscard]] static bool isInSet(Socket socket, const fd_set& set);
    /// The number of a socket that is closed.
    [[nodiscard]] Socket makeClosed() const;
    /// Whether the last failure on this thread was that a socket is none.
    [[nodiscard]] static bool failedForNoSocket();

private:
    Socket near_;
    Socket far_;
};
