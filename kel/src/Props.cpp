#include "kel/Props.h"

namespace kel {

CProps& CProps::add(const String& key, const String& value) {
    values_.insert_or_assign(key, value);
    return *this;
}

CProps& CProps::addCond(bool condition, const String& key, const String& value) {
    if (condition) add(key, value);
    return *this;
}

String CProps::lookup(const String& key, const String& absent) const {
    const auto found = values_.find(key);
    return found == values_.end() ? absent : found->second;
}

bool CProps::contains(const String& key) const { return values_.find(key) != values_.end(); }

} // namespace kel
