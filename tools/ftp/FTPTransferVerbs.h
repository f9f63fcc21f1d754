/// @file ftp/FTPTransferVerbs.h
/// vantra ftp get and put: carry files from and to the server.
#pragma once

#include "ftp/FTPVerb.h"
#include "RangeArgument.h"

#include <kel/String.h>

#include <optional>

namespace vantra::tool {

/// vantra ftp get URL: fetches a file to standard output or a file.
class CFTPGetVerb : public CFTPVerb {
public:
    explicit CFTPGetVerb(CLI::App& group);

protected:
    void runWith(CEscapingFTPClient& client, CNetRequest& request) override;

private:
    std::optional<kel::String> outputName_;
    std::optional<CRangeArgument> range_;
};

/// vantra ftp put URL FILE: stores a file.
class CFTPPutVerb : public CFTPVerb {
public:
    explicit CFTPPutVerb(CLI::App& group);

protected:
    void check() const override;
    void runWith(CEscapingFTPClient& client, CNetRequest& request) override;

private:
    kel::String file_;
};

} // namespace vantra::tool
