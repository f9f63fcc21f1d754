/// @file kel/Path.h
/// Paths of the file system.
#pragma once

#include "kel/Export.h"
#include "kel/String.h"

#include <filesystem>

namespace kel {

/// The separator of the platform the program runs on: L'\\' on Windows, L'/' elsewhere.
[[nodiscard]] KEL_API wchar_t nativePathSeparator() noexcept;

/// Both "/" and "\" separate; a path may begin with a drive or a share.
struct KEL_API CWindowsPathTraits {
    /// Whether a character parts the components of a path.
    [[nodiscard]] static constexpr bool isSeparator(wchar_t c) noexcept { return c == L'/' || c == L'\\'; }
    /// Whether paths may begin with a drive or a server.
    static constexpr bool hasDrives = true;
};

/// Only "/" separates.
struct KEL_API CPosixPathTraits {
    /// Whether a character parts the components of a path.
    [[nodiscard]] static constexpr bool isSeparator(wchar_t c) noexcept { return c == L'/'; }
    /// Whether paths may begin with a drive or a server.
    static constexpr bool hasDrives = false;
};

/// A path that was normalised when it was made: each run of separators is the one separator of the platform
/// the program runs on ("/" where that is no separator of the traits), "." components are gone, and there is
/// no separator at the end except for a root. ".." is kept, since what it means depends on links.
///
/// Where drives exist, two separators and a name at the very start stay two: they name a server
/// ("//server/share"). "C:x" is seen from the current folder of the drive, and a name that looks like a
/// drive's keeps a "." before it that tells it apart ("./C:x"). The root of a path is "/", "C:", "C:/" or
/// "//server".
///
/// Thread safety: one thread at a time, or any number of readers.
template <class Traits>
class TPathImpl {
public:
    TPathImpl();
    /// @{
    /// Normalises the text. @throws CError for bytes that are not valid UTF-8
    TPathImpl(const String& text);
    TPathImpl(const char* utf8);
    /// @}

    /// In the form that the platform's file system and libcurl understand; empty for the empty path.
    [[nodiscard]] const String& getText() const noexcept;
    /// Whether it is the empty path, which names nothing.
    [[nodiscard]] bool isEmpty() const noexcept;
    /// Whether it starts at a root ("/x", and where drives exist "//server/x" and "C:/x", but not "C:x").
    [[nodiscard]] bool isAbsolute() const noexcept;
    /// `other` seen from this folder; `other` itself when it is absolute or this path is empty. Nothing is
    /// resolved: "a" / ".." is "a/..".
    [[nodiscard]] TPathImpl operator/(const TPathImpl& other) const;
    /// What stands after the last separator; empty for a root.
    [[nodiscard]] String getFileName() const;
    /// What stands before it; the root for its direct children, empty for a single name and for a root.
    [[nodiscard]] TPathImpl getParent() const;
    /// The same path for the standard library.
    [[nodiscard]] std::filesystem::path toStdPath() const;

    friend bool operator==(const TPathImpl& left, const TPathImpl& right) {
        return left.text_ == right.text_;
    }

private:
    String text_;
};

// Instantiated in the library. Of a template's functions a DLL exports only those that are not inline.
extern template class KEL_API TPathImpl<CWindowsPathTraits>;
extern template class KEL_API TPathImpl<CPosixPathTraits>;

/// The path type of public interfaces, the same on every platform.
using CPath = TPathImpl<CWindowsPathTraits>;

} // namespace kel
