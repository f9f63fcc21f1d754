#include "files/Terminal.h"

#include "windows/Console.h"

#include <windows.h>

namespace vantra::tool {

bool isStandardErrorTerminal() noexcept {
    const HANDLE file = ::GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode = 0;
    // Consoles before Windows 10 refuse; they could only show the control sequences.
    return ::GetConsoleMode(file, &mode) != 0 &&
           ::SetConsoleMode(file, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

bool isStandardOutputTerminal() noexcept { return isConsole(::GetStdHandle(STD_OUTPUT_HANDLE)); }

TerminalSize getStandardErrorSize() noexcept {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (::GetConsoleScreenBufferInfo(::GetStdHandle(STD_ERROR_HANDLE), &info) == 0) return {};
    return {info.srWindow.Right - info.srWindow.Left + 1, info.srWindow.Bottom - info.srWindow.Top + 1};
}

} // namespace vantra::tool
