#include "Interrupt.h"

#include <atomic>
#include <cstdlib>

#include <windows.h>

namespace vantra::tool {

namespace {

std::atomic<bool> noted{false};

BOOL WINAPI noteEvent(DWORD /*event*/) noexcept { return noted.exchange(true) ? FALSE : TRUE; }

} // namespace

CInterruptGuard::CInterruptGuard() noexcept { ::SetConsoleCtrlHandler(&noteEvent, TRUE); }

CInterruptGuard::~CInterruptGuard() { ::SetConsoleCtrlHandler(&noteEvent, FALSE); }

bool isInterrupted() noexcept { return noted.load(); }

void endAsInterrupted() noexcept {
    constexpr int controlCExit = static_cast<int>(0xC000013A); // STATUS_CONTROL_C_EXIT
    std::_Exit(controlCExit);
}

} // namespace vantra::tool
