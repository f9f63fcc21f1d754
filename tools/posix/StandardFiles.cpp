#include "files/StandardFiles.h"

#include "Interrupt.h"

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace vantra::tool {

namespace {

/// Occupies the descriptor, if it is closed, with something that can neither be read nor written as it
/// should.
void occupyIfClosed(int descriptor, int uselessAccess) noexcept {
    if (::fcntl(descriptor, F_GETFD) != -1 || errno != EBADF) return;
    // The lowest free descriptor is this one, since those below it are open by now.
    (void)::open("/dev/null", uselessAccess);
}

int writeAll(int descriptor, std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR || isInterrupted()) {
            return errno;
        }
    }
    return 0;
}

} // namespace

std::vector<std::string> getArguments(int argc, char** argv) {
    return argc > 1 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

void prepareStandardFiles() noexcept {
    std::signal(SIGPIPE, SIG_IGN);
    occupyIfClosed(STDIN_FILENO, O_WRONLY);
    occupyIfClosed(STDOUT_FILENO, O_RDONLY);
    occupyIfClosed(STDERR_FILENO, O_RDONLY);
}

int readStandardInput(void* buffer, std::size_t maxLength, std::size_t& count) noexcept {
    constexpr int patience =
        100; // milliseconds; a signal between the look at it and the wait is seen after that
    for (;;) {
        if (isInterrupted()) return EINTR;
        pollfd input{STDIN_FILENO, POLLIN, 0};
        const int ready = ::poll(&input, 1, patience);
        if (ready == 0 || (ready < 0 && errno == EINTR)) continue;
        const ssize_t length = ready < 0 ? -1 : ::read(STDIN_FILENO, buffer, maxLength);
        if (length < 0 && errno != EINTR && errno != EAGAIN) return errno;
        if (length < 0) continue;
        count = static_cast<std::size_t>(length);
        return 0;
    }
}

int writeStandardOutput(std::string_view bytes) noexcept { return writeAll(STDOUT_FILENO, bytes); }

void writeStandardError(std::string_view bytes) noexcept { (void)writeAll(STDERR_FILENO, bytes); }

} // namespace vantra::tool
