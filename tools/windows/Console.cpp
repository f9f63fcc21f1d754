#include "windows/Console.h"

#include "Interrupt.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace vantra::tool {

namespace {

constexpr DWORD maxUnits = 1024;
constexpr wchar_t endOfInput = 0x1a; // Ctrl-Z

/// Read from the console and not handed out yet.
struct Typed {
    std::array<char, std::size_t{3} * maxUnits> bytes{}; // no code unit of UTF-16 takes more than three
    std::size_t begin = 0;
    std::size_t end = 0;
    bool atLineStart = true;
};

Typed& typed() noexcept {
    static Typed instance;
    return instance;
}

/// Ctrl-C ends a read, and a thread of the system's notes it, in whichever order.
int waitForInterrupt() noexcept {
    constexpr int attempts = 100;
    constexpr DWORD pause = 10; // milliseconds
    for (int i = 0; i < attempts && !isInterrupted(); ++i) ::Sleep(pause);
    return EINTR;
}

/// The next code units, with no pair of surrogates taken apart. None after Ctrl-C.
bool readUnits(HANDLE console, std::array<wchar_t, maxUnits>& units, DWORD& length) noexcept {
    if (::ReadConsoleW(console, units.data(), maxUnits - 1, &length, nullptr) == 0) return false;
    DWORD second = 0;
    if (length == 0 || !IS_HIGH_SURROGATE(units.at(length - 1))) return true;
    if (::ReadConsoleW(console, &units.at(length), 1, &second, nullptr) == 0) return false;
    length += second;
    return true;
}

int readMore(HANDLE console, Typed& state) noexcept {
    std::array<wchar_t, maxUnits> units;
    DWORD length = 0;
    if (!readUnits(console, units, length)) return EIO;
    if (length == 0) return waitForInterrupt();
    if (state.atLineStart && units.front() == endOfInput) return 0;
    state.atLineStart = units.at(length - 1) == L'\n';
    state.begin = 0;
    state.end = static_cast<std::size_t>(
        ::WideCharToMultiByte(CP_UTF8, 0, units.data(), static_cast<int>(length), state.bytes.data(),
                              static_cast<int>(state.bytes.size()), nullptr, nullptr));
    return 0;
}

} // namespace

bool isConsole(HANDLE file) noexcept {
    DWORD mode = 0;
    return ::GetConsoleMode(file, &mode) != 0;
}

int readConsole(HANDLE console, char* buffer, std::size_t maxLength, std::size_t& count) noexcept {
    Typed& state = typed();
    count = 0;
    if (state.begin == state.end) {
        const int error = readMore(console, state);
        if (error != 0) return error;
    }
    count = std::min(maxLength, state.end - state.begin);
    std::memcpy(buffer, state.bytes.data() + state.begin, count);
    state.begin += count;
    return 0;
}

} // namespace vantra::tool
