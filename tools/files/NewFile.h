/// @file NewFile.h
/// A file that is there as a whole or not at all.
#pragma once

#include "files/Output.h"
#include "files/TemporaryFile.h"

#include <kel/Path.h>

#include <filesystem>

namespace vantra::tool {

/// Writes to a temporary file in the same folder (see CTemporaryFile) and gives it its name at the end. Until
/// then a file of that name stays untouched. A new version of an existing file keeps that one's permissions;
/// a symbolic link is followed, so that the file it names is replaced.
class CNewFile : public IOutput {
public:
    /// @throws kel::CError "Error creating file 'PATH': REASON."
    explicit CNewFile(const kel::CPath& path);

    void write(std::string_view bytes) override;
    void commit() override;

private:
    CNewFile(const kel::CPath& path, std::filesystem::path target);

    void keepPermissions() const;

    kel::CPath path_;
    std::filesystem::path target_; // what path_ names, links followed
    CTemporaryFile temporary_;
};

} // namespace vantra::tool
