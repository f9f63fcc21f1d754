#include "mail/MailTransfer.h"

#include "Interrupt.h"
#include "transfer/TransferFailure.h"
#include "transfer/TransferMonitor.h"

namespace vantra::tool {

using kel::CError;

void performMailTransfer(CNetRequest& request, const CLogOption& logOption, CProgressLine* line) {
    const std::unique_ptr<CTransferLog> log = logOption.open();
    const CInterruptGuard interruptGuard;
    CTransferMonitor monitor(line);
    monitor.attachTo(request);
    runLogged(log.get(), request, [&] {
        try {
            request.perform();
        } catch (const CError& error) {
            throw CError(describeTransferFailure(error, request, request.getURL(), ""));
        }
    });
}

} // namespace vantra::tool
