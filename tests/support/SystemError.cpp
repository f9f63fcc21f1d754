#include "support/SystemError.h"

#include <cerrno>
#include <system_error>

namespace testsupport {

void throwErrno(const std::string& action) {
    throw std::system_error(errno, std::generic_category(), "cannot " + action);
}

} // namespace testsupport
