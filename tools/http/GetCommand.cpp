#include "http/GetCommand.h"

#include "Interrupt.h"
#include "transfer/Transfer.h"

#include <CLI/CLI.hpp>

namespace vantra::tool {

using kel::P;

CGetCommand::CGetCommand(CLI::App& program)
    : CVerb(program, "get", "Fetch what a URL names, to standard output or a file",
            {"vantra get https://www.example.com/",
             "vantra get -o notes.pdf --user jane --password-file pw.txt https://www.example.com/notes.pdf",
             "vantra get --json -o head.bin --range 0-1023 https://www.example.com/disk.img"}) {
    addURL();
    responseOptions_.addTo(getParser());
    addRangeOption();
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

void CGetCommand::addRangeOption() {
    getParser()
        .add_option_function<std::string>(
            "--range", [this](const std::string& argument) { range_.emplace("--range", argument); },
            "Fetch the bytes from A to B (A-B) or all from A on\n(A-) alone; the first byte is 0. It is an "
            "error "
            "if\nthe server does not do that")
        ->type_name("A-B");
}

void CGetCommand::run() {
    requestOptions_.checkFor(*url_);
    responseOptions_.checkFor(*url_);
    logOption_.checkFor(responseOptions_.getOutputName());
    getResult().setText("url", url_->getText());
    setOutput(responseOptions_.getOutputName());
    const CInterruptGuard interruptGuard; // ahead of the first file that would have to be removed
    const P<CNetRequest> request = new CNetRequest();
    requestOptions_.applyTo(*request, *url_);
    if (range_) range_->applyTo(*request);
    const std::unique_ptr<CTransferLog> log = logOption_.open();
    const std::unique_ptr<IOutput> output = responseOptions_.open();
    TransferSettings settings{getResult(), showsProgress()};
    settings.includeHeaders = responseOptions_.getIncludeHeaders();
    settings.range = range_;
    settings.log = log.get();
    runTransfer(*request, *url_, *output, settings);
}

} // namespace vantra::tool
