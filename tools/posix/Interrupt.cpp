#include "Interrupt.h"

#include "Errors.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>

#include <signal.h>

namespace vantra::tool {

namespace {

constexpr std::array<int, 3> stopSignals{SIGINT, SIGTERM, SIGHUP};

std::atomic<int> notedSignal{0};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler may touch it");

std::array<struct sigaction, stopSignals.size()> earlierActions;

void noteSignal(int signal) noexcept { notedSignal.store(signal); }

} // namespace

CInterruptGuard::CInterruptGuard() noexcept {
    struct sigaction action {};
    action.sa_handler = &noteSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < stopSignals.size(); ++i) {
        sigaction(stopSignals[i], nullptr, &earlierActions[i]);
        // Whoever started the program with a signal ignored (nohup) wants it to stay so.
        if (earlierActions[i].sa_handler != SIG_IGN) sigaction(stopSignals[i], &action, nullptr);
    }
}

CInterruptGuard::~CInterruptGuard() {
    for (std::size_t i = 0; i < stopSignals.size(); ++i)
        sigaction(stopSignals[i], &earlierActions[i], nullptr);
}

bool isInterrupted() noexcept { return notedSignal.load() != 0; }

void endAsInterrupted() noexcept {
    // Shells show this status for SIGINT anyway; every other caller is to see the same number.
    if (notedSignal.load() == SIGINT) std::_Exit(ExitInterrupted);
    // A shell tells a program that a signal ended from one that merely failed, and stops its script.
    std::signal(notedSignal.load(), SIG_DFL);
    std::raise(notedSignal.load());
    std::_Exit(EXIT_FAILURE);
}

} // namespace vantra::tool
