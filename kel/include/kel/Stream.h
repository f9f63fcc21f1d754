/// @file kel/Stream.h
/// Streams of bytes.
#pragma once

#include "kel/Base.h"
#include "kel/Int64.h"

#include <cstddef>

namespace kel {

/// Bytes to read. One thread at a time.
class KEL_API IInStream : public virtual IBase {
public:
    /// Reads up to `maxLength` bytes and returns how many; 0 only at the end (or for a maxLength of 0).
    /// @throws CError when reading fails.
    virtual std::size_t read(void* buffer, std::size_t maxLength) = 0;
    /// The whole size in bytes, or -1 when it is not known.
    virtual int64 getSize() = 0;
    /// Moves to `position` bytes from the start. @throws CError if that is not possible.
    virtual void seek(int64 position) = 0;
    /// Bytes from the start to what read() gives next.
    virtual int64 getPosition() = 0;
};

/// Bytes to write. One thread at a time.
class KEL_API IOutStream : public virtual IBase {
public:
    /// Writes all of the bytes. @throws CError when that fails.
    virtual void write(const void* data, std::size_t length) = 0;
    /// Hands what was written so far to its destination. @throws CError when that fails.
    virtual void flush() = 0;
};

} // namespace kel
