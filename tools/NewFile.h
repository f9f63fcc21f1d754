/// @file NewFile.h
/// A file that is there as a whole or not at all.
#pragma once

#include "Output.h"

#include <kel/Base.h>
#include <kel/FileStream.h>
#include <kel/P.h>
#include <kel/Path.h>

#include <filesystem>
#include <functional>

namespace vantra::tool {

/// Writes to a temporary file in the same folder, ".vantra-<random>.part", created exclusively, and gives it
/// its name in one step at the end. Until then a file of that name stays untouched; when the writing fails or
/// is given up the temporary file is removed. A new version of an existing file keeps that one's permissions;
/// a symbolic link is followed, so that the file it names is replaced.
class CNewFile : public IOutput {
public:
    /// @throws kel::CError "Error creating file 'PATH': REASON."
    explicit CNewFile(const kel::CPath& path);
    /// Removes the temporary file unless commit() has made it the final one.
    ~CNewFile() override;

    void write(std::string_view bytes) override;
    void commit() override;

private:
    CNewFile(const kel::CPath& path, std::filesystem::path target);

    void keepPermissions() const;
    void withShownName(const std::function<void()>& action) const;

    kel::CPath path_;
    std::filesystem::path target_; // what path_ names, links followed
    kel::CPath temporaryPath_;
    kel::P<kel::CFileOutStream> stream_;
    bool committed_ = false;
};

} // namespace vantra::tool
