#include "kel/MemoryStream.h"

#include "kel/Error.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace kel {

namespace {

/// The position as an index into `size` bytes. @throws CError if it lies outside.
std::size_t checkPosition(int64 position, std::size_t size) {
    if (position < 0 || static_cast<uint64>(position) > size)
        throw CError("Invalid stream position: " + String::fromInt(position) + ".");
    return static_cast<std::size_t>(position);
}

/// Copies what lies behind `position`, which may be behind the end where the memory has shrunk.
std::size_t readFrom(const unsigned char* data, std::size_t size, std::size_t& position, void* buffer,
                     std::size_t maxLength) {
    if (position >= size) return 0;
    const std::size_t length = std::min(maxLength, size - position);
    if (length > 0) std::memcpy(buffer, data + position, length);
    position += length;
    return length;
}

/// Overwrites from `position` on and appends what goes beyond the used part.
void writeTo(TBuffer<unsigned char>& buffer, std::size_t& position, const void* data, std::size_t length) {
    if (length == 0) return;
    if (length > std::numeric_limits<std::size_t>::max() - position) throw std::bad_alloc();
    // The owner may have shortened the buffer; the gap must not show what was there before.
    if (position > buffer.getUsed()) buffer.setUsed(position);
    const auto* bytes = static_cast<const unsigned char*>(data);
    const std::size_t overwritten = std::min(length, buffer.getUsed() - position);
    // Room first, so that a failure leaves the content alone.
    buffer.reserve(position + length);
    if (overwritten > 0) std::memcpy(buffer.getData() + position, bytes, overwritten);
    buffer.append(bytes + overwritten, length - overwritten);
    position += length;
}

} // namespace

CMemoryInStream::CMemoryInStream(const void* data, std::size_t size)
    : data_(static_cast<const unsigned char*>(data)), size_(size) {}

CMemoryInStream::CMemoryInStream(const TBuffer<unsigned char>* buffer) : buffer_(buffer) {}

std::size_t CMemoryInStream::read(void* buffer, std::size_t maxLength) {
    if (buffer_) return readFrom(buffer_->getData(), buffer_->getUsed(), position_, buffer, maxLength);
    return readFrom(data_, size_, position_, buffer, maxLength);
}

int64 CMemoryInStream::getSize() { return static_cast<int64>(buffer_ ? buffer_->getUsed() : size_); }

void CMemoryInStream::seek(int64 position) {
    position_ = checkPosition(position, buffer_ ? buffer_->getUsed() : size_);
}

CBufferOutStream::CBufferOutStream(TBuffer<unsigned char>* buffer) : buffer_(buffer) {}

void CBufferOutStream::write(const void* data, std::size_t length) {
    writeTo(*buffer_, position_, data, length);
}

void CBufferOutStream::seek(int64 position) { position_ = checkPosition(position, buffer_->getUsed()); }

CMemoryStream::CMemoryStream() : buffer_(new TBuffer<unsigned char>()) {}

std::size_t CMemoryStream::read(void* buffer, std::size_t maxLength) {
    return readFrom(buffer_->getData(), buffer_->getUsed(), position_, buffer, maxLength);
}

void CMemoryStream::seek(int64 position) { position_ = checkPosition(position, buffer_->getUsed()); }

void CMemoryStream::write(const void* data, std::size_t length) {
    writeTo(*buffer_, position_, data, length);
}

} // namespace kel
