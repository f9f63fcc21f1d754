#include "Platform.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <locale.h>
#include <string>

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/select.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kel::platform {

namespace {

int getOpenFlags(FileAccess access) noexcept {
    switch (access) {
    case FileAccess::Read:
        return O_RDONLY;
    case FileAccess::Replace:
        return O_WRONLY | O_CREAT | O_TRUNC;
    case FileAccess::Create:
        return O_WRONLY | O_CREAT | O_EXCL;
    }
    return O_RDONLY;
}

int openDescriptor(const std::string& path, int flags) noexcept {
    constexpr mode_t modeBeforeUmask = 0666;
    int descriptor;
    do descriptor = ::open(path.c_str(), flags | O_CLOEXEC, modeBeforeUmask);
    while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

bool isDirectory(int descriptor) noexcept {
    struct stat info;
    return ::fstat(descriptor, &info) == 0 && S_ISDIR(info.st_mode);
}

std::FILE* failOpening(int descriptor, int error) noexcept {
    ::close(descriptor);
    errno = error;
    return nullptr;
}

} // namespace

wchar_t pathSeparator() noexcept { return L'/'; }

std::filesystem::path toStdPath(const String& path) { return path.toUTF8(); }

String fromStdPath(const std::filesystem::path& path) { return String::fromUTF8Lax(path.native()); }

std::FILE* openFile(const String& path, FileAccess access) {
    const std::string pathUTF8 = path.toUTF8();
    if (pathUTF8.find('\0') != std::string::npos) {
        // The system would take the part before the NUL for the whole path.
        errno = EINVAL;
        return nullptr;
    }
    const int descriptor = openDescriptor(pathUTF8, getOpenFlags(access));
    if (descriptor < 0) return nullptr;
    // A directory opens for reading all right and would only fail at the first read.
    if (access == FileAccess::Read && isDirectory(descriptor)) return failOpening(descriptor, EISDIR);
    std::FILE* file = ::fdopen(descriptor, access == FileAccess::Read ? "rb" : "wb");
    return file ? file : failOpening(descriptor, errno);
}

int64 getFileSize(std::FILE* file) noexcept {
    struct stat info;
    if (::fstat(::fileno(file), &info) != 0 || !S_ISREG(info.st_mode)) return -1;
    return info.st_size;
}

void forgetEnd(std::FILE* file) noexcept { std::clearerr(file); }

bool seekFile(std::FILE* file, int64 position) noexcept { return ::fseeko(file, position, SEEK_SET) == 0; }

String getErrorText(int error) {
    // The C locale's texts are plain ASCII, whatever language and encoding the host application has chosen.
    static const locale_t plainLocale = ::newlocale(LC_ALL_MASK, "C", nullptr);
    if (!plainLocale) return "Error " + String::fromInt(error);
    return String::fromUTF8Lax(::strerror_l(error, plainLocale));
}

String getProgramFolder() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? String() : fromStdPath(program.parent_path());
}

String getLibraryFolder() {
    Dl_info info;
    if (::dladdr(reinterpret_cast<const void*>(&getLibraryFolder), &info) == 0 || !info.dli_fname) return {};
    // The loader tells the name it was given, which may be relative.
    std::error_code error;
    const std::filesystem::path library = std::filesystem::absolute(info.dli_fname, error);
    return error ? String() : fromStdPath(library.parent_path());
}

void setCurrentThreadName(const String& name) {
    constexpr std::size_t maxBytes = 15;
    std::string shown = name.toUTF8();
    if (shown.size() > maxBytes) {
        std::size_t length = maxBytes;
        const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; };
        while (length > 0 && isContinuation(shown[length])) --length;
        shown.resize(length);
    }
    // A thread without its name works as well, so a failure is no error.
    (void)::pthread_setname_np(::pthread_self(), shown.c_str());
}

int waitForSockets(int socketCount, fd_set* read, fd_set* write, fd_set* exception,
                   int64 timeoutMs) noexcept {
    if (socketCount > FD_SETSIZE) {
        // The system would look at memory behind the sets.
        errno = EINVAL;
        return -1;
    }
    timeval timeout{};
    timeout.tv_sec = static_cast<time_t>(timeoutMs / 1000);
    timeout.tv_usec = static_cast<suseconds_t>(timeoutMs % 1000 * 1000);
    const int ready = ::select(socketCount, read, write, exception, timeoutMs < 0 ? nullptr : &timeout);
    return ready < 0 && errno == EINTR ? 0 : ready;
}

bool callAtExit(void (*function)()) noexcept { return std::atexit(function) == 0; }

void callAtUnload(void (*)()) noexcept {}

} // namespace kel::platform
