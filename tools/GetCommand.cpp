#include "GetCommand.h"

#include "Errors.h"
#include "FileArgument.h"
#include "Interrupt.h"
#include "Output.h"
#include "ProgressDisplay.h"
#include "ResponseSink.h"
#include "Terminal.h"
#include "Transfer.h"

#include <CLI/CLI.hpp>

namespace vantra::tool {

using kel::P;
using kel::String;

CGetCommand::CGetCommand(CLI::App& program)
    : CVerb(program, "get", "Fetch what a URL names, to standard output or a file") {
    addURL();
    addOutputOptions();
    requestOptions_.addTo(getParser());
    logOption_.addTo(getParser());
}

void CGetCommand::addURL() {
    getParser()
        .add_option_function<std::string>(
            "URL", [this](const std::string& argument) { url_.emplace("URL", argument); },
            "Address to fetch: http, https, ftp or ftps.\nRedirects are followed")
        ->type_name("")
        ->required();
}

void CGetCommand::addOutputOptions() {
    getParser()
        .add_option_function<std::string>(
            "-o,--output",
            [this](const std::string& argument) { outputName_ = parseFileArgument("--output", argument); },
            "File to write, - for standard output (the default).\nIt appears when it is complete; after a "
            "failure an\nexisting file is what it was")
        ->type_name("FILE");
    getParser().add_flag(
        "--include", includeHeaders_,
        "Write the status line and the headers ahead of the\nbody, to the same output; those of "
        "redirects too.\nHTTP only");
    getParser()
        .add_option_function<std::string>(
            "--range", [this](const std::string& argument) { range_.emplace("--range", argument); },
            "Fetch the bytes from A to B (A-B) or all from A on\n(A-) alone; the first byte is 0. A server "
            "that "
            "does\nnot do that is an error")
        ->type_name("A-B");
}

void CGetCommand::check() const {
    requestOptions_.checkFor(*url_);
    if (includeHeaders_ && !url_->isHTTP()) throw CUsageError("--include: needs an http or https URL");
}

void CGetCommand::run() {
    check();
    const P<CNetRequest> request = new CNetRequest();
    requestOptions_.applyTo(*request, *url_);
    if (range_) range_->applyTo(*request);
    const std::unique_ptr<CTransferLog> log = logOption_.open();
    const std::unique_ptr<IOutput> output = openOutput(outputName_);
    const CInterruptGuard interruptGuard;
    CProgressDisplay display(isStandardErrorTerminal() && !output->isTerminal());
    CProgressLine line(display, url_->getText());
    const P<CResponseSink> sink = new CResponseSink(*request, *output, includeHeaders_);
    if (range_) sink->expectRange(*range_);
    runLogged(log.get(), *request, [&] {
        performTransfer(*request, *url_, *sink, &line);
        output->commit();
    });
}

} // namespace vantra::tool
