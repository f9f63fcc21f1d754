#include "Interrupt.h"

#include "Errors.h"

#include <atomic>
#include <cstdlib>

#include <windows.h>

namespace vantra::tool {

namespace {

constexpr DWORD nothing = MAXDWORD;

std::atomic<DWORD> notedEvent{nothing};

BOOL WINAPI noteEvent(DWORD event) noexcept {
    if (notedEvent.exchange(event) != nothing) return FALSE;
    // When the console is closed or the session ends, the system ends the process as soon as this returns, in
    // any case after some seconds. The main thread needs them to put things in order, and ends the process
    // itself.
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) ::Sleep(INFINITE);
    return TRUE;
}

} // namespace

CInterruptGuard::CInterruptGuard() noexcept { ::SetConsoleCtrlHandler(&noteEvent, TRUE); }

CInterruptGuard::~CInterruptGuard() { ::SetConsoleCtrlHandler(&noteEvent, FALSE); }

bool isInterrupted() noexcept { return notedEvent.load() != nothing; }

void endAsInterrupted() noexcept {
    constexpr int controlCExit = static_cast<int>(0xC000013A); // STATUS_CONTROL_C_EXIT
    std::_Exit(notedEvent.load() == CTRL_C_EVENT ? ExitInterrupted : controlCExit);
}

} // namespace vantra::tool
