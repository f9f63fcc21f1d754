#include "vantra/FTPGetInfoResult.h"

#include "ftp/FactLine.h"

#include <kel/Error.h>
#include <kel/Props.h>
#include <kel/String.h>

#include <string_view>

namespace vantra {

using kel::CError;
using kel::CProps;
using kel::P;
using kel::String;

namespace {

P<CFTPDirEntry> readInfoLine(const String& replyLine) {
    std::wstring_view line = kel::trimLeftView(replyLine.view());
    if (line.ends_with(L"\r\n")) line.remove_suffix(2);
    P<CFTPDirEntry> entry = new CFTPDirEntry();
    readFactLine(line, *entry);
    return entry;
}

[[noreturn]] void throwNoInfoLine(const CNetStringList& responseLines) {
    String response;
    const P<CNetStringList::CIterator> lines = responseLines.createIterator();
    while (lines->next()) response += lines->getEntry();
    CProps params;
    params.add("response", response);
    throw CError("Invalid response to FTP MLST request (no info line found).", String(), -1, params);
}

} // namespace

CFTPGetInfoResult::CFTPGetInfoResult(const CNetStringList& responseLines) {
    bool isAfterStartLine = false;
    const P<CNetStringList::CIterator> lines = responseLines.createIterator();
    while (lines->next()) {
        if (isAfterStartLine) info_ = readInfoLine(lines->getEntry());
        isAfterStartLine = !isAfterStartLine && lines->getEntry().startsWith(L"250-");
    }
    if (!info_) throwNoInfoLine(responseLines);
}

CFTPGetInfoResult::CFTPGetInfoResult(const CFTPGetInfoResult&) = default;
CFTPGetInfoResult::CFTPGetInfoResult(CFTPGetInfoResult&&) noexcept = default;
CFTPGetInfoResult& CFTPGetInfoResult::operator=(const CFTPGetInfoResult&) = default;
CFTPGetInfoResult& CFTPGetInfoResult::operator=(CFTPGetInfoResult&&) noexcept = default;
CFTPGetInfoResult::~CFTPGetInfoResult() = default;

} // namespace vantra
