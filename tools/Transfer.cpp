#include "Transfer.h"

#include "Errors.h"
#include "TransferFailure.h"
#include "TransferMonitor.h"

namespace vantra::tool {

using kel::CError;

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

} // namespace vantra::tool
