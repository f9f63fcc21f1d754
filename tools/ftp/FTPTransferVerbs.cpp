#include "ftp/FTPTransferVerbs.h"

#include "arguments/FileArgument.h"
#include "display/ProgressDisplay.h"
#include "Errors.h"
#include "files/Output.h"
#include "transfer/ResponseSink.h"
#include "transfer/Transfer.h"
#include "transfer/TransferMonitor.h"
#include "transfer/TransferResult.h"

#include <CLI/CLI.hpp>

#include <kel/FileStream.h>

namespace vantra::tool {

using kel::CFileInStream;
using kel::P;
using kel::String;

CFTPGetVerb::CFTPGetVerb(CLI::App& group)
    : CFTPVerb(group, "get", "Fetch a file, to standard output or a file",
               {"vantra ftp get -o notes.txt ftp://ftp.example.com/pub/notes.txt",
                "vantra ftp get --range 100- ftps://ftp.example.com/pub/notes.txt"}) {
    downloadOptions_.addTo(getParser());
    addCommonOptions();
}

void CFTPGetVerb::check() { setOutput(downloadOptions_.getOutputName()); }

void CFTPGetVerb::runWith(CEscapingFTPClient& client, CNetRequest& request) {
    client.prepareDownloadRequest(request, getAddress().getPath(), 0, -1);
    if (downloadOptions_.getRange()) downloadOptions_.getRange()->applyTo(request);
    const std::unique_ptr<IOutput> output = openOutput(downloadOptions_.getOutputName());
    const CTransferResult result(getResult(), request);
    CProgressDisplay display(showsProgress() && !output->isTerminal());
    CProgressLine line(display, getAddress().getURL().getText());
    const P<CResponseSink> sink = new CResponseSink(request, *output, false);
    performTransfer(request, getAddress().getURL(), *sink, &line);
    output->commit();
}

CFTPPutVerb::CFTPPutVerb(CLI::App& group)
    : CFTPVerb(
          group, "put", "Store a file on the server",
          {"vantra ftp put --user jane --password-file pw.txt ftp://ftp.example.com/notes.txt notes.txt"}) {
    getParser()
        .add_option_function<std::string>(
            "FILE", [this](const std::string& argument) { file_ = parseFileArgument("FILE", argument); },
            "File to send. One of that name on the server is\nreplaced")
        ->type_name("")
        ->required();
    addCreateDirsOption();
    addCommonOptions();
}

void CFTPPutVerb::check() {
    if (getAddress().getPath().endsWith(L"/")) throw CUsageError("URL: must name a file");
    getResult().setText("file", file_);
}

void CFTPPutVerb::runWith(CEscapingFTPClient& client, CNetRequest& request) {
    const P<CFileInStream> file = new CFileInStream(file_);
    client.prepareUploadRequest(request, getAddress().getPath(), nullptr, 0, createsDirs());
    request.setSendDataStream(file);
    request.setSendDataSize(file->getSize());
    const CTransferResult result(getResult(), request);
    CProgressDisplay display(showsProgress());
    CProgressLine line(display, file_);
    CTransferMonitor monitor(&line);
    monitor.attachTo(request);
    request.perform();
}

} // namespace vantra::tool
