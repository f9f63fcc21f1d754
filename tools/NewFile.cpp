#include "NewFile.h"

#include <kel/Error.h>
#include <kel/MTRand.h>
#include <kel/Mutex.h>
#include <kel/Number.h>

#include <system_error>
#include <utility>

namespace vantra::tool {

using kel::CError;
using kel::CFileOutStream;
using kel::CMTRand;
using kel::CMutexLock;
using kel::CPath;
using kel::String;

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(const char* action, const CPath& path, const std::error_code& reason) {
    throw CError("Error " + String(action) + " file '" + path.getText() + "': " + String(reason.message()) +
                 ".");
}

/// Follows a link by hand, because a link whose file does not exist yet has to lead somewhere too.
fs::path followLinks(const CPath& path) {
    constexpr int maxLinks = 40; // as many as the system itself would follow
    fs::path target = path.toStdPath();
    std::error_code error;
    for (int links = 0; fs::is_symlink(fs::symlink_status(target, error)); ++links) {
        if (links == maxLinks)
            fail("creating", path, std::make_error_code(std::errc::too_many_symbolic_link_levels));
        const fs::path next = fs::read_symlink(target, error);
        if (error) fail("creating", path, error);
        target = target.parent_path() / next;
    }
    return target;
}

String makeTemporaryName() {
    const CMutexLock lock(CMTRand::getGlobalMutex());
    const kel::uint64 number = CMTRand::getGlobal().rand64();
    return ".vantra-" + kel::hexEncode(&number, sizeof(number)) + ".part";
}

String toText(const fs::path& path) {
    const std::u8string text = path.u8string();
    return String::fromUTF8Lax({reinterpret_cast<const char*>(text.data()), text.size()});
}

} // namespace

CNewFile::CNewFile(const CPath& path) : CNewFile(path, followLinks(path)) {
    keepPermissions(); // should it fail, the destructor runs, because the other constructor is through
}

CNewFile::CNewFile(const CPath& path, fs::path target)
    : path_(path),
      target_(std::move(target)),
      temporaryPath_(CPath(toText(target_.parent_path())) / CPath(makeTemporaryName())) {
    withShownName([this] { stream_ = new CFileOutStream(temporaryPath_, CFileOutStream::Mode::CreateNew); });
}

CNewFile::~CNewFile() {
    if (committed_) return;
    try {
        if (stream_) stream_->close();
    } catch (...) {
        // What the file lacks does not matter any more.
    }
    std::error_code error;
    fs::remove(temporaryPath_.toStdPath(), error);
}

void CNewFile::write(std::string_view bytes) {
    withShownName([&] { stream_->write(bytes.data(), bytes.size()); });
}

void CNewFile::commit() {
    withShownName([this] { stream_->close(); });
    std::error_code error;
    fs::rename(temporaryPath_.toStdPath(), target_, error);
    if (error) fail("writing", path_, error);
    committed_ = true;
}

/// Before the first byte is written: it may be a secret.
void CNewFile::keepPermissions() const {
    std::error_code error;
    const fs::file_status existing = fs::status(target_, error);
    if (!fs::is_regular_file(existing)) return;
    fs::permissions(temporaryPath_.toStdPath(), existing.permissions(), error);
    if (error) fail("creating", path_, error);
}

/// The user knows nothing of a temporary file.
void CNewFile::withShownName(const std::function<void()>& action) const {
    try {
        action();
    } catch (const CError& error) {
        throw CError(error.getMessage().replaceAll(temporaryPath_.getText(), path_.getText()));
    }
}

} // namespace vantra::tool
