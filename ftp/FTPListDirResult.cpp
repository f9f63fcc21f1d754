#include "vantra/FTPListDirResult.h"

#include "ftp/FactLine.h"

#include <kel/String.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace vantra {

using kel::P;
using kel::String;
using kel::TBuffer;

CFTPListDirResult::CFTPListDirResult(const TBuffer<unsigned char>& data) {
    const String text(reinterpret_cast<const char*>(data.getData()), data.getUsed());
    std::wstring_view rest = text.view();
    while (!rest.empty()) {
        const std::wstring_view line = rest.substr(0, rest.find_first_of(L"\r\n"));
        if (!line.empty()) {
            P<CFTPDirEntry> entry = new CFTPDirEntry();
            readFactLine(line, *entry);
            entries_.push_back(std::move(entry));
        }
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    }
}

CFTPListDirResult::CFTPListDirResult(const CFTPListDirResult&) = default;
CFTPListDirResult::CFTPListDirResult(CFTPListDirResult&&) noexcept = default;
CFTPListDirResult& CFTPListDirResult::operator=(const CFTPListDirResult&) = default;
CFTPListDirResult& CFTPListDirResult::operator=(CFTPListDirResult&&) noexcept = default;
CFTPListDirResult::~CFTPListDirResult() = default;

} // namespace vantra
