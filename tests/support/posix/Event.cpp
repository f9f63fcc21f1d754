#include "support/Event.h"

#include "support/SystemError.h"

#include <sys/eventfd.h>

namespace testsupport {

Event::Event() : socket_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!socket_.isOpen()) throwErrno("make an event descriptor");
}

void Event::set() {
    if (::eventfd_write(static_cast<int>(socket_.get()), 1) != 0) throwErrno("set an event");
}

} // namespace testsupport
