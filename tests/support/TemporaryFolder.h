/// @file support/TemporaryFolder.h
/// The system's side of TempDir.
#pragma once

#include <string>

namespace testsupport {

/// Makes a new empty folder with a unique name in $TMPDIR (default /tmp), readable by its user only.
/// @return its absolute path, without a slash at the end.
/// @throws std::system_error if it cannot be made.
std::string makeTemporaryFolder();

/// Removes a folder with all its content, as far as that can be done.
void removeFolder(const std::string& path) noexcept;

} // namespace testsupport
