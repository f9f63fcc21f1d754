#include "files/Terminal.h"

#include <cstdlib>
#include <string_view>

#include <sys/ioctl.h>
#include <unistd.h>

namespace vantra::tool {

bool isStandardErrorTerminal() noexcept {
    const char* type = std::getenv("TERM"); // NOLINT(concurrency-mt-unsafe): nobody changes the environment
    return ::isatty(STDERR_FILENO) == 1 && type && *type && std::string_view(type) != "dumb";
}

bool isStandardOutputTerminal() noexcept { return ::isatty(STDOUT_FILENO) == 1; }

TerminalSize getStandardErrorSize() noexcept {
    winsize size{};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) return {};
    return {size.ws_col, size.ws_row};
}

} // namespace vantra::tool
