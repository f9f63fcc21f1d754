/// @file ftp/FactLine.h
/// Fact lines and time values (RFC 3659) read in place.
#pragma once

#include <kel/Time.h>

#include <string_view>

namespace vantra {

class CFTPDirEntry;

/// What CFTPDirEntry's constructor does, without a text for each line.
/// @param entry new; it is incomplete when this throws.
void readFactLine(std::wstring_view line, CFTPDirEntry& entry);

/// CFTPDirEntry::parseTimeValue.
[[nodiscard]] kel::CTime readTimeValue(std::wstring_view value);

} // namespace vantra
