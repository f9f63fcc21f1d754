/// @file SystemThreads.h
/// The door to what a test asks of the system's threads. posix/ and windows/ hold one implementation each.
#pragma once

#include <memory>
#include <string>

/// While one lives, the system has no new thread to give.
class CNoMoreThreads {
public:
    CNoMoreThreads();
    CNoMoreThreads(const CNoMoreThreads&) = delete;
    CNoMoreThreads& operator=(const CNoMoreThreads&) = delete;
    ~CNoMoreThreads();

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// The name that the system has for the calling thread, in UTF-8.
[[nodiscard]] std::string getSystemThreadName();

/// How many bytes of UTF-8 the system keeps of a thread's name; at least as many as any test gives it where
/// it has no limit.
[[nodiscard]] std::size_t getThreadNameLimit();
