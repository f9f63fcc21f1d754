/// @file kel/MemoryStream.h
/// Streams over memory.
#pragma once

#include "kel/Buffer.h"
#include "kel/P.h"
#include "kel/Stream.h"

namespace kel {

/// Reads memory in place, without copying it.
///
/// Thread safety, here and below: one thread at a time.
class KEL_API CMemoryInStream : public CBase, public IInStream {
public:
    /// Reads `size` bytes at `data`, which must stay there as long as the stream is used.
    CMemoryInStream(const void* data, std::size_t size);
    /// Reads the used part of `buffer` (as it is at each call); keeps a reference to it. A position that a
    /// shortened buffer has left behind its end is at the end.
    explicit CMemoryInStream(const TBuffer<unsigned char>* buffer);

    std::size_t read(void* buffer, std::size_t maxLength) override;
    int64 getSize() override;
    /// @throws CError "Invalid stream position: N." outside 0 to the size.
    void seek(int64 position) override;
    int64 getPosition() override { return static_cast<int64>(position_); }

private:
    PC<TBuffer<unsigned char>> buffer_; // null when the bytes are the caller's
    const unsigned char* data_ = nullptr;
    std::size_t size_ = 0;
    std::size_t position_ = 0;
};

/// Writes into a buffer from the current position on; what lies there is overwritten, then the buffer grows.
/// Where its owner has shortened the buffer to less than the position, zeros fill the gap. The bytes written
/// must not lie inside the buffer.
class KEL_API CBufferOutStream : public CBase, public IOutStream {
public:
    /// Starts at position 0 of `buffer`; keeps a reference to it.
    explicit CBufferOutStream(TBuffer<unsigned char>* buffer);

    void write(const void* data, std::size_t length) override;
    void flush() override {}
    /// Where the next write begins.
    [[nodiscard]] int64 getPosition() const noexcept { return static_cast<int64>(position_); }
    /// @throws CError "Invalid stream position: N." outside 0 to the used length.
    void seek(int64 position);

private:
    P<TBuffer<unsigned char>> buffer_;
    std::size_t position_ = 0;
};

/// A buffer of its own to write to and read from, with one position for both; writes as CBufferOutStream
/// does.
class KEL_API CMemoryStream : public CBase, public IInStream, public IOutStream {
public:
    CMemoryStream();

    std::size_t read(void* buffer, std::size_t maxLength) override;
    int64 getSize() override { return static_cast<int64>(buffer_->getUsed()); }
    /// @throws CError "Invalid stream position: N." outside 0 to the size.
    void seek(int64 position) override;
    int64 getPosition() override { return static_cast<int64>(position_); }
    void write(const void* data, std::size_t length) override;
    void flush() override {}
    /// The stream's buffer; its used part is all that was written.
    [[nodiscard]] const P<TBuffer<unsigned char>>& getBuffer() const noexcept { return buffer_; }

private:
    P<TBuffer<unsigned char>> buffer_;
    std::size_t position_ = 0;
};

} // namespace kel
