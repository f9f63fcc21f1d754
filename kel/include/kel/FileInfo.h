/// @file kel/FileInfo.h
/// What kind of thing a directory entry is.
#pragma once

namespace kel {

/// Where the kinds have their names.
class IFileInfoBase {
public:
    /// Unknown stands for whatever is neither of the others, too.
    enum Type { Unknown = 0, File = 1, Directory = 2 };
};

} // namespace kel
