/// @file ftp/FTPVerb.h
/// What all FTP verbs have in common.
#pragma once

#include "ftp/FTPAddress.h"
#include "ftp/FTPOptions.h"
#include "options/LogOption.h"
#include "Verb.h"

#include <optional>
#include <string>
#include <vector>

namespace vantra::tool {

/// A verb of the group "vantra ftp" with the URL of a file or directory and the options of them all.
class CFTPVerb : public CVerb {
public:
    void run() final;

protected:
    CFTPVerb(CLI::App& group, const std::string& name, const std::string& description,
             const std::vector<std::string>& examples);

    /// To be called by the constructors of subclasses, after their own arguments were added.
    void addCommonOptions();
    /// Adds --create-dirs.
    void addCreateDirsOption();

    /// What can be said about the arguments before anything is read or sent. @throws CUsageError
    virtual void check() {}
    /// Does what the verb is for. @throws kel::CError, of a transfer as it comes from the request.
    virtual void runWith(CEscapingFTPClient& client, CNetRequest& request) = 0;

    [[nodiscard]] const CFTPAddress& getAddress() const { return *address_; }
    [[nodiscard]] bool createsDirs() const noexcept { return createsDirs_; }

private:
    std::optional<CFTPAddress> address_;
    CFTPOptions options_;
    CLogOption logOption_;
    bool createsDirs_ = false;
};

/// Adds the group "vantra ftp" with its verbs.
void addFTPVerbs(CLI::App& program, VerbList& verbs);

} // namespace vantra::tool
