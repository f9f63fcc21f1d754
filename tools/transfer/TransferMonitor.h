/// @file TransferMonitor.h
/// Watching a request while it runs.
#pragma once

#include "display/ProgressDisplay.h"

#include <vantra/NetRequest.h>

namespace vantra::tool {

/// Gives a request up when the user interrupts the program (see Interrupt.h), and tells a line of the
/// progress display how far it is: by what was sent as long as nothing has been received, then by what was
/// received.
///
/// Thread safety: works on whatever thread drives the request.
class CTransferMonitor {
public:
    /// @param line null for none; must outlive the request's transfers.
    explicit CTransferMonitor(CProgressLine* line = nullptr) noexcept : line_(line) {}
    CTransferMonitor(const CTransferMonitor&) = delete;
    CTransferMonitor& operator=(const CTransferMonitor&) = delete;

    /// Watches the request from now on until it is reset (CURLOPT_XFERINFOFUNCTION). The monitor must outlive
    /// that. An interrupted transfer fails with CURLE_ABORTED_BY_CALLBACK.
    void attachTo(CNetRequest& request);

private:
    static int handleProgress(void* monitor, curl_off_t downloadTotal, curl_off_t downloaded,
                              curl_off_t uploadTotal, curl_off_t uploaded) noexcept;

    CProgressLine* line_;
};

} // namespace vantra::tool
