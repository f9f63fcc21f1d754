#include "s3/GetObjectCommand.h"

#include "Interrupt.h"
#include "s3/ObjectSink.h"
#include "transfer/TransferResult.h"

#include <CLI/CLI.hpp>

namespace vantra::tool {

using kel::CError;
using kel::P;

CGetObjectCommand::CGetObjectCommand(CLI::App& group)
    : CStoreCommand(group, "get", "Download an object, to standard output or a file",
                    {"vantra s3 get --access-key AKIAEXAMPLE --secret-key-file key.txt -o notes.txt "
                     "s3://my-bucket/notes.txt"}) {
    addObjectArgument("OBJECT", object_, CObjectArgument::Key::Needed, "The object, as s3://BUCKET/KEY");
    downloadOptions_.addTo(getParser());
    addStoreOptions();
}

void CGetObjectCommand::run() {
    getResult().setText("object", object_->getText());
    setOutput(downloadOptions_.getOutputName());
    const P<CS3Client> client = makeClient();
    const P<CNetRequest> request = new CNetRequest();
    const std::optional<CRangeArgument>& range = downloadOptions_.getRange();
    const kel::int64 start = range ? range->getFirst() : 0;
    const kel::int64 length = range ? range->getLength() : -1;
    client->prepareGetObjectRequest(*request, object_->getBucket(), object_->getKey(), start, length);
    applyTo(*request);
    const std::unique_ptr<CTransferLog> log = openLog();
    const std::unique_ptr<IOutput> output = openOutput(downloadOptions_.getOutputName());
    const CInterruptGuard interruptGuard;
    const CTransferResult result(getResult(), *request);
    CProgressDisplay display(showsProgress() && !output->isTerminal());
    CProgressLine line(display, object_->getText());
    runLogged(log.get(), *request, [&] {
        download(*client, *request, *output, line);
        output->commit();
    });
}

void CGetObjectCommand::download(CS3Client& client, CNetRequest& request, IOutput& output,
                                 CProgressLine& line) const {
    const P<CObjectSink> sink = new CObjectSink(request, output, downloadOptions_.getRange());
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
