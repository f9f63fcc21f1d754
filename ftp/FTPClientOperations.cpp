#include "vantra/FTPClient.h"

#include <vector>

namespace vantra {

using kel::IFileInfoBase;
using kel::P;
using kel::String;

namespace {

/// A directory that is being emptied.
struct EmptiedDir {
    String path;
    P<CFTPListDirResult> listing;
    std::size_t next = 0; // in the listing
};

/// Whether an entry leads deeper, and not to the directory that lists it or back up.
bool isSubdirectory(const CFTPDirEntry& entry) {
    const String name = entry.getName();
    return entry.getType() == IFileInfoBase::Directory && !name.isEmpty() && name != "." && name != "..";
}

} // namespace

void CFTPClient::createDir(CNetRequest& request, const String& dirPath, bool createParents) const {
    prepareCreateDirRequest(request, dirPath, createParents);
    request.perform();
}

void CFTPClient::removeDir(CNetRequest& request, const String& dirPath) const {
    prepareRemoveDirRequest(request, dirPath);
    request.perform();
}

void CFTPClient::deleteFile(CNetRequest& request, const String& path) const {
    prepareDeleteFileRequest(request, path);
    request.perform();
}

P<CFTPListDirResult> CFTPClient::listDir(CNetRequest& request, const String& dirPath) const {
    prepareListDirRequest(request, dirPath);
    request.perform();
    return new CFTPListDirResult(*request.getDefaultReceiveBuffer());
}

void CFTPClient::deleteDirWithAllContents(CNetRequest& request, const String& dirPath) const {
    // Not by recursion: how deep it goes is the server's choice, and must not decide over the stack.
    std::vector<EmptiedDir> dirs;
    dirs.push_back({dirPath, listDir(request, dirPath)});
    while (!dirs.empty()) {
        EmptiedDir& dir = dirs.back();
        if (dir.next == dir.listing->getEntries().size()) {
            removeDir(request, dir.path);
            dirs.pop_back();
            continue;
        }
        const CFTPDirEntry& entry = *dir.listing->getEntries()[dir.next++];
        const String childPath = dir.path + "/" + entry.getName();
        if (entry.getType() == IFileInfoBase::File) deleteFile(request, childPath);
        if (isSubdirectory(entry)) dirs.push_back({childPath, listDir(request, childPath)});
    }
}

} // namespace vantra
