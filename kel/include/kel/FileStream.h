/// @file kel/FileStream.h
/// Streams over files, byte for byte on every platform, as are their Unicode paths. REASON in an error's
/// message is the system's text in English ("No such file or directory").
#pragma once

#include "kel/Base.h"
#include "kel/Path.h"
#include "kel/Stream.h"
#include "kel/String.h"

#include <cstdio>

namespace kel {

/// Reads a file.
class KEL_API CFileInStream : public CBase, public IInStream {
public:
    /// @throws CError "Error opening file 'PATH': REASON."; a directory is refused too.
    explicit CFileInStream(const CPath& path);
    CFileInStream(const CFileInStream&) = delete;
    CFileInStream& operator=(const CFileInStream&) = delete;
    ~CFileInStream() override;

    /// @throws CError "Error reading file 'PATH': REASON."
    std::size_t read(void* buffer, std::size_t maxLength) override;
    /// The file's present size, or -1 for what has none (a pipe).
    int64 getSize() override;
    /// A position behind the end is allowed; there is nothing to read there.
    /// @throws CError "Error seeking in file 'PATH': REASON."
    void seek(int64 position) override;
    int64 getPosition() override;

private:
    String path_;
    std::FILE* file_;
    int64 position_ = 0;
};

/// Writes a new file. Once writing has failed the file has a hole, so every later write(), flush() and
/// close() reports the first failure again.
class KEL_API CFileOutStream : public CBase, public IOutStream {
public:
    /// What becomes of an existing file.
    enum class Mode {
        Replace,  ///< an existing file is emptied first
        CreateNew ///< an existing file is an error
    };

    /// @throws CError "Error creating file 'PATH': REASON."
    CFileOutStream(const CPath& path, Mode mode);
    CFileOutStream(const CFileOutStream&) = delete;
    CFileOutStream& operator=(const CFileOutStream&) = delete;
    /// Closes the file; an error on the way is only logged, so call close() to learn of it.
    ~CFileOutStream() override;

    /// @throws CError "Error writing file 'PATH': REASON."
    void write(const void* data, std::size_t length) override;
    /// @throws CError "Error writing file 'PATH': REASON."; nothing happens after close().
    void flush() override;
    /// Flushes and closes; nothing can be written afterwards. A second call does nothing.
    /// @throws CError "Error writing file 'PATH': REASON."
    void close();

private:
    void throwIfFailedBefore() const;
    [[noreturn]] void fail(int error);

    String path_;
    std::FILE* file_; // null once closed
    int error_ = 0;   // the value of errno that the first failure left
};

} // namespace kel
