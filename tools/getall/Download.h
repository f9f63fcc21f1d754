/// @file Download.h
/// One of many downloads.
#pragma once

#include "arguments/URLArgument.h"
#include "display/ProgressDisplay.h"
#include "DownloadFolder.h"
#include "JSONObject.h"
#include "options/RequestOptions.h"
#include "transfer/ResponseSink.h"
#include "transfer/TransferMonitor.h"

#include <vantra/NetRequest.h>

#include <kel/P.h>
#include <kel/String.h>

#include <memory>
#include <optional>

namespace vantra::tool {

/// A request whose body goes to a file of the folder. The request runs on an asynchronous thread; while it
/// does, the object must stay as it is.
class CDownload {
public:
    /// @param url, folder must outlive the download.
    /// @throws kel::CError if a file that an option names cannot be read.
    CDownload(const CURLArgument& url, const CRequestOptions& options, CDownloadFolder& folder);
    CDownload(const CDownload&) = delete;
    CDownload& operator=(const CDownload&) = delete;
    /// Removes the file unless it was finished.
    ~CDownload();

    /// Prepares the request to be handed to a thread. @param display must outlive the download.
    void prepareStart(CProgressDisplay& display);

    [[nodiscard]] CNetRequest& getRequest() const noexcept { return *request_; }

    /// What the download came to, once it is finished, for programs to read.
    [[nodiscard]] CJSONObject& getResult() noexcept { return result_; }

    /// To be called once after the request is done: gives the file its name.
    /// @throws kel::CError with the text of describeTransferFailure().
    void finish();

private:
    /// The file, which is created with the first byte.
    class CFileOutput : public IOutput {
    public:
        explicit CFileOutput(const CDownload& download) : download_(download) {}
        void write(std::string_view bytes) override { getFile().write(bytes); }
        void commit() override {}
        [[nodiscard]] CTemporaryFile& getFile();

    private:
        const CDownload& download_;
        std::unique_ptr<CTemporaryFile> file_;
    };

    void detach() noexcept;
    void settleName();

    const CURLArgument& url_;
    CDownloadFolder& folder_;
    kel::String name_;         // that the file should have
    kel::String reservedName_; // that it will have
    CFileOutput output_;
    std::optional<CProgressLine> line_;
    std::optional<CTransferMonitor> monitor_;
    kel::P<CNetRequest> request_;
    kel::P<CResponseSink> sink_;
    CJSONObject result_;
};

} // namespace vantra::tool
