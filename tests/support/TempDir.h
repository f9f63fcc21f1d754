/// @file support/TempDir.h
/// A temporary folder of a test's own.
///
///     TempDir folder;
///     folder.writeFile("upload.txt", "content");
///     upload(folder.file("upload.txt"));
#pragma once

#include <string>
#include <string_view>

namespace testsupport {

/// A new folder with a unique name in $TMPDIR (default /tmp), readable by its user only, which is removed
/// with all its content by the destructor.
///
/// Thread safety: the object never changes; its files are as safe as the file system makes them.
class TempDir {
public:
    /// @throws std::system_error if the folder cannot be made.
    TempDir();
    ~TempDir();

    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    /// The folder's absolute path, with slashes and without one at the end. The same for every program, on
    /// whichever system it runs.
    const std::string& path() const { return path_; }

    /// The absolute path of a file in the folder, which need not exist.
    /// @param name a relative path with slashes.
    std::string file(std::string_view name) const;

    /// Writes a file of the folder, byte for byte, replacing an older one; makes missing folders in between.
    /// @return the file's absolute path.
    /// @throws std::runtime_error if it cannot be written.
    std::string writeFile(std::string_view name, std::string_view content) const;

    /// Reads a file of the folder, byte for byte.
    /// @throws std::runtime_error if it cannot be read.
    std::string readFile(std::string_view name) const;

private:
    std::string path_;
};

/// Reads any file, byte for byte.
/// @throws std::runtime_error if it cannot be read.
std::string readWholeFile(const std::string& path);

} // namespace testsupport
