#include "files/OutputFile.h"

namespace vantra::tool {

namespace fs = std::filesystem;

bool isSpecialFile(const fs::path& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    return fs::exists(status) && !fs::is_regular_file(status);
}

std::error_code checkFileName(const fs::path& path) {
    std::error_code error;
    (void)fs::symlink_status(path, error);
    return error == std::errc::filename_too_long ? error : std::error_code();
}

bool areSamePath(const fs::path& left, const fs::path& right) { return left == right; }

} // namespace vantra::tool
