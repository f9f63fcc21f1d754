/// @file ftp/FTPTransferVerbs.h
/// vantra ftp get and put: carry files from and to the server.
#pragma once

#include "ftp/FTPVerb.h"
#include "options/DownloadOptions.h"

#include <kel/String.h>

namespace vantra::tool {

/// vantra ftp get URL: fetches a file to standard output or a file.
class CFTPGetVerb : public CFTPVerb {
public:
    explicit CFTPGetVerb(CLI::App& group);

protected:
    void check() override;
    void runWith(CEscapingFTPClient& client, CNetRequest& request) override;

private:
    CDownloadOptions downloadOptions_;
};

/// vantra ftp put URL FILE: stores a file.
class CFTPPutVerb : public CFTPVerb {
public:
    explicit CFTPPutVerb(CLI::App& group);

protected:
    void check() override;
    void runWith(CEscapingFTPClient& client, CNetRequest& request) override;

private:
    kel::String file_;
};

} // namespace vantra::tool
