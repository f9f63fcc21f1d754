/// @file support/posix/FileDescriptor.h
/// A file descriptor which closes itself.
#pragma once

#include "support/SystemError.h"

#include <string>

namespace testsupport {

/// Owns one file descriptor and closes it; -1 stands for none.
///
/// Thread safety: none, as for an int.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
    ~FileDescriptor() { reset(); }

    FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(other.release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    int get() const { return descriptor_; }
    bool isOpen() const { return descriptor_ >= 0; }

    /// Closes the descriptor now.
    void reset();

    /// Hands the descriptor over to the caller, who closes it from now on.
    int release();

private:
    int descriptor_ = -1;
};

/// Wraps the result of a call which answers a descriptor; throws std::system_error when it is negative.
FileDescriptor checkedDescriptor(int descriptor, const std::string& action);

} // namespace testsupport
