#include "DownloadFolder.h"

#include "FileName.h"

#include <kel/Error.h>
#include <kel/FileStream.h>
#include <kel/Path.h>

#include <filesystem>
#include <system_error>

namespace vantra::tool {

using kel::CError;
using kel::CFileOutStream;
using kel::CPath;
using kel::P;
using kel::String;

namespace fs = std::filesystem;

CDownloadFolder::CDownloadFolder(const String& name) : name_(name) {
    try {
        const CPath folder(name_);
        const CTemporaryFile probe(folder.toStdPath(), folder.isEmpty() ? name_ : folder.getText());
    } catch (const CError& error) {
        throw CError(error.getMessage().replaceAll("creating file '", "creating a file in folder '"));
    }
}

String CDownloadFolder::reserveName(const String& name) {
    for (int number = 1;; ++number) {
        String candidate = numberFileName(name, number);
        if (!exists(candidate) && reserved_.insert(candidate.toLower()).second) return candidate;
    }
}

void CDownloadFolder::releaseName(const String& name) { reserved_.erase(name.toLower()); }

std::unique_ptr<CTemporaryFile> CDownloadFolder::createFile(const String& name) const {
    return std::make_unique<CTemporaryFile>(CPath(name_).toStdPath(), getPathText(name));
}

String CDownloadFolder::keepFile(CTemporaryFile& file, const String& name, const String& reservedName) {
    String candidate = reservedName;
    while (!claim(candidate)) candidate = reserveName(name);
    const fs::path path = CPath(getPathText(candidate)).toStdPath();
    try {
        file.renameTo(path);
    } catch (...) {
        std::error_code error;
        fs::remove(path, error);
        throw;
    }
    return getPathText(candidate);
}

String CDownloadFolder::getPathText(const String& name) const {
    return (CPath(name_) / CPath(name)).getText();
}

bool CDownloadFolder::exists(const String& name) const {
    std::error_code error;
    return fs::exists(fs::symlink_status(CPath(getPathText(name)).toStdPath(), error));
}

/// Takes the name by an empty file, which the download then replaces; says whether it was free.
bool CDownloadFolder::claim(const String& name) const {
    try {
        const P<CFileOutStream> placeholder =
            new CFileOutStream(CPath(getPathText(name)), CFileOutStream::Mode::CreateNew);
        placeholder->close();
        return true;
    } catch (const CError&) {
        if (exists(name)) return false;
        throw;
    }
}

} // namespace vantra::tool
