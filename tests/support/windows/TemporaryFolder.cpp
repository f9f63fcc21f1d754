#include "support/TemporaryFolder.h"

#include "support/Command.h"
#include "support/FilePath.h"
#include "support/launcher/Launcher.h"

#include <exception>
#include <stdexcept>

namespace testsupport {

/// The launcher's system and this one know a file by the same path: the current drive is the root of the
/// other's file system, and a path without a drive begins there.
std::string makeTemporaryFolder() {
    std::string path = Launcher().ask({std::string(folderRequest)}).at(0);
    if (!std::filesystem::is_directory(pathOf(path)))
        throw std::runtime_error("the test's current drive does not hold the launcher's folder " + path);
    return path;
}

/// Some of the files may have names that this system does not allow.
void removeFolder(const std::string& path) noexcept {
    try {
        runCommand({"rm", "-rf", path});
    } catch (const std::exception&) {
        // It stays behind, as it would on any failure.
    }
}

} // namespace testsupport
