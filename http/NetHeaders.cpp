#include <curl/curl.h>

#include "vantra/NetHeaders.h"

#include "http/HeaderLine.h"
#include "vantra/GlobalInit.h"

#include <kel/Error.h>

namespace vantra {

using kel::CInvalidArgError;
using kel::P;
using kel::String;
using kel::TMap;

namespace {

constexpr const char* splitEntryName = "CNetHeaders::splitEntry";

} // namespace

HeaderLineParts splitHeaderLine(std::wstring_view line) {
    const std::size_t colon = line.find(L':');
    if (colon == std::wstring_view::npos) throw CInvalidArgError(splitEntryName, "entry contains no ':'");
    const std::wstring_view name = kel::trimView(line.substr(0, colon));
    if (name.empty()) throw CInvalidArgError(splitEntryName, "name is empty");
    return {name, kel::trimView(line.substr(colon + 1))};
}

CNetHeaders::CNetHeaders() { CGlobalInit::get(); }

CNetHeaders::CNetHeaders(const CNetHeaders& other) : CBase(other) {
    for (const curl_slist* line = other.getSList(); line; line = line->next) list_.addUTF8(line->data);
}

CNetHeaders::~CNetHeaders() = default;

void CNetHeaders::add(const String& name, const String& value) {
    list_.add(name.trim() + ": " + value.trim());
}

P<CNetHeaders::CIterator> CNetHeaders::createIterator() const { return new CIterator(getSList()); }

void CNetHeaders::fillMap(TMap<String, String>& map) const {
    CIterator fields(getSList());
    while (fields.next()) {
        const auto [entry, isNew] = map.try_emplace(fields.getName().toLower(), fields.getValue());
        if (!isNew) entry->second += "," + fields.getValue();
    }
}

void CNetHeaders::splitEntry(const String& entry, String& name, String& value) {
    const HeaderLineParts parts = splitHeaderLine(entry.view());
    // Made before either output changes: both may be the entry itself.
    String splitName(parts.name);
    String splitValue(parts.value);
    name = std::move(splitName);
    value = std::move(splitValue);
}

CNetHeaders::CIterator::~CIterator() = default;

bool CNetHeaders::CIterator::next() {
    if (lines_.next()) {
        splitEntry(lines_.getEntry(), name_, value_);
        return true;
    }
    name_.clear();
    value_.clear();
    return false;
}

} // namespace vantra
