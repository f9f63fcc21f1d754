#include "s3/StoreCommand.h"

#include "arguments/ArgumentText.h"
#include "arguments/FileArgument.h"
#include "arguments/RefusedSecret.h"
#include "Errors.h"
#include "options/PasswordFile.h"
#include "transfer/TransferFailure.h"
#include "transfer/TransferMonitor.h"

#include <vantra/S3Error.h>

#include <CLI/CLI.hpp>

namespace vantra::tool {

using kel::CError;
using kel::P;
using kel::String;

CStoreCommand::CStoreCommand(CLI::App& group, const std::string& name, const std::string& description,
                             const std::vector<std::string>& examples)
    : CVerb(group, name, description, examples) {}

void CStoreCommand::addObjectArgument(const std::string& name, std::optional<CObjectArgument>& argument,
                                      CObjectArgument::Key key, const std::string& description) {
    getParser()
        .add_option_function<std::string>(
            name, [name, &argument, key](const std::string& text) { argument.emplace(name, text, key); },
            description)
        ->type_name("")
        ->required();
}

void CStoreCommand::addStoreOptions() {
    getParser()
        .add_option_function<std::string>(
            "--endpoint",
            [this](const std::string& argument) {
                endpoint_ = toArgumentText("--endpoint", argument);
                try {
                    CS3Client("", "", true).setEndpoint(*endpoint_);
                } catch (const CError&) {
                    throw CUsageError("--endpoint: needs an http or https URL without login and query");
                }
            },
            "Address of the store, such as\nhttps://store.example:8080. Default: Amazon S3")
        ->type_name("URL");
    addKeyOptions();
    addRetriesOption();
    connection_.addTo(getParser());
    log_.addTo(getParser());
}

void CStoreCommand::addKeyOptions() {
    getParser()
        .add_option_function<std::string>(
            "--access-key",
            [this](const std::string& argument) {
                accessKey_ = toArgumentText("--access-key", argument);
                refuseControlCharacters("--access-key", accessKey_);
            },
            "Access key to sign with")
        ->type_name("KEY")
        ->required();
    getParser()
        .add_option_function<std::string>(
            "--secret-key-file",
            [this](const std::string& argument) {
                secretKeyFile_ = parseFileArgument("--secret-key-file", argument);
            },
            "File whose only line is the secret key; - for standard input")
        ->type_name("FILE")
        ->required();
    addRefusedSecret(getParser(), "--secret-key", "--secret-key-file");
}

void CStoreCommand::addRetriesOption() {
    constexpr int most = 1000;
    getParser()
        .add_option("--retries", retries_,
                    "How often to try again after a failure that may\npass, with 0.1 seconds in between. "
                    "Default: 3")
        ->type_name("COUNT")
        ->check(CLI::Range(0, most));
}

P<CS3Client> CStoreCommand::makeClient() const {
    P<CS3Client> client = new CS3Client(accessKey_, readPasswordFile(secretKeyFile_), true);
    if (endpoint_) client->setEndpoint(*endpoint_);
    client->setMaxRetries(retries_);
    return client;
}

void CStoreCommand::runRequest(CNetRequest& request, const String& shownName,
                               const std::function<void()>& action) const {
    applyTo(request);
    const std::unique_ptr<CTransferLog> log = openLog();
    runLogged(log.get(), request, [&] { runStoreTransfer(request, shownName, nullptr, action); });
}

void runStoreTransfer(CNetRequest& request, const String& shownName, CProgressLine* line,
                      const std::function<void()>& action) {
    request.setOptionString(CURLOPT_PROTOCOLS_STR, "http,https");
    CTransferMonitor monitor(line);
    monitor.attachTo(request);
    try {
        action();
    } catch (const CClosedPipeError&) {
        throw;
    } catch (const CS3Error& error) {
        throw CError(shownName + ": " + error.getMessage());
    } catch (const CCURLError& error) {
        throw CError(describeTransferFailure(error, request, shownName, error.getServerMessage()));
    }
}

} // namespace vantra::tool
