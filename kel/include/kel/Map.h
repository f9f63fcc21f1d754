/// @file kel/Map.h
/// A reference-counted ordered map.
#pragma once

#include "kel/Base.h"

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <map>
#include <utility>

// NOLINTBEGIN(readability-identifier-naming): the names are those of the standard container.
namespace kel {

/// A map with the names of std::map, ordered by `<` on the keys; for String keys that is ordinal order.
///
/// Thread safety: as for std::map.
template <class K, class V>
class TMap : public CBase {
public:
    /// @{
    /// As in the standard container, which `map_type` is.
    using map_type = std::map<K, V>;
    using value_type = typename map_type::value_type;
    using iterator = typename map_type::iterator;
    using const_iterator = typename map_type::const_iterator;
    using node_type = typename map_type::node_type;
    /// @}

    TMap() = default;
    /// Holds the given entries; of those with the same key the first.
    TMap(std::initializer_list<value_type> items) : items_(items) {}

    /// @{
    /// As in the standard container.
    [[nodiscard]] std::size_t size() const noexcept { return items_.size(); }
    [[nodiscard]] bool empty() const noexcept { return items_.empty(); }
    /// @}
    /// Whether there is an entry under `key`.
    [[nodiscard]] bool contains(const K& key) const { return items_.find(key) != items_.end(); }
    /// @{
    /// The entry under `key`, or end().
    iterator find(const K& key) { return items_.find(key); }
    const_iterator find(const K& key) const { return items_.find(key); }
    /// @}

    /// The first entry whose key is not less than `key`.
    iterator lower_bound(const K& key) { return items_.lower_bound(key); }
    /// @{
    /// Entries come in the order of their keys.
    iterator begin() noexcept { return items_.begin(); }
    iterator end() noexcept { return items_.end(); }
    const_iterator begin() const noexcept { return items_.begin(); }
    const_iterator end() const noexcept { return items_.end(); }
    /// @}

    /// The value under `key`, or `absent` when there is none.
    [[nodiscard]] V lookup(const K& key, const V& absent = V()) const {
        const auto found = items_.find(key);
        return found == items_.end() ? absent : found->second;
    }

    /// @{
    /// The value under `key`, inserted with its default value when there is none.
    V& operator[](const K& key) { return items_[key]; }
    V& operator[](K&& key) { return items_[std::move(key)]; }
    /// @}

    /// Inserts unless the key is there already; says which entry it is and whether it is new.
    template <class... Args>
    std::pair<iterator, bool> try_emplace(K key, Args&&... args) {
        return items_.try_emplace(std::move(key), std::forward<Args>(args)...);
    }
    /// @{
    /// Takes an entry out without giving its memory back; an empty node when there is none.
    [[nodiscard]] node_type extract(const K& key) { return items_.extract(key); }
    [[nodiscard]] node_type extract(const_iterator position) { return items_.extract(position); }
    /// @}

    /// Puts an entry in that was taken out of such a map, unless its key is there; says where the key is.
    iterator insert(node_type&& node) { return items_.insert(std::move(node)).position; }
    /// The same, quick if the entry belongs right before `hint`.
    iterator insert(const_iterator hint, node_type&& node) { return items_.insert(hint, std::move(node)); }
    /// @{
    /// As in the standard container.
    std::size_t erase(const K& key) { return items_.erase(key); }
    iterator erase(const_iterator position) { return items_.erase(position); }
    void clear() noexcept { items_.clear(); }
    void swap(TMap& other) noexcept { items_.swap(other.items_); }
    /// @}

    friend bool operator==(const TMap& left, const TMap& right) { return left.items_ == right.items_; }

private:
    map_type items_;
};

} // namespace kel
// NOLINTEND(readability-identifier-naming)
