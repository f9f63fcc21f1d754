#include "vantra/HeaderAssembler.h"

#include "http/HeaderLine.h"

#include <kel/Error.h>

#include <algorithm>
#include <array>

namespace vantra {

using kel::CError;
using kel::String;

namespace {

/// Sets `target` to the lower-cased text in the memory it has.
void assignLower(String& target, std::wstring_view text) {
    target.clear();
    std::array<wchar_t, 64> lower;
    while (!text.empty()) {
        const std::size_t count = std::min(text.size(), lower.size());
        for (std::size_t i = 0; i < count; ++i) lower[i] = kel::toLowerASCII(text[i]);
        target.append({lower.data(), count});
        text.remove_prefix(count);
    }
}

} // namespace

CHeaderAssembler::CHeaderAssembler() = default;
CHeaderAssembler::CHeaderAssembler(const CHeaderAssembler& other)
    : CBase(other),
      headerMap_(other.headerMap_),
      lastHeaderName_(other.lastHeaderName_),
      headerComplete_(other.headerComplete_),
      serverInfoToUpdate_(other.serverInfoToUpdate_) {}
CHeaderAssembler::CHeaderAssembler(CHeaderAssembler&&) noexcept = default;
CHeaderAssembler& CHeaderAssembler::operator=(const CHeaderAssembler& other) {
    return *this = CHeaderAssembler(other);
}
CHeaderAssembler& CHeaderAssembler::operator=(CHeaderAssembler&&) noexcept = default;
CHeaderAssembler::~CHeaderAssembler() = default;

void CHeaderAssembler::handleHeaderLine(const String& line) {
    if (headerComplete_) return;
    const std::wstring_view text = line.view();
    if (text == L"\r\n") {
        headerComplete_ = true;
        if (serverInfoToUpdate_) serverInfoToUpdate_->updateFromHeaders(headerMap_);
        return;
    }
    const std::wstring_view stripped = kel::trimLeftView(text);
    if (stripped.size() == text.size()) {
        addHeader(text);
    } else {
        continueLastHeader(stripped);
    }
}

void CHeaderAssembler::addHeader(std::wstring_view line) {
    const HeaderLineParts parts = splitHeaderLine(line);
    assignLower(lastHeaderName_, parts.name);
    String& value = getLastHeaderValue();
    if (!value.isEmpty()) value += L',';
    value.append(parts.value);
}

void CHeaderAssembler::continueLastHeader(std::wstring_view continuation) {
    if (lastHeaderName_.isEmpty())
        throw CError("Error parsing HTTP header: first line starts with whitespace.");
    String& value = getLastHeaderValue();
    value += L' ';
    value.append(kel::trimRightView(continuation));
}

String& CHeaderAssembler::getLastHeaderValue() {
    const auto position = headerMap_.lower_bound(lastHeaderName_);
    if (position != headerMap_.end() && position->first == lastHeaderName_) return position->second;
    if (spareEntries_.empty()) return headerMap_[lastHeaderName_];
    auto entry = std::move(spareEntries_.back());
    spareEntries_.pop_back();
    entry.key() = lastHeaderName_;
    entry.mapped().clear();
    return headerMap_.insert(position, std::move(entry))->second;
}

void CHeaderAssembler::reset() {
    constexpr std::size_t mostSpareEntries = 64;
    while (!headerMap_.empty() && spareEntries_.size() < mostSpareEntries)
        spareEntries_.push_back(headerMap_.extract(headerMap_.begin()));
    headerMap_.clear();
    lastHeaderName_.clear();
    headerComplete_ = false;
}

void CHeaderAssembler::setServerInfoToUpdate(CServerInfo* info) { serverInfoToUpdate_ = info; }

} // namespace vantra
