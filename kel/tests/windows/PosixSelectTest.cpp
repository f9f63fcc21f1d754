#include "kel/PosixSelect.h"

#include "SocketPair.h"

#include <gtest/gtest.h>

#include <chrono>

#include <winsock2.h>

namespace {

class PosixSelectOfThisSystem : public testing::Test, protected CSocketPair {};

TEST_F(PosixSelectOfThisSystem, SleepsWithEmptySets) {
    fd_set read = makeSet({});
    fd_set write = makeSet({});
    fd_set exception = makeSet({});
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(kel::CPosixSelect::select(0, &read, &write, &exception, 30), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(30));
}

TEST_F(PosixSelectOfThisSystem, TakesAFailedConnectionForReady) {
    // A port that was just given back.
    const SOCKET holder = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
    int length = sizeof(address);
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    ASSERT_EQ(::bind(holder, generic, length), 0);
    ASSERT_EQ(::getsockname(holder, generic, &length), 0);
    ::closesocket(holder);

    const SOCKET client = ::socket(AF_INET, SOCK_STREAM, 0);
    unsigned long nonBlocking = 1;
    ASSERT_EQ(::ioctlsocket(client, static_cast<long>(FIONBIO), &nonBlocking), 0);
    EXPECT_NE(::connect(client, generic, length), 0);
    fd_set read = makeSet({client});
    fd_set write = makeSet({client});
    fd_set exception = makeSet({});
    EXPECT_GE(kel::CPosixSelect::select(0, &read, &write, &exception, 60'000), 1);
    EXPECT_TRUE(isInSet(client, write));
    EXPECT_FALSE(isInSet(client, exception)) << "nobody asked for it";
    ::closesocket(client);
}

// More than Winsock's own limit of sockets in a set.
TEST_F(PosixSelectOfThisSystem, WatchesHundredsOfSockets) {
    fd_set read = makeSet({});
    constexpr unsigned silentCount = 300;
    SOCKET silent[silentCount];
    for (SOCKET& socket : silent) {
        socket = ::socket(AF_INET, SOCK_DGRAM, 0);
        ASSERT_NE(socket, INVALID_SOCKET);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
        ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
        read.fd_array[read.fd_count++] = socket;
    }
    read.fd_array[read.fd_count++] = nearSide();
    sendFromFar();
    EXPECT_EQ(kel::CPosixSelect::select(0, &read, nullptr, nullptr, 60'000), 1);
    EXPECT_TRUE(isInSet(nearSide(), read));
    for (const SOCKET socket : silent) ::closesocket(socket);
}

} // namespace
