/// @file DownloadFolder.h
/// The folder that downloads go to.
#pragma once

#include "files/TemporaryFile.h"

#include <kel/String.h>

#include <memory>
#include <set>

namespace vantra::tool {

/// Hands out names for new files, of which no two are the same.
///
/// Thread safety: createFile() from any thread, the other members from one.
class CDownloadFolder {
public:
    /// @throws kel::CError "Error creating a file in folder 'NAME': REASON." for one that is not there or
    /// cannot be written to.
    explicit CDownloadFolder(const kel::String& name);

    /// The name, or with a number the first form of it (see numberFileName) that no file has nor was handed
    /// out before.
    /// @param name as makeSafeFileName() gives it.
    [[nodiscard]] kel::String reserveName(const kel::String& name);
    /// Takes back a name that is not to be used.
    void releaseName(const kel::String& name);

    /// @param name for the errors' texts only.
    [[nodiscard]] std::unique_ptr<CTemporaryFile> createFile(const kel::String& name) const;

    /// Gives the file a name that was reserved; should a file of that name have come up meanwhile, another
    /// one.
    /// @param name for which the other one was reserved.
    /// @return the path of the file.
    /// @throws kel::CError
    kel::String keepFile(CTemporaryFile& file, const kel::String& name, const kel::String& reservedName);

private:
    [[nodiscard]] kel::String getPathText(const kel::String& name) const;
    [[nodiscard]] bool exists(const kel::String& name) const;
    [[nodiscard]] bool claim(const kel::String& name) const;

    kel::String name_;
    std::set<kel::String> reserved_; // in lower case: many file systems do not tell the case of letters
};

} // namespace vantra::tool
