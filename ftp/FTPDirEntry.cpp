#include "vantra/FTPDirEntry.h"

#include "ftp/FactLine.h"

namespace vantra {

using kel::CTime;
using kel::String;

CFTPDirEntry::CFTPDirEntry() = default;
CFTPDirEntry::CFTPDirEntry(const String& factLine) { readFactLine(factLine.view(), *this); }
CFTPDirEntry::CFTPDirEntry(const CFTPDirEntry&) = default;
CFTPDirEntry::CFTPDirEntry(CFTPDirEntry&&) noexcept = default;
CFTPDirEntry& CFTPDirEntry::operator=(const CFTPDirEntry&) = default;
CFTPDirEntry& CFTPDirEntry::operator=(CFTPDirEntry&&) noexcept = default;
CFTPDirEntry::~CFTPDirEntry() = default;

CTime CFTPDirEntry::parseTimeValue(const String& value) { return readTimeValue(value.view()); }

} // namespace vantra
