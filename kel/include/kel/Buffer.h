/// @file kel/Buffer.h
/// A growable run of plain values with a used length.
#pragma once

#include "kel/Base.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

namespace kel {

/// Memory for values of a trivially copyable type. Capacity grows geometrically and is kept when the used
/// length shrinks, so that a buffer that is filled again and again allocates once.
///
/// Thread safety: one thread at a time, or any number of readers.
template <class T>
class TBuffer : public CBase {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    TBuffer() = default;
    /// Holds a copy of `count` values. @throws std::bad_alloc, as the copy constructor does
    TBuffer(const T* data, std::size_t count) { append(data, count); }
    TBuffer(const TBuffer& other) : CBase(other) { append(other.data_, other.used_); }
    /// The source is empty afterwards, without memory.
    TBuffer(TBuffer&& other) noexcept
        : data_(std::exchange(other.data_, nullptr)),
          used_(std::exchange(other.used_, 0)),
          capacity_(std::exchange(other.capacity_, 0)) {}
    /// Takes the memory of `other` over, which is a copy of what is assigned or what it was moved to.
    TBuffer& operator=(TBuffer other) noexcept {
        std::swap(data_, other.data_);
        std::swap(used_, other.used_);
        std::swap(capacity_, other.capacity_);
        return *this;
    }
    ~TBuffer() override { std::free(data_); }

    /// @{
    /// Null as long as nothing was ever reserved. Valid until the buffer grows.
    [[nodiscard]] T* getData() noexcept { return data_; }
    [[nodiscard]] const T* getData() const noexcept { return data_; }
    /// @}

    /// Number of values in use.
    [[nodiscard]] std::size_t getUsed() const noexcept { return used_; }
    /// How many values fit in before the buffer grows.
    [[nodiscard]] std::size_t getCapacity() const noexcept { return capacity_; }
    /// Whether no value is in use.
    [[nodiscard]] bool isEmpty() const noexcept { return used_ == 0; }

    /// Sets the used length; values that come into use this way are zero. @throws std::bad_alloc
    void setUsed(std::size_t count) {
        if (count > used_) {
            reserve(count);
            std::memset(static_cast<void*>(data_ + used_), 0, (count - used_) * sizeof(T));
        }
        used_ = count;
    }

    /// Makes room for `count` values in all. @throws std::bad_alloc
    void reserve(std::size_t count) {
        if (count <= capacity_) return;
        if (count > maxCount) throw std::bad_alloc();
        const std::size_t grown = capacity_ + capacity_ / 2;
        const std::size_t capacity = count > grown ? count : grown;
        void* data = std::realloc(static_cast<void*>(data_), capacity * sizeof(T));
        if (!data) throw std::bad_alloc();
        data_ = static_cast<T*>(data);
        capacity_ = capacity;
    }

    /// Appends a copy of `count` values, which must not lie inside this buffer. @throws std::bad_alloc
    void append(const T* data, std::size_t count) {
        if (count == 0) return;
        if (count > maxCount || used_ > maxCount - count) throw std::bad_alloc();
        reserve(used_ + count);
        std::memcpy(static_cast<void*>(data_ + used_), data, count * sizeof(T));
        used_ += count;
    }

    /// Sets the used length to 0.
    void clear() noexcept { used_ = 0; }

    /// @{
    /// The value at `index`, which must be less than the used length.
    [[nodiscard]] T& operator[](std::size_t index) noexcept { return data_[index]; }
    [[nodiscard]] const T& operator[](std::size_t index) const noexcept { return data_[index]; }
    /// @}
    /// @{
    /// The values in use.
    [[nodiscard]] T* begin() noexcept { return data_; }
    [[nodiscard]] T* end() noexcept { return data_ + used_; }
    [[nodiscard]] const T* begin() const noexcept { return data_; }
    [[nodiscard]] const T* end() const noexcept { return data_ + used_; }
    /// @}

private:
    // No object can be larger than the half of the address space.
    static constexpr std::size_t maxCount = std::numeric_limits<std::size_t>::max() / sizeof(T) / 2;

    T* data_ = nullptr;
    std::size_t used_ = 0;
    std::size_t capacity_ = 0;
};

} // namespace kel
