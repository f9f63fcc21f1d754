/// @file TemporaryFile.h
/// A file that has no name of its own yet.
#pragma once

#include <kel/FileStream.h>
#include <kel/P.h>
#include <kel/Path.h>
#include <kel/String.h>

#include <filesystem>
#include <functional>
#include <string_view>

namespace vantra::tool {

/// A new file ".vantra-<random>.part", created exclusively. It is removed again unless renameTo() was called,
/// such as when the writing fails or is given up.
class CTemporaryFile {
public:
    /// @param shownName takes the place of the file's name in every error's text, because the user knows
    /// nothing of a temporary file.
    /// @throws kel::CError "Error creating file 'SHOWN NAME': REASON."
    CTemporaryFile(const std::filesystem::path& folder, kel::String shownName);
    CTemporaryFile(const CTemporaryFile&) = delete;
    CTemporaryFile& operator=(const CTemporaryFile&) = delete;
    ~CTemporaryFile();

    [[nodiscard]] const kel::CPath& getPath() const noexcept { return path_; }
    [[nodiscard]] const kel::String& getShownName() const noexcept { return shownName_; }

    /// @throws kel::CError "Error writing file 'SHOWN NAME': REASON."
    void write(std::string_view bytes);
    /// Ends the writing and gives the file its name in one step; a file of that name is replaced.
    /// @param target in the same folder. @throws kel::CError as write().
    void renameTo(const std::filesystem::path& target);

private:
    void withShownName(const std::function<void()>& action) const;

    kel::String shownName_;
    kel::CPath path_;
    kel::P<kel::CFileOutStream> stream_;
    bool renamed_ = false;
};

} // namespace vantra::tool
