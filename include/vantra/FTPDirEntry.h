/// @file vantra/FTPDirEntry.h
/// One entry of a directory on an FTP server.
///
///     CFTPDirEntry entry("type=file;size=1024;modify=20190401123000; report.txt");
///     entry.getSize(); // 1024
#pragma once

#include "vantra/Export.h"

#include <kel/Base.h>
#include <kel/FileInfo.h>
#include <kel/Int64.h>
#include <kel/String.h>
#include <kel/Time.h>

#include <utility>

namespace vantra {

/// What a server tells of a file or directory in its machine-readable answers (RFC 3659 §7). What it does not
/// tell has the value of a new entry.
///
/// Thread safety: any number of readers, or one thread that writes.
class VANTRA_API CFTPDirEntry : public kel::CBase {
public:
    /// Type unknown, no name, size 0, modified at CTime's default.
    CFTPDirEntry();
    /// Reads a fact line, `facts SP name`, such as "type=dir;modify=20190401123000; My Folder". The name is
    /// all that follows the first blank, further blanks included. Facts are `fact=value`, separated by ";",
    /// in any case of letters; the last one of a name counts, and facts other than "type", "size" and
    /// "modify" are passed over. A type other than "file" and "dir" ("cdir", "pdir", "os.unix=slink:")
    /// changes nothing. Any number of ";" may end the facts, but none may begin them or follow another one
    /// elsewhere.
    /// @throws kel::CError "Invalid FTP dir entry: 'LINE'" without a blank, or for a fact without "=", the
    /// empty one included; kel::parseInt64's error for a size that is no integer of 64 bits; what
    /// parseTimeValue() throws.
    explicit CFTPDirEntry(const kel::String& factLine);
    CFTPDirEntry(const CFTPDirEntry&);
    CFTPDirEntry(CFTPDirEntry&&) noexcept;
    CFTPDirEntry& operator=(const CFTPDirEntry&);
    CFTPDirEntry& operator=(CFTPDirEntry&&) noexcept;
    ~CFTPDirEntry() override;

    /// @{
    /// Unknown also stands for what is neither a file nor a directory to go into: links, devices, and the
    /// directory itself ("cdir") and the one above ("pdir"), which some servers list.
    [[nodiscard]] kel::IFileInfoBase::Type getType() const noexcept { return type_; }
    void setType(kel::IFileInfoBase::Type type) noexcept { type_ = type; }
    /// @}

    /// @{
    /// In a listing the name within the directory; in the answer to MLST what the server likes, which for
    /// many is the whole path.
    [[nodiscard]] kel::String getName() const { return name_; }
    void setName(kel::String name) { name_ = std::move(name); }
    /// @}

    /// @{
    /// In bytes.
    [[nodiscard]] kel::int64 getSize() const noexcept { return size_; }
    void setSize(kel::int64 size) noexcept { size_ = size; }
    /// @}

    /// @{
    /// When the content changed last, as the server tells it; CTime's default (1970) when it does not.
    [[nodiscard]] kel::CTime getModifiedTime() const noexcept { return modifiedTime_; }
    void setModifiedTime(const kel::CTime& time) noexcept { modifiedTime_ = time; }
    /// @}

    /// Reads a time value of RFC 3659 §2.3, `YYYYMMDDHHMMSS[.fraction]`, which is UTC. A field that is out of
    /// range carries over into the next one (the 32nd of January is the 1st of February); a fraction is
    /// rounded to microseconds and never reaches the next second.
    /// @throws kel::CError "Invalid FTP time value: 'VALUE'" for fewer than 14 characters, or when the 15th
    /// is no point; kel::parseInt64's and kel::parseSimpleDouble's errors for fields and fractions that are
    /// no numbers.
    [[nodiscard]] static kel::CTime parseTimeValue(const kel::String& value);

private:
    kel::IFileInfoBase::Type type_ = kel::IFileInfoBase::Unknown;
    kel::String name_;
    kel::int64 size_ = 0;
    kel::CTime modifiedTime_;
};

} // namespace vantra
