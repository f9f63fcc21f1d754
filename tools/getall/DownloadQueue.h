/// @file DownloadQueue.h
/// Running many downloads, so many at a time.
#pragma once

#include "arguments/URLArgument.h"
#include "display/ProgressDisplay.h"
#include "Download.h"
#include "files/Output.h"
#include "options/RequestOptions.h"
#include "transfer/TransferLog.h"

#include <vantra/AsyncNetRequestThread.h>

#include <kel/P.h>
#include <kel/Signal.h>

#include <deque>
#include <list>
#include <vector>

namespace vantra::tool {

/// Fetches URLs on an asynchronous thread and tells of each failure at once.
///
/// Thread safety: one thread at a time.
class CDownloadQueue {
public:
    /// Where the queue tells of its downloads.
    struct Reporting {
        bool showProgress = false;
        CTransferLog* log = nullptr;     ///< null for none
        IOutput* resultOutput = nullptr; ///< for a JSON object of each download; null for none
    };

    /// All parameters, and what the reporting names, must outlive the queue.
    CDownloadQueue(const std::vector<CURLArgument>& urls, const CRequestOptions& options,
                   CDownloadFolder& folder, const Reporting& reporting);
    CDownloadQueue(const CDownloadQueue&) = delete;
    CDownloadQueue& operator=(const CDownloadQueue&) = delete;
    /// Removes the requests that still run, and their files.
    ~CDownloadQueue();

    /// Runs to the end, or until the user interrupts it (see Interrupt.h).
    /// @param parallel how many run at the same time.
    /// @return how many failed.
    /// @throws kel::CError "Interrupted."; the error that ended the thread.
    [[nodiscard]] std::size_t run(std::size_t parallel);

private:
    class CDoneListener;

    void startOne();
    void finishDone();
    void finish(CDownload& download);
    void report(CDownload& download) const;
    void checkWorld() const;
    void showSummary();

    const std::size_t count_;
    const Reporting reporting_;
    std::size_t succeeded_ = 0;
    std::size_t failed_ = 0;
    CProgressDisplay display_;
    std::deque<std::unique_ptr<CDownload>> waiting_;
    std::list<std::unique_ptr<CDownload>> running_;
    kel::P<kel::CSignal> someDone_;
    kel::P<CNetRequest::IDoneListener> listener_;
    kel::P<CAsyncNetRequestThread> thread_; // stopped before what it uses goes
};

} // namespace vantra::tool
