/// @file StoreCommand.h
/// What the verbs for object stores have in common.
#pragma once

#include "display/ProgressDisplay.h"
#include "options/ConnectionOptions.h"
#include "options/LogOption.h"
#include "s3/ObjectArgument.h"
#include "Verb.h"

#include <vantra/NetRequest.h>
#include <vantra/S3Client.h>

#include <kel/P.h>
#include <kel/String.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vantra::tool {

/// A verb of the group "s3", with the options that all of them have: --endpoint, --access-key,
/// --secret-key-file, --retries, and those of connections and logs.
class CStoreCommand : public CVerb {
protected:
    CStoreCommand(CLI::App& group, const std::string& name, const std::string& description,
                  const std::vector<std::string>& examples);

    /// Adds a positional argument for a bucket or an object.
    void addObjectArgument(const std::string& name, std::optional<CObjectArgument>& argument,
                           CObjectArgument::Key key, const std::string& description);

    /// To be called by the constructor of each verb, behind its own options.
    void addStoreOptions();

    /// Whether the secret key comes from there.
    [[nodiscard]] bool readsStandardInput() const { return secretKeyFile_ == "-"; }

    /// A client of the store. Reads the secret key. @throws kel::CError if that fails.
    [[nodiscard]] kel::P<CS3Client> makeClient() const;

    [[nodiscard]] std::unique_ptr<CTransferLog>
    openLog(CTransferLog::Kind kind = CTransferLog::Kind::OneTransfer) const {
        return log_.open(kind);
    }

    /// Applies the options of connections to a request that the client has prepared.
    void applyTo(CNetRequest& request) const { connection_.applyTo(request); }

    /// Runs an action on a request that the client has prepared as runStoreTransfer() does, with all options
    /// applied, and writes the log that the user wants. @throws as runStoreTransfer().
    void runRequest(CNetRequest& request, const kel::String& shownName,
                    const std::function<void()>& action) const;

private:
    void addKeyOptions();
    void addRetriesOption();

    std::optional<kel::String> endpoint_;
    kel::String accessKey_;
    kel::String secretKeyFile_;
    int retries_ = 3;
    CConnectionOptions connection_;
    CLogOption log_;
};

/// Runs an action on a prepared request of the client, such as performing it, which the user may interrupt
/// (see Interrupt.h).
/// @param shownName of the bucket or object, for the error's text.
/// @param line where progress is shown; null for nowhere.
/// @throws kel::CError "NAME: " and the text of CS3Error when the service explains its refusal; otherwise
/// with the text of describeTransferFailure(). CClosedPipeError from an output.
void runStoreTransfer(CNetRequest& request, const kel::String& shownName, CProgressLine* line,
                      const std::function<void()>& action);

} // namespace vantra::tool
