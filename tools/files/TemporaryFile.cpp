#include "files/TemporaryFile.h"

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

CTemporaryFile::CTemporaryFile(const fs::path& folder, String shownName)
    : shownName_(std::move(shownName)), path_(CPath(toText(folder)) / CPath(makeTemporaryName())) {
    withShownName([this] { stream_ = new CFileOutStream(path_, CFileOutStream::Mode::CreateNew); });
}

CTemporaryFile::~CTemporaryFile() {
    if (renamed_) return;
    try {
        if (stream_) stream_->close();
    } catch (...) {
        // What the file lacks does not matter any more.
    }
    std::error_code error;
    fs::remove(path_.toStdPath(), error);
}

void CTemporaryFile::write(std::string_view bytes) {
    withShownName([&] { stream_->write(bytes.data(), bytes.size()); });
}

void CTemporaryFile::renameTo(const fs::path& target) {
    withShownName([this] { stream_->close(); });
    std::error_code error;
    fs::rename(path_.toStdPath(), target, error);
    if (error) throw CError("Error writing file '" + shownName_ + "': " + String(error.message()) + ".");
    renamed_ = true;
}

void CTemporaryFile::withShownName(const std::function<void()>& action) const {
    try {
        action();
    } catch (const CError& error) {
        throw CError(error.getMessage().replaceAll(path_.getText(), shownName_));
    }
}

} // namespace vantra::tool
