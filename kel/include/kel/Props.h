/// @file kel/Props.h
/// Named texts that travel with an error.
#pragma once

#include "kel/Export.h"
#include "kel/String.h"

#include <map>

namespace kel {

/// A map from name to text, ordered by name.
///
/// Thread safety: one thread at a time, or any number of readers.
class KEL_API CProps {
public:
    /// Stores `value` under `key`, replacing what was there.
    CProps& add(const String& key, const String& value);
    /// add() if `condition` holds, nothing otherwise.
    CProps& addCond(bool condition, const String& key, const String& value);
    /// The value under `key`, or `absent`.
    [[nodiscard]] String lookup(const String& key, const String& absent = String()) const;
    /// Whether there is a value under `key`, the empty one included.
    [[nodiscard]] bool contains(const String& key) const;
    /// Whether there is no value at all.
    [[nodiscard]] bool isEmpty() const noexcept { return values_.empty(); }
    /// All values by their keys.
    [[nodiscard]] const std::map<String, String>& getMap() const noexcept { return values_; }

    friend bool operator==(const CProps& left, const CProps& right) { return left.values_ == right.values_; }

private:
    std::map<String, String> values_;
};

} // namespace kel
