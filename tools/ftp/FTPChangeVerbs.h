/// @file ftp/FTPChangeVerbs.h
/// vantra ftp mkdir, rmdir, rm, mv and rmtree: change what is on the server.
#pragma once

#include "ftp/FTPVerb.h"

#include <optional>

namespace vantra::tool {

/// vantra ftp mkdir URL: creates a directory.
class CFTPMakeDirVerb : public CFTPVerb {
public:
    explicit CFTPMakeDirVerb(CLI::App& group);

protected:
    void runWith(CEscapingFTPClient& client, CNetRequest& request) override;
};

/// vantra ftp rmdir URL: removes an empty directory.
class CFTPRemoveDirVerb : public CFTPVerb {
public:
    explicit CFTPRemoveDirVerb(CLI::App& group);

protected:
    void runWith(CEscapingFTPClient& client, CNetRequest& request) override;
};

/// vantra ftp rm URL: deletes a file.
class CFTPRemoveVerb : public CFTPVerb {
public:
    explicit CFTPRemoveVerb(CLI::App& group);

protected:
    void runWith(CEscapingFTPClient& client, CNetRequest& request) override;
};

/// vantra ftp mv URL NEWURL: gives a file or directory another name, in the same or another directory.
class CFTPMoveVerb : public CFTPVerb {
public:
    explicit CFTPMoveVerb(CLI::App& group);

protected:
    void check() override;
    void runWith(CEscapingFTPClient& client, CNetRequest& request) override;

private:
    std::optional<CFTPAddress> target_;
};

/// vantra ftp rmtree URL: removes a directory with all its contents, once the user has agreed.
class CFTPRemoveTreeVerb : public CFTPVerb {
public:
    explicit CFTPRemoveTreeVerb(CLI::App& group);

protected:
    void check() override;
    void runWith(CEscapingFTPClient& client, CNetRequest& request) override;

private:
    void askUser() const;

    bool isAgreed_ = false;
};

} // namespace vantra::tool
