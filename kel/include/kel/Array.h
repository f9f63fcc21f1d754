/// @file kel/Array.h
/// A reference-counted vector.
#pragma once

#include "kel/Base.h"

#include <cstddef>
#include <initializer_list>
#include <utility>
#include <vector>

// NOLINTBEGIN(readability-identifier-naming): the names are those of the standard container.
namespace kel {

/// A vector with the names of std::vector, shareable through P<TArray<T>>.
///
/// Thread safety: as for std::vector.
template <class T>
class TArray : public CBase {
public:
    /// @{
    /// As in the standard container.
    using value_type = T;
    using iterator = typename std::vector<T>::iterator;
    using const_iterator = typename std::vector<T>::const_iterator;
    /// @}

    TArray() = default;
    /// Holds the given items, in this order.
    TArray(std::initializer_list<T> items) : items_(items) {}

    /// @{
    /// As in the standard container.
    [[nodiscard]] std::size_t size() const noexcept { return items_.size(); }
    [[nodiscard]] bool empty() const noexcept { return items_.empty(); }
    [[nodiscard]] T& operator[](std::size_t index) { return items_[index]; }
    [[nodiscard]] const T& operator[](std::size_t index) const { return items_[index]; }
    /// @}

    /// @throws std::out_of_range
    [[nodiscard]] const T& at(std::size_t index) const { return items_.at(index); }
    /// @{
    /// As in the standard container.
    [[nodiscard]] T& front() { return items_.front(); }
    [[nodiscard]] const T& front() const { return items_.front(); }
    [[nodiscard]] T& back() { return items_.back(); }
    [[nodiscard]] const T& back() const { return items_.back(); }
    iterator begin() noexcept { return items_.begin(); }
    iterator end() noexcept { return items_.end(); }
    const_iterator begin() const noexcept { return items_.begin(); }
    const_iterator end() const noexcept { return items_.end(); }
    /// @}

    /// @{
    /// As in the standard container.
    void push_back(T item) { items_.push_back(std::move(item)); }
    void pop_back() { items_.pop_back(); }
    iterator erase(const_iterator position) { return items_.erase(position); }
    void clear() noexcept { items_.clear(); }
    void reserve(std::size_t count) { items_.reserve(count); }
    void swap(TArray& other) noexcept { items_.swap(other.items_); }
    /// @}

    friend bool operator==(const TArray& left, const TArray& right) { return left.items_ == right.items_; }

private:
    std::vector<T> items_;
};

} // namespace kel
// NOLINTEND(readability-identifier-naming)
