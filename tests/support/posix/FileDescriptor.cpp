#include "support/posix/FileDescriptor.h"

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

FileDescriptor checkedDescriptor(int descriptor, const std::string& action) {
    if (descriptor < 0) throwErrno(action);
    return FileDescriptor(descriptor);
}

} // namespace testsupport
