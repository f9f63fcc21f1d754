#include "transfer/Transfer.h"

#include "Errors.h"
#include "transfer/TransferFailure.h"
#include "transfer/TransferMonitor.h"
#include "transfer/TransferResult.h"

namespace vantra::tool {

using kel::CError;
using kel::P;

void performTransfer(CNetRequest& request, const CURLArgument& url, CResponseSink& sink,
                     CProgressLine* line) {
    CTransferMonitor monitor(line);
    monitor.attachTo(request);
    request.setReceiveDataSink(&sink);
    try {
        request.perform();
    } catch (const CClosedPipeError&) {
        throw;
    } catch (const CError& error) {
        throw CError(describeTransferFailure(error, request, url.getText(), sink.getServerMessage()));
    }
    sink.finish();
}

void runTransfer(CNetRequest& request, const CURLArgument& url, IOutput& output,
                 const TransferSettings& settings) {
    const CTransferResult result(settings.result, request);
    CProgressDisplay display(settings.showProgress && !output.isTerminal());
    CProgressLine line(display, url.getText());
    const P<CResponseSink> sink = new CResponseSink(request, output, settings.includeHeaders);
    if (settings.range) sink->expectRange(*settings.range);
    runLogged(settings.log, request, [&] {
        performTransfer(request, url, *sink, &line);
        output.commit();
    });
}

} // namespace vantra::tool
