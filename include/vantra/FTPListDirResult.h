/// @file vantra/FTPListDirResult.h
/// The listing of a directory on an FTP server.
///
///     P<CFTPListDirResult> listing = client->listDir(*request, "/pub");
///     for (const P<CFTPDirEntry>& entry : listing->getEntries()) use(entry->getName());
#pragma once

#include "vantra/Export.h"
#include "vantra/FTPDirEntry.h"

#include <kel/Array.h>
#include <kel/Base.h>
#include <kel/Buffer.h>
#include <kel/P.h>

namespace vantra {

/// All entries of an MLSD listing (RFC 3659 §7), in the server's order. A copy shares the entries with its
/// original.
///
/// Thread safety: any number of readers, or one thread that assigns.
class VANTRA_API CFTPListDirResult : public kel::CBase {
public:
    /// Reads a listing as it was downloaded: UTF-8, a fact line on each line. Lines end with CR, LF or both;
    /// empty ones are passed over.
    /// @throws kel::CError "Invalid UTF-8 text."; for the first line that is no fact line what
    /// CFTPDirEntry's constructor throws. There is no result then.
    explicit CFTPListDirResult(const kel::TBuffer<unsigned char>& data);
    CFTPListDirResult(const CFTPListDirResult&);
    CFTPListDirResult(CFTPListDirResult&&) noexcept;
    CFTPListDirResult& operator=(const CFTPListDirResult&);
    CFTPListDirResult& operator=(CFTPListDirResult&&) noexcept;
    ~CFTPListDirResult() override;

    /// Some servers list the directory itself and the one above as well, with an unknown type.
    [[nodiscard]] const kel::TArray<kel::P<CFTPDirEntry>>& getEntries() const noexcept { return entries_; }

private:
    kel::TArray<kel::P<CFTPDirEntry>> entries_;
};

} // namespace vantra
