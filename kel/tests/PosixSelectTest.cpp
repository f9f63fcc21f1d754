#include "kel/PosixSelect.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <initializer_list>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
constexpr int longTimeMs = 60'000;

/// Two sockets that are connected with each other.
class PosixSelect : public testing::Test {
protected:
    PosixSelect() {
        if (::socketpair(AF_UNIX, SOCK_STREAM, 0, sockets_.data()) != 0)
            throw std::system_error(errno, std::generic_category());
    }
    ~PosixSelect() override {
        ::close(near());
        ::close(far());
    }

    [[nodiscard]] int near() const { return sockets_[0]; }
    [[nodiscard]] int far() const { return sockets_[1]; }
    [[nodiscard]] int getCount() const { return std::max(near(), far()) + 1; }
    void sendFromFar() const { EXPECT_EQ(::send(far(), "x", 1, 0), 1); }
    /// Leaves no room for another byte to be sent from the near side.
    void fillNear() const {
        EXPECT_EQ(::fcntl(near(), F_SETFL, O_NONBLOCK), 0);
        const std::array<char, 4096> bytes{};
        while (::send(near(), bytes.data(), bytes.size(), 0) > 0) {
        }
    }

    static fd_set makeSet(std::initializer_list<int> sockets) {
        fd_set set;
        FD_ZERO(&set);
        for (const int socket : sockets) FD_SET(socket, &set);
        return set;
    }

private:
    std::array<int, 2> sockets_{};
};

TEST_F(PosixSelect, TellsWhatCanBeReadAndWritten) {
    sendFromFar();
    fd_set read = makeSet({near(), far()});
    fd_set write = makeSet({near(), far()});
    fd_set exception = makeSet({near(), far()});
    EXPECT_EQ(kel::CPosixSelect::select(getCount(), &read, &write, &exception, longTimeMs), 3);
    EXPECT_TRUE(FD_ISSET(near(), &read));
    EXPECT_FALSE(FD_ISSET(far(), &read));
    EXPECT_TRUE(FD_ISSET(near(), &write));
    EXPECT_TRUE(FD_ISSET(far(), &write));
    EXPECT_FALSE(FD_ISSET(near(), &exception));
    EXPECT_FALSE(FD_ISSET(far(), &exception));
}

TEST_F(PosixSelect, TakesEachSetAlone) {
    sendFromFar();
    fd_set read = makeSet({near()});
    EXPECT_EQ(kel::CPosixSelect::select(getCount(), &read, nullptr, nullptr, longTimeMs), 1);
    EXPECT_TRUE(FD_ISSET(near(), &read));
    fd_set write = makeSet({near()});
    EXPECT_EQ(kel::CPosixSelect::select(getCount(), nullptr, &write, nullptr, longTimeMs), 1);
    EXPECT_TRUE(FD_ISSET(near(), &write));
    fd_set exception = makeSet({near()});
    EXPECT_EQ(kel::CPosixSelect::select(getCount(), nullptr, nullptr, &exception, 0), 0);
    EXPECT_FALSE(FD_ISSET(near(), &exception));
}

TEST_F(PosixSelect, GivesUpAfterTheTimeoutAndNotBefore) {
    fillNear();
    fd_set read = makeSet({near()});
    fd_set write = makeSet({near()});
    fd_set exception = makeSet({near()});
    const auto before = Clock::now();
    EXPECT_EQ(kel::CPosixSelect::select(getCount(), &read, &write, &exception, 30), 0);
    EXPECT_GE(Clock::now() - before, std::chrono::milliseconds(30));
    EXPECT_FALSE(FD_ISSET(near(), &read));
    EXPECT_FALSE(FD_ISSET(near(), &write));
    EXPECT_FALSE(FD_ISSET(near(), &exception));
}

TEST_F(PosixSelect, OnlyLooksWithATimeoutOfZero) {
    fd_set read = makeSet({near()});
    EXPECT_EQ(kel::CPosixSelect::select(getCount(), &read, nullptr, nullptr, 0), 0);
    sendFromFar();
    read = makeSet({near()});
    EXPECT_EQ(kel::CPosixSelect::select(getCount(), &read, nullptr, nullptr, 0), 1);
}

TEST_F(PosixSelect, SleepsWithoutSockets) {
    const auto before = Clock::now();
    EXPECT_EQ(kel::CPosixSelect::select(0, nullptr, nullptr, nullptr, 30), 0);
    EXPECT_GE(Clock::now() - before, std::chrono::milliseconds(30));
}

TEST_F(PosixSelect, WaitsAsLongAsItTakesWithoutOrWithAHugeLimit) {
    for (const kel::int64 timeoutMs : {kel::int64{-1}, INT64_MIN, INT64_MAX, kel::int64{INT_MAX} * 1000}) {
        std::thread sender([this] {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            sendFromFar();
        });
        fd_set read = makeSet({near()});
        EXPECT_EQ(kel::CPosixSelect::select(getCount(), &read, nullptr, nullptr, timeoutMs), 1);
        sender.join();
        char byte;
        EXPECT_EQ(::recv(near(), &byte, 1, 0), 1);
    }
}

void ignoreSignal(int) {}

TEST_F(PosixSelect, TakesAnInterruptionForTheEndOfTheTime) {
    struct sigaction action {};
    action.sa_handler = &ignoreSignal;
    struct sigaction before {};
    ASSERT_EQ(::sigaction(SIGUSR1, &action, &before), 0);
    fillNear();
    std::atomic<bool> over{false};
    // Again and again, since the first one may come before the wait has begun.
    std::thread interrupter([&over, waiter = ::pthread_self()] {
        while (!over) {
            ::pthread_kill(waiter, SIGUSR1);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    fd_set read = makeSet({near()});
    fd_set write = makeSet({near()});
    fd_set exception = makeSet({near()});
    EXPECT_EQ(kel::CPosixSelect::select(getCount(), &read, &write, &exception, -1), 0);
    over = true;
    interrupter.join();
    EXPECT_FALSE(FD_ISSET(near(), &read));
    EXPECT_FALSE(FD_ISSET(near(), &write));
    EXPECT_FALSE(FD_ISSET(near(), &exception));
    EXPECT_EQ(::sigaction(SIGUSR1, &before, nullptr), 0);
}

TEST_F(PosixSelect, FailsForAClosedSocket) {
    const int closed = ::dup(near());
    ASSERT_GE(closed, 0);
    ::close(closed);
    fd_set read = makeSet({closed});
    EXPECT_EQ(kel::CPosixSelect::select(closed + 1, &read, nullptr, nullptr, 0), -1);
    EXPECT_EQ(errno, EBADF);
}

TEST_F(PosixSelect, RefusesACountThatNoSetCanHold) {
    fd_set read = makeSet({near()});
    EXPECT_EQ(kel::CPosixSelect::select(FD_SETSIZE + 1, &read, nullptr, nullptr, 0), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(kel::CPosixSelect::select(-1, &read, nullptr, nullptr, 0), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_TRUE(FD_ISSET(near(), &read)) << "a failure leaves the sets alone";
}

} // namespace
