/// @file Platform.h
/// The door to the system: what each platform does in its own way. src/posix and src/windows hold one
/// implementation each, and the build picks one of them.
#pragma once

#include "kel/Int64.h"
#include "kel/SocketSets.h"
#include "kel/String.h"

#include <cstdio>
#include <filesystem>

namespace kel::platform {

/// L'\\' on Windows, L'/' elsewhere.
[[nodiscard]] wchar_t pathSeparator() noexcept;
/// The standard library's form of a path text.
[[nodiscard]] std::filesystem::path toStdPath(const String& path);
[[nodiscard]] String fromStdPath(const std::filesystem::path& path);

enum class FileAccess {
    Read,    ///< an existing file; a directory is refused
    Replace, ///< an existing file is emptied
    Create   ///< an existing file is refused
};
/// Opens a file in binary mode, not inherited by child processes. Null on failure, with the reason in errno.
[[nodiscard]] std::FILE* openFile(const String& path, FileAccess access);
/// The present size of an open file, or -1 if it has none (a pipe, a terminal).
[[nodiscard]] int64 getFileSize(std::FILE* file) noexcept;
/// Takes back that the end of the file, or an error, was met.
void forgetEnd(std::FILE* file) noexcept;
/// Moves to `position` bytes from the start. False on failure, with the reason in errno.
[[nodiscard]] bool seekFile(std::FILE* file, int64 position) noexcept;

/// English text for a value of errno, without a full stop.
[[nodiscard]] String getErrorText(int error);

/// The folder that holds the running program, or the empty text if the system does not tell.
[[nodiscard]] String getProgramFolder();
/// The folder that holds this library, or the empty text if the system does not tell.
[[nodiscard]] String getLibraryFolder();

/// Names the calling thread for debuggers and system tools, as far as the system's limit goes.
void setCurrentThreadName(const String& name);

/// The longest timeout that waitForSockets() is given, about three years.
constexpr int64 maxSocketWaitMs = 100'000'000'000;
/// select(2) where a signal that interrupts counts as the end of the time. The sets may be null; without any
/// the call only sleeps.
/// @param timeoutMs negative for no limit, at most maxSocketWaitMs.
/// @return the number of ready sockets; 0 when the time is up, whatever the sets hold then; -1 on failure.
[[nodiscard]] int waitForSockets(int socketCount, fd_set* read, fd_set* write, fd_set* exception,
                                 int64 timeoutMs) noexcept;

/// std::atexit for a function of this library: called among the program's own exit handlers and the ends of
/// its static objects, in the reverse order of their coming to be, while other threads still run.
/// @return false if the process has no room for it or has come to its end.
[[nodiscard]] bool callAtExit(void (*function)()) noexcept;
/// Where exit handlers that are registered during the end of the process may be forgotten: calls a function
/// when this library is unloaded, also in a process that ends without its exit handlers.
void callAtUnload(void (*function)()) noexcept;

} // namespace kel::platform
