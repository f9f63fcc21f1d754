/// @file kel/FileInfo.h
/// What kind of thing a directory entry is.
#pragma once

namespace kel {

class IFileInfoBase {
public:
    enum Type { Unknown = 0, File = 1, Directory = 2 };
};

} // namespace kel
