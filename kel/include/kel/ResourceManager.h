/// @file kel/ResourceManager.h
/// Finds the files that an application ships beside its programs.
#pragma once

#include "kel/Array.h"
#include "kel/Base.h"
#include "kel/Mutex.h"
#include "kel/P.h"
#include "kel/Path.h"

namespace kel {

/// A list of folders in which resources are looked up, in order. It starts out as: the folder "resources"
/// beside the running program, the folder "../share" seen from the running program, and the folder
/// "resources" beside this library; a folder that the system does not tell is left out. Relative folders are
/// seen from the current folder of the process.
///
/// Thread safety: any thread may call any member.
class KEL_API CResourceManager : public CBase {
public:
    /// The one of the process.
    [[nodiscard]] static P<CResourceManager> get();

    CResourceManager();

    /// The full path of the first existing file or folder FOLDER/relativePath, or the empty path. An absolute
    /// path and one whose ".." lead out of the folder are never found, so that a name from outside cannot
    /// reach other files.
    [[nodiscard]] CPath findResource(const CPath& relativePath) const;
    /// A copy of the list.
    [[nodiscard]] TArray<CPath> getFolders() const;
    /// Replaces the list.
    void setFolders(const TArray<CPath>& folders);
    /// Puts a folder at the front of the list.
    void addFolder(const CPath& folder);

private:
    mutable CMutex mutex_;
    TArray<CPath> folders_;
};

} // namespace kel
