/// @file kel/List.h
/// A reference-counted linked list.
#pragma once

#include "kel/Base.h"

#include <cstddef>
#include <initializer_list>
#include <list>
#include <utility>

// NOLINTBEGIN(readability-identifier-naming): the names are those of the standard container.
namespace kel {

/// A list with the names of std::list: items keep their address for as long as they are in it.
///
/// Thread safety: as for std::list.
template <class T>
class TList : public CBase {
public:
    /// @{
    /// As in the standard container.
    using value_type = T;
    using iterator = typename std::list<T>::iterator;
    using const_iterator = typename std::list<T>::const_iterator;
    /// @}

    TList() = default;
    /// Holds the given items, in this order.
    TList(std::initializer_list<T> items) : items_(items) {}

    /// @{
    /// As in the standard container.
    [[nodiscard]] std::size_t size() const noexcept { return items_.size(); }
    [[nodiscard]] bool empty() const noexcept { return items_.empty(); }
    [[nodiscard]] T& front() { return items_.front(); }
    [[nodiscard]] const T& front() const { return items_.front(); }
    [[nodiscard]] T& back() { return items_.back(); }
    [[nodiscard]] const T& back() const { return items_.back(); }
    iterator begin() noexcept { return items_.begin(); }
    iterator end() noexcept { return items_.end(); }
    const_iterator begin() const noexcept { return items_.begin(); }
    const_iterator end() const noexcept { return items_.end(); }

    void push_back(T item) { items_.push_back(std::move(item)); }
    void push_front(T item) { items_.push_front(std::move(item)); }
    void pop_back() { items_.pop_back(); }
    void pop_front() { items_.pop_front(); }
    iterator erase(const_iterator position) { return items_.erase(position); }
    void clear() noexcept { items_.clear(); }
    void swap(TList& other) noexcept { items_.swap(other.items_); }
    /// @}

private:
    std::list<T> items_;
};

} // namespace kel
// NOLINTEND(readability-identifier-naming)
