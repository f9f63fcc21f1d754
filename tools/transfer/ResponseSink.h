/// @file ResponseSink.h
/// What becomes of a response.
#pragma once

#include "arguments/RangeArgument.h"
#include "files/Output.h"

#include <vantra/NetRequest.h>

#include <kel/Buffer.h>

#include <optional>

namespace vantra::tool {

/// Passes the body of a successful response on, and keeps the start of the body of any other for the error's
/// message. Nothing of an unsuccessful response reaches the output.
class CResponseSink : public kel::CBase, public CNetRequest::IDataSink {
public:
    /// @param request whose response it is; must outlive the sink's use.
    /// @param output must outlive the sink's use.
    /// @param includeHeaders whether header lines go to the output ahead of the body: all that were received
    /// so far, those of redirects included.
    CResponseSink(const CNetRequest& request, IOutput& output, bool includeHeaders);
    CResponseSink(const CResponseSink&) = delete;
    CResponseSink& operator=(const CResponseSink&) = delete;
    ~CResponseSink() override;

    /// Refuses the response of a server that does not heed the range asked for.
    void expectRange(const CRangeArgument& range) { range_ = range; }

    /// @throws what the output throws; kel::CError "URL: the server does not send the range asked for.";
    /// kel::CError with the code domain "http" and the response's status once enough of an unsuccessful
    /// response is known, so that no server can keep the transfer going with it.
    void write(const void* data, unsigned int length, int httpStatusCode,
               const kel::TMap<kel::String, kel::String>& responseHeaders) override;

    /// To be called after a successful transfer: passes the headers on if there was no body. @throws as
    /// write().
    void finish();

    /// The start of the body of an unsuccessful response; empty if there was none.
    [[nodiscard]] const kel::TBuffer<unsigned char>& getErrorBody() const noexcept { return errorBody_; }

    /// What the server had to say about its refusal; empty if nothing.
    [[nodiscard]] kel::String getServerMessage() const;

private:
    void checkRangeOnce(int status);
    void writeHeadersOnce();
    void keepErrorBody(const unsigned char* data, std::size_t length, int status);

    const CNetRequest& request_;
    IOutput& output_;
    bool headersPending_;
    std::optional<CRangeArgument> range_; // until it was checked
    kel::TBuffer<unsigned char> errorBody_;
};

} // namespace vantra::tool
