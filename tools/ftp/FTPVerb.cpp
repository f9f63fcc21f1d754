#include "ftp/FTPVerb.h"

#include "Errors.h"
#include "ftp/FTPChangeVerbs.h"
#include "ftp/FTPListVerbs.h"
#include "ftp/FTPTransferVerbs.h"
#include "Interrupt.h"
#include "transfer/TransferFailure.h"

#include <CLI/CLI.hpp>

namespace vantra::tool {

using kel::CError;
using kel::P;
using kel::String;

CFTPVerb::CFTPVerb(CLI::App& group, const std::string& name, const std::string& description,
                   const std::vector<std::string>& examples)
    : CVerb(group, name, description, examples) {
    getParser()
        .add_option_function<std::string>(
            "URL", [this](const std::string& argument) { address_.emplace("URL", argument); },
            "Address: ftp or ftps, the path percent-encoded and\nbelow the directory of the login, or with "
            "two "
            "slashes\nin front (ftp://host//srv) below the server's root")
        ->type_name("")
        ->required();
}

void CFTPVerb::addCommonOptions() {
    options_.addTo(getParser());
    logOption_.addTo(getParser());
}

void CFTPVerb::addCreateDirsOption() {
    getParser().add_flag("--create-dirs", createsDirs_, "Create the directories that are missing on the way");
}

void CFTPVerb::run() {
    getResult().setText("url", getAddress().getURL().getText());
    check();
    CTransferMonitor monitor;
    const P<CEscapingFTPClient> client = options_.makeClient(getAddress(), monitor);
    const P<CNetRequest> request = new CNetRequest();
    const std::unique_ptr<CTransferLog> log = logOption_.open(CTransferLog::Kind::ManyTransfers);
    client->setLog(log.get());
    const CInterruptGuard interruptGuard;
    runLogged(log.get(), *request, [&] {
        try {
            runWith(*client, *request);
        } catch (const CClosedPipeError&) {
            throw;
        } catch (const CError& error) {
            throw CError(describeTransferFailure(error, *request, getAddress().getURL().getText(), String()));
        }
    });
}

void addFTPVerbs(CLI::App& program, VerbList& verbs) {
    CLI::App& group = addVerbGroup(program, "ftp", "Work with the files and directories of an FTP server");
    verbs.push_back(std::make_unique<CFTPListVerb>(group));
    verbs.push_back(std::make_unique<CFTPStatVerb>(group));
    verbs.push_back(std::make_unique<CFTPGetVerb>(group));
    verbs.push_back(std::make_unique<CFTPPutVerb>(group));
    verbs.push_back(std::make_unique<CFTPMakeDirVerb>(group));
    verbs.push_back(std::make_unique<CFTPRemoveDirVerb>(group));
    verbs.push_back(std::make_unique<CFTPRemoveVerb>(group));
    verbs.push_back(std::make_unique<CFTPMoveVerb>(group));
    verbs.push_back(std::make_unique<CFTPRemoveTreeVerb>(group));
}

} // namespace vantra::tool
