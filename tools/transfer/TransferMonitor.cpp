#include "transfer/TransferMonitor.h"

#include "Interrupt.h"

namespace vantra::tool {

void CTransferMonitor::attachTo(CNetRequest& request) {
    request.setOptionInt(CURLOPT_NOPROGRESS, 0);
    request.setOptionPtr(CURLOPT_XFERINFODATA, this);
    curl_easy_setopt(request.getHandle(), CURLOPT_XFERINFOFUNCTION, &handleProgress);
}

int CTransferMonitor::handleProgress(void* monitor, curl_off_t downloadTotal, curl_off_t downloaded,
                                     curl_off_t uploadTotal, curl_off_t uploaded) noexcept {
    if (CProgressLine* line = static_cast<CTransferMonitor*>(monitor)->line_) {
        if (downloaded == 0 && uploaded > 0)
            line->update(uploaded, uploadTotal);
        else
            line->update(downloaded, downloadTotal);
    }
    return isInterrupted() ? 1 : 0;
}

} // namespace vantra::tool
