#include "vantra/HeaderAssembler.h"

#include "http/HeaderLine.h"

#include <kel/Error.h>

#include <algorithm>
#include <array>

namespace vantra {

using kel::CError;
using kel::String;
using kel::TMap;

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
      waitingText_(other.waitingText_),
      waitingLines_(other.waitingLines_),
      headerComplete_(other.headerComplete_),
      serverInfoToUpdate_(other.serverInfoToUpdate_) {}
CHeaderAssembler::CHeaderAssembler(CHeaderAssembler&&) noexcept = default;
CHeaderAssembler& CHeaderAssembler::operator=(CHeaderAssembler other) {
    if (isMapInUse_) other.putMapInUse(); // whoever has looked at the map keeps seeing each line
    headerMap_ = std::move(other.headerMap_);
    lastHeaderName_ = std::move(other.lastHeaderName_);
    waitingText_ = std::move(other.waitingText_);
    waitingLines_ = std::move(other.waitingLines_);
    isMapInUse_ = other.isMapInUse_;
    headerComplete_ = other.headerComplete_;
    serverInfoToUpdate_ = std::move(other.serverInfoToUpdate_);
    return *this;
}
CHeaderAssembler::~CHeaderAssembler() = default;

void CHeaderAssembler::handleHeaderLine(const String& line) {
    if (headerComplete_) return;
    const std::wstring_view text = line.view();
    if (text == L"\r\n") {
        headerComplete_ = true;
        if (!serverInfoToUpdate_) return;
        makeMap();
        serverInfoToUpdate_->updateFromHeaders(headerMap_);
        return;
    }
    const std::wstring_view stripped = kel::trimLeftView(text);
    if (stripped.size() == text.size()) {
        const HeaderLineParts parts = splitHeaderLine(text);
        addLine(parts.name, parts.value);
    } else if (lastHeaderName_.isEmpty() && waitingLines_.empty()) {
        throw CError("Error parsing HTTP header: first line starts with whitespace.");
    } else {
        addLine({}, kel::trimRightView(stripped));
    }
}

void CHeaderAssembler::addLine(std::wstring_view name, std::wstring_view value) {
    if (isMapInUse_) {
        addToMap(name, value);
        return;
    }
    waitingLines_.push_back({name.size(), value.size()});
    waitingText_.append(name).append(value);
}

TMap<String, String>& CHeaderAssembler::getHeaderMap() {
    putMapInUse();
    return headerMap_;
}

const TMap<String, String>& CHeaderAssembler::getHeaderMap() const {
    putMapInUse();
    return headerMap_;
}

void CHeaderAssembler::putMapInUse() const {
    if (isMapInUse_) return; // nothing is written then: several threads may look
    makeMap();
    isMapInUse_ = true;
}

void CHeaderAssembler::makeMap() const {
    std::wstring_view text = waitingText_;
    for (const WaitingLine& line : waitingLines_) {
        const std::wstring_view name = text.substr(0, line.nameLength);
        addToMap(name, text.substr(line.nameLength, line.valueLength));
        text.remove_prefix(line.nameLength + line.valueLength);
    }
    waitingLines_.clear();
    waitingText_.clear();
}

/// @param name empty for a continuation of the last header.
void CHeaderAssembler::addToMap(std::wstring_view name, std::wstring_view value) const {
    if (!name.empty()) assignLower(lastHeaderName_, name);
    String& target = getLastHeaderValue();
    if (name.empty())
        target += L' ';
    else if (!target.isEmpty())
        target += L',';
    target.append(value);
}

String& CHeaderAssembler::getLastHeaderValue() const {
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
    waitingLines_.clear();
    waitingText_.clear();
    headerComplete_ = false;
}

void CHeaderAssembler::setServerInfoToUpdate(CServerInfo* info) { serverInfoToUpdate_ = info; }

} // namespace vantra
