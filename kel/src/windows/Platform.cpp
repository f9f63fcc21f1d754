#include "Platform.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iterator>
#include <string>

#include <winsock2.h>

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <sys/types.h>

namespace kel::platform {

namespace {

/// The full path of a loaded module; empty on failure.
std::wstring getModulePath(HMODULE module) {
    // 32767 characters is the longest path that the system knows.
    constexpr std::size_t maxPathLength = 32767;
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = ::GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) return {};
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        if (path.size() > maxPathLength) return {};
        path.resize(path.size() * 2);
    }
}

String getParentFolder(const std::wstring& path) {
    const std::size_t separator = path.find_last_of(L"\\/");
    return separator == std::wstring::npos ? String() : String(path.data(), separator);
}

bool isDirectory(const wchar_t* path) noexcept {
    const DWORD attributes = ::GetFileAttributesW(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

/// Whether a path leads through a file that is no folder. The system does not tell that from a folder that is
/// not there.
bool leadsThroughFile(std::wstring path) {
    for (std::size_t end = path.find_last_of(L"\\/"); end != std::wstring::npos && end > 0;
         end = path.find_last_of(L"\\/")) {
        path.resize(end);
        const DWORD attributes = ::GetFileAttributesW(path.c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES) return (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    }
    return false;
}

int openDescriptor(const wchar_t* path, FileAccess access) noexcept {
    constexpr int permissions = _S_IREAD | _S_IWRITE;
    constexpr int common = _O_BINARY | _O_NOINHERIT;
    switch (access) {
    case FileAccess::Read:
        return ::_wopen(path, _O_RDONLY | common);
    case FileAccess::Replace:
        return ::_wopen(path, _O_WRONLY | _O_CREAT | _O_TRUNC | common, permissions);
    case FileAccess::Create:
        return ::_wopen(path, _O_WRONLY | _O_CREAT | _O_EXCL | common, permissions);
    }
    errno = EINVAL;
    return -1;
}

bool hasSockets(const fd_set* set) noexcept { return set && set->fd_count > 0; }

bool contains(const fd_set& set, SOCKET socket) noexcept {
    const SOCKET* const end = set.fd_array + set.fd_count;
    return std::find(static_cast<const SOCKET*>(set.fd_array), end, socket) != end;
}

u_int countSockets(const fd_set* set) noexcept { return set ? set->fd_count : 0; }

/// Adds the sockets that a set lacks, as far as there is room.
void addSockets(const fd_set& from, fd_set& to) noexcept {
    const fd_set before = to;
    for (u_int i = 0; i < from.fd_count && to.fd_count < FD_SETSIZE; ++i) {
        if (!contains(before, from.fd_array[i])) to.fd_array[to.fd_count++] = from.fd_array[i];
    }
}

/// Keeps the sockets that another set has, too.
void keepSockets(fd_set& set, const fd_set& others) noexcept {
    SOCKET* const end = std::remove_if(set.fd_array, set.fd_array + set.fd_count,
                                       [&](SOCKET socket) { return !contains(others, socket); });
    set.fd_count = static_cast<u_int>(end - set.fd_array);
}

bool hasFailed(SOCKET socket) noexcept {
    int error = 0;
    int length = sizeof(error);
    return ::getsockopt(socket, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &length) == 0 &&
           error != 0;
}

/// select(), to which a connection that could not be made is one that can be written, as on other systems;
/// Winsock takes it for an exception.
int selectLikeOthers(fd_set* read, fd_set* write, fd_set* exception, timeval* timeout) noexcept {
    if (!hasSockets(write)) return ::select(0, read, write, exception, timeout);
    const fd_set asked = *write;
    fd_set failed;
    failed.fd_count = 0;
    if (exception) addSockets(*exception, failed);
    addSockets(asked, failed);
    const int ready = ::select(0, read, write, &failed, timeout);
    if (ready <= 0) return ready;
    for (u_int i = 0; i < failed.fd_count; ++i) {
        const SOCKET socket = failed.fd_array[i];
        if (contains(asked, socket) && !contains(*write, socket) && hasFailed(socket))
            write->fd_array[write->fd_count++] = socket;
    }
    if (exception) keepSockets(*exception, failed);
    return static_cast<int>(countSockets(read) + countSockets(write) + countSockets(exception));
}

} // namespace

wchar_t pathSeparator() noexcept { return L'\\'; }

std::filesystem::path toStdPath(const String& path) { return std::filesystem::path(path.view()); }

String fromStdPath(const std::filesystem::path& path) { return String(path.c_str(), path.native().size()); }

std::FILE* openFile(const String& path, FileAccess access) {
    const std::wstring wide(path.view());
    if (wide.find(L'\0') != std::wstring::npos) {
        // The system would take the part before the NUL for the whole path.
        errno = EINVAL;
        return nullptr;
    }
    if (isDirectory(wide.c_str())) {
        // The system would only say that access is denied.
        errno = access == FileAccess::Create ? EEXIST : EISDIR;
        return nullptr;
    }
    const int descriptor = openDescriptor(wide.c_str(), access);
    if (descriptor < 0) {
        const int error = errno;
        errno = error == ENOENT && leadsThroughFile(wide) ? ENOTDIR : error;
        return nullptr;
    }
    std::FILE* file = ::_fdopen(descriptor, access == FileAccess::Read ? "rb" : "wb");
    if (!file) {
        const int error = errno;
        ::_close(descriptor);
        errno = error;
    }
    return file;
}

int64 getFileSize(std::FILE* file) noexcept {
    struct _stat64 info;
    if (::_fstat64(::_fileno(file), &info) != 0 || (info.st_mode & _S_IFMT) != _S_IFREG) return -1;
    return info.st_size;
}

void forgetEnd(std::FILE* file) noexcept {
    const bool wasMet = std::feof(file) != 0;
    std::clearerr(file);
    // The descriptor remembers the end, too, until it is moved.
    if (wasMet && getFileSize(file) >= 0) (void)::_fseeki64(file, 0, SEEK_CUR);
}

bool seekFile(std::FILE* file, int64 position) noexcept {
    // The C library does not notice by itself that a pipe cannot be moved in.
    if (getFileSize(file) < 0) {
        errno = ESPIPE;
        return false;
    }
    return ::_fseeki64(file, position, SEEK_SET) == 0;
}

String getErrorText(int error) {
    wchar_t text[256];
    if (::_wcserror_s(text, std::size(text), error) != 0) return "Error " + String::fromInt(error);
    return String(text);
}

String getProgramFolder() { return getParentFolder(getModulePath(nullptr)); }

String getLibraryFolder() {
    HMODULE module = nullptr;
    constexpr DWORD flags =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    const auto* const address =
        reinterpret_cast<const wchar_t*>(reinterpret_cast<const void*>(&getLibraryFolder));
    if (!::GetModuleHandleExW(flags, address, &module)) return {};
    return getParentFolder(getModulePath(module));
}

void setCurrentThreadName(const String& name) {
    // Windows has it since 10 version 1607, so it must not be linked to.
    using SetThreadDescriptionFunction = HRESULT(WINAPI*)(HANDLE, PCWSTR);
    static const auto setThreadDescription = []() -> SetThreadDescriptionFunction {
        const HMODULE kernel = ::GetModuleHandleW(L"kernel32.dll");
        if (!kernel) return nullptr;
        return reinterpret_cast<SetThreadDescriptionFunction>(
            reinterpret_cast<void*>(::GetProcAddress(kernel, "SetThreadDescription")));
    }();
    if (!setThreadDescription) return;
    const std::wstring text(name.view());
    // A thread without its name works as well, so a failure is no error.
    (void)setThreadDescription(::GetCurrentThread(), text.c_str());
}

int waitForSockets(int /*socketCount*/, fd_set* read, fd_set* write, fd_set* exception,
                   int64 timeoutMs) noexcept {
    if (!hasSockets(read) && !hasSockets(write) && !hasSockets(exception)) {
        // Winsock refuses a wait for nothing.
        const int64 longestFinite = static_cast<int64>(INFINITE) - 1;
        ::Sleep(timeoutMs < 0 ? INFINITE : static_cast<DWORD>(std::min(timeoutMs, longestFinite)));
        return 0;
    }
    timeval timeout{};
    timeout.tv_sec = static_cast<long>(timeoutMs / 1000);
    timeout.tv_usec = static_cast<long>(timeoutMs % 1000 * 1000);
    return selectLikeOthers(read, write, exception, timeoutMs < 0 ? nullptr : &timeout);
}

bool callAtExit(void (*function)()) noexcept {
    // std::atexit() of a DLL puts the call off until the DLL is unloaded, when the other threads are gone
    // already and the program's static objects, too. The list of the process is this one; the DLL has to stay
    // for it.
    HMODULE module = nullptr;
    constexpr DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN;
    const auto* const address = reinterpret_cast<const wchar_t*>(reinterpret_cast<const void*>(&callAtExit));
    if (!::GetModuleHandleExW(flags, address, &module)) return false;
    return ::_onexit(reinterpret_cast<_onexit_t>(reinterpret_cast<void*>(function))) != nullptr;
}

void callAtUnload(void (*function)()) noexcept { (void)std::atexit(function); }

} // namespace kel::platform
