#include "DownloadQueue.h"

#include "arguments/HiddenPassword.h"
#include "display/TerminalText.h"
#include "Interrupt.h"

namespace vantra::tool {

using kel::CBase;
using kel::CError;
using kel::CSignal;
using kel::P;
using kel::PC;
using kel::String;

/// Wakes the queue when a request is done.
class CDownloadQueue::CDoneListener : public CBase, public CNetRequest::IDoneListener {
public:
    explicit CDoneListener(CSignal* someDone) : someDone_(someDone) {}
    void onRequestDone(CNetRequest* /*request*/, const CError* /*error*/) override { someDone_->set(); }

private:
    P<CSignal> someDone_;
};

CDownloadQueue::CDownloadQueue(const std::vector<CURLArgument>& urls, const CRequestOptions& options,
                               CDownloadFolder& folder, const Reporting& reporting)
    : count_(urls.size()),
      reporting_(reporting),
      display_(reporting.showProgress),
      someDone_(new CSignal()),
      listener_(new CDoneListener(someDone_)),
      thread_(new CAsyncNetRequestThread(nullptr)) {
    for (const CURLArgument& url : urls)
        waiting_.push_back(std::make_unique<CDownload>(url, options, folder));
}

CDownloadQueue::~CDownloadQueue() {
    try {
        thread_->removeAllRequests();
        thread_->stop(true);
    } catch (const CError& error) {
        writeMessage(error.getMessage());
    }
}

std::size_t CDownloadQueue::run(std::size_t parallel) {
    constexpr int patience = 100; // milliseconds until it is looked whether the user interrupts
    thread_->start();
    while (!waiting_.empty() || !running_.empty()) {
        checkWorld();
        while (!waiting_.empty() && running_.size() < parallel) startOne();
        showSummary();
        someDone_->wait(patience);
        someDone_->reset(); // before the look at the requests, so that none is missed
        finishDone();
    }
    return failed_;
}

void CDownloadQueue::startOne() {
    running_.push_back(std::move(waiting_.front()));
    waiting_.pop_front();
    CDownload& download = *running_.back();
    download.prepareStart(display_);
    if (reporting_.log) CTransferLog::record(download.getRequest());
    download.getRequest().setDoneListener(listener_);
    thread_->addRequest(&download.getRequest());
}

void CDownloadQueue::finishDone() {
    for (auto download = running_.begin(); download != running_.end();) {
        if (!(*download)->getRequest().isAsyncDone()) {
            ++download;
            continue;
        }
        checkWorld(); // what an interruption ended has not failed
        finish(**download);
        download = running_.erase(download);
    }
}

void CDownloadQueue::finish(CDownload& download) {
    if (reporting_.log) reporting_.log->add(download.getRequest());
    try {
        download.finish();
        ++succeeded_;
    } catch (const CError& error) {
        ++failed_;
        writeMessage(error.getMessage());
        download.getResult().setText("error", hidePasswords(error.getMessage()));
    }
    report(download);
}

void CDownloadQueue::report(CDownload& download) const {
    IOutput* output = reporting_.resultOutput;
    if (output) output->write(download.getResult().toLine(output->isTerminal()));
}

void CDownloadQueue::checkWorld() const {
    if (isInterrupted()) throw CError("Interrupted.");
    const PC<CError> error = thread_->getRunError();
    if (error) error->throwClone();
}

void CDownloadQueue::showSummary() {
    if (!display_.isVisible()) return;
    String text = String::fromUInt(succeeded_) + " of " + String::fromUInt(count_) + " done";
    if (failed_ != 0) text += ", " + String::fromUInt(failed_) + " failed";
    display_.setSummary(text);
}

} // namespace vantra::tool
