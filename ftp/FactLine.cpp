#include "ftp/FactLine.h"

#include "vantra/FTPDirEntry.h"

#include <kel/Error.h>
#include <kel/FileInfo.h>
#include <kel/Number.h>
#include <kel/String.h>

#include <algorithm>
#include <cmath>

namespace vantra {

using kel::CError;
using kel::CTime;
using kel::CTimeFields;
using kel::int64;
using kel::String;

namespace {

[[noreturn]] void throwInvalidTime(std::wstring_view value) {
    throw CError("Invalid FTP time value: '" + String(value) + "'");
}

/// Facts may come in any case of letters.
bool isWord(std::wstring_view text, std::wstring_view lowerCaseWord) noexcept {
    return std::ranges::equal(text, lowerCaseWord, {}, kel::toLowerASCII);
}

/// The text in lower case; itself where it is that already, otherwise `storage`.
std::wstring_view lowerCase(std::wstring_view text, String& storage) {
    const bool isLower = std::ranges::equal(text, text, {}, kel::toLowerASCII);
    if (isLower) return text;
    storage = String(text).toLower();
    return storage.view();
}

int64 readField(std::wstring_view value, std::size_t position, std::size_t length) {
    return kel::parseInt64(value.substr(position, length));
}

/// @return false when the fact has no "=".
bool readFact(std::wstring_view fact, CFTPDirEntry& entry) {
    const std::size_t equals = fact.find(L'=');
    if (equals == std::wstring_view::npos) return false;
    const std::wstring_view name = fact.substr(0, equals);
    // Letters are wrong in a number, and errors name it in lower case, as facts are compared.
    String storage;
    const std::wstring_view value = fact.substr(equals + 1);
    if (isWord(name, L"type")) {
        if (isWord(value, L"file")) entry.setType(kel::IFileInfoBase::File);
        if (isWord(value, L"dir")) entry.setType(kel::IFileInfoBase::Directory);
    } else if (isWord(name, L"size")) {
        entry.setSize(kel::parseInt64(lowerCase(value, storage)));
    } else if (isWord(name, L"modify")) {
        entry.setModifiedTime(readTimeValue(lowerCase(value, storage)));
    }
    return true;
}

/// The facts with the separators at their end taken off, as wxStringTokenizer passes over them in its default
/// mode: all but the first of nothing but separators.
std::wstring_view withoutTrailingSeparators(std::wstring_view facts) noexcept {
    return facts.substr(0, facts.find_last_not_of(L';') + 1);
}

/// @return false for a fact without "=".
bool readFacts(std::wstring_view facts, CFTPDirEntry& entry) {
    if (facts.empty()) return true;
    std::wstring_view rest = withoutTrailingSeparators(facts);
    while (true) {
        const std::size_t separator = rest.find(L';');
        if (!readFact(rest.substr(0, separator), entry)) return false;
        if (separator == std::wstring_view::npos) return true;
        rest.remove_prefix(separator + 1);
    }
}

} // namespace

void readFactLine(std::wstring_view line, CFTPDirEntry& entry) {
    const std::size_t blank = line.find(L' ');
    if (blank == std::wstring_view::npos || !readFacts(line.substr(0, blank), entry))
        throw CError("Invalid FTP dir entry: '" + String(line) + "'");
    entry.setName(String(line.substr(blank + 1)));
}

CTime readTimeValue(std::wstring_view value) {
    constexpr std::size_t wholeLength = 14;
    if (value.size() < wholeLength) throwInvalidTime(value);
    CTimeFields fields;
    fields.setDate(readField(value, 0, 4), static_cast<int>(readField(value, 4, 2)),
                   static_cast<int>(readField(value, 6, 2)));
    fields.setTime(static_cast<int>(readField(value, 8, 2)), static_cast<int>(readField(value, 10, 2)),
                   static_cast<int>(readField(value, 12, 2)));
    if (value.size() > wholeLength) {
        if (value[wholeLength] != L'.') throwInvalidTime(value);
        const double fraction = kel::parseSimpleDouble(String(value.substr(wholeLength)));
        // So many nines that the nearest double is 1 are still a fraction.
        fields.setSecondFraction(std::min(fraction, std::nextafter(1.0, 0.0)));
    }
    return fields.toTime();
}

} // namespace vantra
