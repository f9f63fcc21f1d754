/// @file support/posix/ProcessGroup.h
/// A look at a process group from outside.
#pragma once

#include <sys/types.h>

namespace testsupport {

/// Whether any process of the group still runs. One that has ended counts no more, even if nobody has waited
/// for it. Throws nothing, so that destructors can ask.
bool isGroupRunning(pid_t group) noexcept;

} // namespace testsupport
