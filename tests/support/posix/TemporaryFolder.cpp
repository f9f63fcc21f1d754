#include "support/TemporaryFolder.h"

#include "support/SystemError.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace testsupport {

std::string makeTemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vantra-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throwErrno("make the temporary folder " + pattern);
    return pattern;
}

void removeFolder(const std::string& path) noexcept {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

} // namespace testsupport
