#include "Download.h"

#include "FileName.h"
#include "transfer/TransferFailure.h"
#include "transfer/TransferResult.h"

namespace vantra::tool {

using kel::CError;
using kel::String;

CTemporaryFile& CDownload::CFileOutput::getFile() {
    if (!file_) file_ = download_.folder_.createFile(download_.reservedName_);
    return *file_;
}

CDownload::CDownload(const CURLArgument& url, const CRequestOptions& options, CDownloadFolder& folder)
    : url_(url),
      folder_(folder),
      name_(getFileNameFromURL(url)),
      reservedName_(folder.reserveName(name_)),
      output_(*this),
      request_(new CNetRequest()),
      sink_(new CResponseSink(*request_, output_, false)) {
    options.applyTo(*request_, url_);
}

CDownload::~CDownload() { detach(); }

void CDownload::prepareStart(CProgressDisplay& display) {
    line_.emplace(display, reservedName_);
    monitor_.emplace(&*line_);
    monitor_->attachTo(*request_);
    request_->setReceiveDataSink(sink_);
}

void CDownload::finish() {
    detach();
    result_.setText("url", url_.getText());
    const CTransferResult transferResult(result_, *request_);
    try {
        request_->checkAsyncResult();
    } catch (const CError& error) {
        throw CError(describeTransferFailure(error, *request_, url_.getText(), sink_->getServerMessage()));
    }
    settleName();
    result_.setText("output", folder_.keepFile(output_.getFile(), name_, reservedName_));
}

/// The request may live on for a moment, and say good-bye to its server, where the thread keeps a reference.
void CDownload::detach() noexcept {
    curl_easy_setopt(request_->getHandle(), CURLOPT_NOPROGRESS, 1L);
    request_->setReceiveDataSink(nullptr);
    line_.reset();
}

void CDownload::settleName() {
    const String named = getFileNameFromHeaders(request_->getResponseHeaderMap());
    if (named.isEmpty() || named == name_) return;
    folder_.releaseName(reservedName_);
    name_ = named;
    reservedName_ = folder_.reserveName(name_);
}

} // namespace vantra::tool
