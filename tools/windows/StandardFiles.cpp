#include "files/StandardFiles.h"

#include "Interrupt.h"
#include "windows/Console.h"

#include <kel/String.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <io.h>

#include <windows.h>

#include <shellapi.h>

namespace vantra::tool {

namespace {

constexpr int standardInput = 0;
constexpr int standardOutput = 1;
constexpr int standardError = 2;

struct LocalDeleter {
    void operator()(LPWSTR* memory) const noexcept { ::LocalFree(memory); }
};

int writeAll(int descriptor, std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const auto length = static_cast<unsigned int>(std::min<std::size_t>(bytes.size(), INT_MAX));
        const int written = ::_write(descriptor, bytes.data(), length);
        // The runtime tells of a pipe without a reader by EINVAL.
        if (written < 0) return errno == EINVAL ? EPIPE : errno;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

/// Waits until a pipe has bytes or has come to its end. False when the user asked to stop meanwhile: a read
/// that waits would not notice.
bool waitForPipe(HANDLE pipe) noexcept {
    constexpr DWORD patience = 20; // milliseconds
    DWORD available = 0;
    while (::PeekNamedPipe(pipe, nullptr, 0, nullptr, &available, nullptr) != 0 && available == 0) {
        if (isInterrupted()) return false;
        ::Sleep(patience);
    }
    return true;
}

UINT codePageBefore = 0;

void restoreCodePage() noexcept { ::SetConsoleOutputCP(codePageBefore); }

} // namespace

std::vector<std::string> getArguments(int /*argc*/, char** /*argv*/) {
    // What main() gets is in the system's code page, which most characters are missing from.
    std::vector<std::string> arguments;
    int count = 0;
    const std::unique_ptr<LPWSTR, LocalDeleter> list(::CommandLineToArgvW(::GetCommandLineW(), &count));
    for (int i = 1; list && i < count; ++i) arguments.push_back(kel::String(list.get()[i]).toUTF8());
    return arguments;
}

void prepareStandardFiles() noexcept {
    for (const int descriptor : {standardInput, standardOutput, standardError})
        (void)::_setmode(descriptor, _O_BINARY);
    // The console stays when the program has ended.
    codePageBefore = ::GetConsoleOutputCP();
    if (codePageBefore != 0 && codePageBefore != CP_UTF8 && ::SetConsoleOutputCP(CP_UTF8) != 0)
        (void)std::atexit(&restoreCodePage);
}

int readStandardInput(void* buffer, std::size_t maxLength, std::size_t& count) noexcept {
    if (isInterrupted()) return EINTR;
    const HANDLE input = ::GetStdHandle(STD_INPUT_HANDLE);
    if (isConsole(input)) return readConsole(input, static_cast<char*>(buffer), maxLength, count);
    if (::GetFileType(input) == FILE_TYPE_PIPE && !waitForPipe(input)) return EINTR;
    const auto length = static_cast<unsigned int>(std::min<std::size_t>(maxLength, INT_MAX));
    const int got = ::_read(standardInput, buffer, length);
    if (got < 0) return errno;
    count = static_cast<std::size_t>(got);
    return 0;
}

int writeStandardOutput(std::string_view bytes) noexcept {
    return isInterrupted() ? EINTR : writeAll(standardOutput, bytes);
}

void writeStandardError(std::string_view bytes) noexcept { (void)writeAll(standardError, bytes); }

} // namespace vantra::tool
