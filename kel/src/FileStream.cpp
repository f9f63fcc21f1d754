#include "kel/FileStream.h"

#include "kel/Error.h"
#include "Platform.h"

#include <cerrno>
#include <utility>

namespace kel {

namespace {

/// @param action what went wrong, such as "reading". @param error a value of errno.
[[noreturn]] void throwFileError(const char* action, const String& path, int error) {
    throw CError("Error " + String(action) + " file '" + path + "': " + platform::getErrorText(error) + ".");
}

platform::FileAccess toFileAccess(CFileOutStream::Mode mode) noexcept {
    return mode == CFileOutStream::Mode::CreateNew ? platform::FileAccess::Create
                                                   : platform::FileAccess::Replace;
}

} // namespace

CFileInStream::CFileInStream(const CPath& path)
    : path_(path.getText()), file_(platform::openFile(path_, platform::FileAccess::Read)) {
    if (!file_) throwFileError("opening", path_, errno);
}

CFileInStream::~CFileInStream() { std::fclose(file_); }

std::size_t CFileInStream::read(void* buffer, std::size_t maxLength) {
    if (maxLength == 0) return 0;
    for (;;) {
        // Forgets an end met before, so that a file that has grown since is read on.
        platform::forgetEnd(file_);
        const std::size_t length = std::fread(buffer, 1, maxLength, file_);
        if (length > 0 || !std::ferror(file_)) {
            position_ += static_cast<int64>(length);
            return length;
        }
        if (errno != EINTR) throwFileError("reading", path_, errno);
    }
}

int64 CFileInStream::getSize() { return platform::getFileSize(file_); }

void CFileInStream::seek(int64 position) {
    if (!platform::seekFile(file_, position)) throwFileError("seeking in", path_, errno);
    position_ = position;
}

int64 CFileInStream::getPosition() { return position_; }

CFileOutStream::CFileOutStream(const CPath& path, Mode mode)
    : path_(path.getText()), file_(platform::openFile(path_, toFileAccess(mode))) {
    if (!file_) throwFileError("creating", path_, errno);
}

CFileOutStream::~CFileOutStream() {
    if (!file_) return;
    if (error_ != 0) {
        // The caller knows already that the file is not what it should be.
        std::fclose(file_);
        return;
    }
    try {
        close();
    } catch (...) {
        onExceptionInDestructorIgnored("CFileOutStream");
    }
}

void CFileOutStream::write(const void* data, std::size_t length) {
    if (!file_) throwFileError("writing", path_, EBADF);
    throwIfFailedBefore();
    if (length == 0) return;
    if (std::fwrite(data, 1, length, file_) != length) fail(errno);
}

void CFileOutStream::flush() {
    if (!file_) return;
    throwIfFailedBefore();
    if (std::fflush(file_) != 0) fail(errno);
}

void CFileOutStream::close() {
    if (!file_) return;
    std::FILE* const file = std::exchange(file_, nullptr);
    // Not every system's fclose() tells that the last bytes were not taken.
    const bool flushed = std::fflush(file) == 0;
    const int flushError = errno;
    const bool closed = std::fclose(file) == 0;
    const int closeError = errno;
    throwIfFailedBefore();
    if (!flushed) fail(flushError);
    if (!closed) fail(closeError);
}

void CFileOutStream::throwIfFailedBefore() const {
    if (error_ != 0) throwFileError("writing", path_, error_);
}

void CFileOutStream::fail(int error) {
    error_ = error;
    throwFileError("writing", path_, error_);
}

} // namespace kel
