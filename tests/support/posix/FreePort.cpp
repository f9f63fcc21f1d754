#include "support/Ports.h"

#include "support/posix/FileDescriptor.h"
#include "support/Sockets.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <mutex>
#include <random>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <utility>
#include <vector>

namespace testsupport {

namespace {

constexpr unsigned firstPort = 10000;
constexpr unsigned blockSize = 32;

/// The end of the ports to hand out: where the system's own choice of ports begins. A system which gives away
/// nearly all ports itself leaves no room below; then the reservations among test processes have to be
/// enough.
unsigned endOfPorts() {
    std::ifstream range("/proc/sys/net/ipv4/ip_local_port_range");
    unsigned first = 0;
    constexpr unsigned leastRoom = 2000;
    if (range >> first && first >= firstPort + leastRoom) return first;
    return 60000;
}

/// Takes whole blocks of ports for this process and hands them out one by one.
///
/// A block belongs to the process which has bound its name in the abstract socket namespace. That is released
/// by the system however the process ends, and is scoped like the ports themselves: by network namespace.
class PortReservations {
public:
    PortReservations() : nextBlock_(std::random_device()() % blockCount_) {}

    std::uint16_t take() {
        const std::lock_guard lock(mutex_);
        while (true) {
            if (nextPort_ == endOfBlock_) takeBlock();
            const auto port = static_cast<std::uint16_t>(nextPort_++);
            if (bindLoopback(port).isOpen()) return port;
        }
    }

private:
    void takeBlock() {
        for (unsigned tried = 0; tried < blockCount_; ++tried) {
            const unsigned block = nextBlock_;
            nextBlock_ = (nextBlock_ + 1) % blockCount_;
            if (FileDescriptor reservation = reserve(block); reservation.isOpen()) {
                reservations_.push_back(std::move(reservation));
                nextPort_ = firstPort + block * blockSize;
                endOfBlock_ = nextPort_ + blockSize;
                return;
            }
        }
        throw std::runtime_error("no free TCP port is left for a test server");
    }

    static FileDescriptor reserve(unsigned block) {
        FileDescriptor socket =
            checkedDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0), "make a Unix socket");
        const std::string name = "vantra-test-ports-" + std::to_string(block);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path + 1, name.data(), name.size());
        const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
        if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), size) == 0) return socket;
        if (errno != EADDRINUSE) throwErrno("reserve a block of ports");
        return FileDescriptor();
    }

    const unsigned blockCount_ = (endOfPorts() - firstPort) / blockSize;
    std::mutex mutex_;
    unsigned nextBlock_;
    unsigned nextPort_ = 0;
    unsigned endOfBlock_ = 0;
    std::vector<FileDescriptor> reservations_;
};

} // namespace

std::uint16_t freePort() {
    static PortReservations reservations;
    return reservations.take();
}

} // namespace testsupport
