#include "files/NewFile.h"

#include "files/OutputFile.h"

#include <kel/Error.h>

#include <system_error>
#include <utility>

namespace vantra::tool {

using kel::CError;
using kel::CPath;
using kel::String;

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(const CPath& path, const std::error_code& reason) {
    throw CError("Error creating file '" + path.getText() + "': " + String(reason.message()) + ".");
}

/// Follows a link by hand, because a link whose file does not exist yet has to lead somewhere too.
fs::path followLinks(const CPath& path) {
    constexpr int maxLinks = 40; // as many as the system itself would follow
    fs::path target = path.toStdPath();
    std::error_code error;
    for (int links = 0; fs::is_symlink(fs::symlink_status(target, error)); ++links) {
        if (links == maxLinks) fail(path, std::make_error_code(std::errc::too_many_symbolic_link_levels));
        const fs::path next = fs::read_symlink(target, error);
        if (error) fail(path, error);
        target = target.parent_path() / next;
    }
    if (const std::error_code reason = checkFileName(target)) fail(path, reason); // not when all is received
    return target;
}

} // namespace

CNewFile::CNewFile(const CPath& path) : CNewFile(path, followLinks(path)) {
    keepPermissions(); // should it fail, the destructor runs, because the other constructor is through
}

CNewFile::CNewFile(const CPath& path, fs::path target)
    : path_(path), target_(std::move(target)), temporary_(target_.parent_path(), path.getText()) {}

void CNewFile::write(std::string_view bytes) { temporary_.write(bytes); }

void CNewFile::commit() { temporary_.renameTo(target_); }

/// Before the first byte is written: it may be a secret.
void CNewFile::keepPermissions() const {
    std::error_code error;
    const fs::file_status existing = fs::status(target_, error);
    if (!fs::is_regular_file(existing)) return;
    fs::permissions(temporary_.getPath().toStdPath(), existing.permissions(), error);
    if (error) fail(path_, error);
}

} // namespace vantra::tool
