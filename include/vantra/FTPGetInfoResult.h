/// @file vantra/FTPGetInfoResult.h
/// What an FTP server tells of one file or directory.
///
///     client->prepareGetInfoRequest(*request, "/pub/report.txt");
///     request->perform();
///     const int64 size = CFTPGetInfoResult(request->getResponseInfo()).getInfo()->getSize();
#pragma once

#include "vantra/Export.h"
#include "vantra/FTPDirEntry.h"
#include "vantra/NetStringList.h"

#include <kel/Base.h>
#include <kel/P.h>

namespace vantra {

/// The entry in a reply to MLST (RFC 3659 §7). A copy shares the entry with its original.
///
/// Thread safety: any number of readers, or one thread that assigns.
class VANTRA_API CFTPGetInfoResult : public kel::CBase {
public:
    /// Finds the reply among the server's reply lines (CNetRequest::getResponseInfo), which may hold others
    /// before and after it: the line that follows one beginning with "250-". Of several the last one counts.
    /// @throws kel::CError "Invalid response to FTP MLST request (no info line found)." with all lines as the
    /// property "response"; what CFTPDirEntry's constructor throws for a line that is no fact line.
    explicit CFTPGetInfoResult(const CNetStringList& responseLines);
    CFTPGetInfoResult(const CFTPGetInfoResult&);
    CFTPGetInfoResult(CFTPGetInfoResult&&) noexcept;
    CFTPGetInfoResult& operator=(const CFTPGetInfoResult&);
    CFTPGetInfoResult& operator=(CFTPGetInfoResult&&) noexcept;
    ~CFTPGetInfoResult() override;

    /// Null only in a result that was moved from.
    [[nodiscard]] kel::PC<CFTPDirEntry> getInfo() const { return info_; }

private:
    kel::P<CFTPDirEntry> info_;
};

} // namespace vantra
