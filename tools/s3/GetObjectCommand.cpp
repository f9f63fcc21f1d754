#include "s3/GetObjectCommand.h"

#include "FileArgument.h"
#include "Interrupt.h"
#include "s3/ObjectSink.h"
#include "Terminal.h"

#include <CLI/CLI.hpp>

namespace vantra::tool {

using kel::CError;
using kel::P;

CGetObjectCommand::CGetObjectCommand(CLI::App& group)
    : CStoreCommand(group, "get", "Download an object, to standard output or a file") {
    addObjectArgument("OBJECT", object_, CObjectArgument::Key::Needed, "The object, as s3://BUCKET/KEY");
    addOutputOptions();
    addStoreOptions();
}

void CGetObjectCommand::addOutputOptions() {
    getParser()
        .add_option_function<std::string>(
            "-o,--output",
            [this](const std::string& argument) { outputName_ = parseFileArgument("--output", argument); },
            "File to write, - for standard output (the default).\nIt appears when it is complete; after a "
            "failure an\nexisting file is what it was")
        ->type_name("FILE");
    getParser()
        .add_option_function<std::string>(
            "--range", [this](const std::string& argument) { range_.emplace("--range", argument); },
            "Fetch the bytes from A to B (A-B) or all from A on\n(A-) alone; the first byte is 0")
        ->type_name("A-B");
}

void CGetObjectCommand::run() {
    const P<CS3Client> client = makeClient();
    const P<CNetRequest> request = new CNetRequest();
    const kel::int64 start = range_ ? range_->getFirst() : 0;
    const kel::int64 length = range_ ? range_->getLength() : -1;
    client->prepareGetObjectRequest(*request, object_->getBucket(), object_->getKey(), start, length);
    applyTo(*request);
    const std::unique_ptr<CTransferLog> log = openLog();
    const std::unique_ptr<IOutput> output = openOutput(outputName_);
    const CInterruptGuard interruptGuard;
    CProgressDisplay display(isStandardErrorTerminal() && !output->isTerminal());
    CProgressLine line(display, object_->getText());
    runLogged(log.get(), *request, [&] {
        download(*client, *request, *output, line);
        output->commit();
    });
}

void CGetObjectCommand::download(CS3Client& client, CNetRequest& request, IOutput& output,
                                 CProgressLine& line) const {
    const P<CObjectSink> sink = new CObjectSink(request, output, range_);
    request.setReceiveDataSink(sink);
    request.setDoneListener(sink);
    runStoreTransfer(request, object_->getText(), &line, [&] {
        try {
            client.performRequest(request);
        } catch (CError& error) {
            CS3Client::tryThrowBetterError(error, sink->getErrorBody());
            throw;
        }
    });
}

} // namespace vantra::tool
