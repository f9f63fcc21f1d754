#include "kel/ResourceManager.h"

#include "Platform.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace kel {

namespace {

TArray<CPath> getDefaultFolders() {
    TArray<CPath> folders;
    const CPath programFolder = platform::getProgramFolder();
    if (!programFolder.isEmpty()) {
        folders.push_back(programFolder / "resources");
        folders.push_back(programFolder / "../share");
    }
    const CPath libraryFolder = platform::getLibraryFolder();
    if (!libraryFolder.isEmpty()) folders.push_back(libraryFolder / "resources");
    return folders;
}

/// Whether following the path's components from a folder leads out of that folder on the way.
bool leavesFolder(const CPath& relativePath) {
    std::wstring_view rest = relativePath.getText().view();
    int depth = 0;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(nativePathSeparator()), rest.size());
        depth += rest.substr(0, end) == L".." ? -1 : 1;
        if (depth < 0) return true;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return false;
}

bool mayBeResource(const CPath& path) {
    // The file system would take the part before a NUL for the whole path.
    const bool hasNul = path.getText().find(L'\0') != String::npos;
    return !path.isEmpty() && !path.isAbsolute() && !hasNul && !leavesFolder(path);
}

bool exists(const CPath& path) {
    std::error_code ignored;
    return std::filesystem::exists(path.toStdPath(), ignored);
}

} // namespace

P<CResourceManager> CResourceManager::get() {
    // Never destroyed: static objects may look for resources until the very end of the process.
    static CResourceManager* const manager = P<CResourceManager>(new CResourceManager()).detach();
    return manager;
}

CResourceManager::CResourceManager() : folders_(getDefaultFolders()) {}

CPath CResourceManager::findResource(const CPath& relativePath) const {
    if (!mayBeResource(relativePath)) return {};
    for (const CPath& folder : getFolders()) {
        CPath path = folder / relativePath;
        if (exists(path)) return path;
    }
    return {};
}

TArray<CPath> CResourceManager::getFolders() const {
    CMutexLock lock(mutex_);
    return folders_;
}

void CResourceManager::setFolders(const TArray<CPath>& folders) {
    CMutexLock lock(mutex_);
    folders_ = folders;
}

void CResourceManager::addFolder(const CPath& folder) {
    CMutexLock lock(mutex_);
    TArray<CPath> folders{folder};
    for (const CPath& present : folders_) folders.push_back(present);
    folders_.swap(folders);
}

} // namespace kel
