#include "support/FileDescriptor.h"

#include <cerrno>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace testsupport {

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    if (this != &other) {
        reset();
        descriptor_ = other.release();
    }
    return *this;
}

void FileDescriptor::reset() {
    if (isOpen()) ::close(release());
}

int FileDescriptor::release() { return std::exchange(descriptor_, -1); }

void throwErrno(const std::string& action) {
    throw std::system_error(errno, std::generic_category(), "cannot " + action);
}

FileDescriptor checkedDescriptor(int descriptor, const std::string& action) {
    if (descriptor < 0) throwErrno(action);
    return FileDescriptor(descriptor);
}

} // namespace testsupport
