#include "GetCommand.h"

#include "ArgumentText.h"
#include "Errors.h"
#include "Interrupt.h"
#include "Output.h"
#include "ResponseSink.h"
#include "Transfer.h"

#include <CLI/CLI.hpp>

#include <kel/Path.h>

namespace vantra::tool {

using kel::P;
using kel::String;

namespace {

String parseOutputName(const std::string& argument) {
    String name = toArgumentText("--output", argument);
    if (name.isEmpty()) throw CUsageError("--output: must not be empty");
    if (name.endsWith(L"/") || name.endsWith(String(std::wstring(1, kel::nativePathSeparator()))))
        throw CUsageError("--output: '" + name + "' names a folder, not a file");
    return name;
}

} // namespace

CGetCommand::CGetCommand(CLI::App& program)
    : app_(*program.add_subcommand("get", "Fetch what a URL names, to standard output or a file")) {
    app_.group("Verbs");
    addURL();
    addOutputOptions();
    requestOptions_.addTo(app_);
}

void CGetCommand::addURL() {
    app_.add_option_function<std::string>(
            "URL", [this](const std::string& argument) { url_.emplace("URL", argument); },
            "Address to fetch: http, https, ftp or ftps.\nRedirects are followed")
        ->type_name("")
        ->required();
}

void CGetCommand::addOutputOptions() {
    app_.add_option_function<std::string>(
            "-o,--output", [this](const std::string& argument) { outputName_ = parseOutputName(argument); },
            "File to write, - for standard output (the default).\nIt appears when it is complete; after a "
            "failure an\nexisting file is what it was")
        ->type_name("FILE");
    app_.add_flag("--include", includeHeaders_,
                  "Write the status line and the headers ahead of the\nbody, to the same output; those of "
                  "redirects too.\nHTTP only");
}

bool CGetCommand::isChosen() const { return app_.parsed(); }

void CGetCommand::check() const {
    requestOptions_.checkFor(*url_);
    if (includeHeaders_ && !url_->isHTTP()) throw CUsageError("--include: needs an http or https URL");
}

void CGetCommand::run() {
    check();
    const P<CNetRequest> request = new CNetRequest();
    requestOptions_.applyTo(*request, *url_);
    const std::unique_ptr<IOutput> output = openOutput(outputName_);
    const CInterruptGuard interruptGuard;
    const P<CResponseSink> sink = new CResponseSink(*request, *output, includeHeaders_);
    performTransfer(*request, *url_, *sink);
    output->commit();
}

} // namespace vantra::tool
