/// @file ftp/FTPListVerbs.h
/// vantra ftp ls and stat: tell what is on the server.
#pragma once

#include "ftp/FTPVerb.h"

namespace vantra::tool {

/// vantra ftp ls URL: a line for each entry of a directory, with type, size, time (UTC) and name.
class CFTPListVerb : public CFTPVerb {
public:
    explicit CFTPListVerb(CLI::App& group);

protected:
    void runWith(CEscapingFTPClient& client, CNetRequest& request) override;
};

/// vantra ftp stat URL: the same line for the file or directory itself.
class CFTPStatVerb : public CFTPVerb {
public:
    explicit CFTPStatVerb(CLI::App& group);

protected:
    void runWith(CEscapingFTPClient& client, CNetRequest& request) override;
};

} // namespace vantra::tool
