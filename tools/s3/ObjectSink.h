/// @file ObjectSink.h
/// What becomes of a download that may be tried several times.
#pragma once

#include "arguments/RangeArgument.h"
#include "files/Output.h"
#include "transfer/ResponseSink.h"

#include <vantra/NetRequest.h>

#include <kel/Buffer.h>
#include <kel/P.h>

#include <optional>

namespace vantra::tool {

/// Passes the body of a successful response on, and keeps that of the latest unsuccessful one: a
/// CResponseSink for each try. To be set as both the request's sink and its done listener.
class CObjectSink : public kel::CBase, public CNetRequest::IDataSink, public CNetRequest::IDoneListener {
public:
    /// @param request whose responses they are; must outlive the sink's use.
    /// @param output must outlive the sink's use.
    /// @param range that a server must not ignore.
    CObjectSink(const CNetRequest& request, IOutput& output, const std::optional<CRangeArgument>& range);
    CObjectSink(const CObjectSink&) = delete;
    CObjectSink& operator=(const CObjectSink&) = delete;
    ~CObjectSink() override;

    /// @throws as CResponseSink::write.
    void write(const void* data, unsigned int length, int httpStatusCode,
               const kel::TMap<kel::String, kel::String>& responseHeaders) override;
    void onRequestDone(CNetRequest* request, const kel::CError* error) override;

    /// What the service said when it refused last; empty if nothing.
    [[nodiscard]] const kel::TBuffer<unsigned char>& getErrorBody() const noexcept { return errorBody_; }

private:
    const CNetRequest& request_;
    IOutput& output_;
    std::optional<CRangeArgument> range_;
    kel::P<CResponseSink> currentTry_; // null until something of a response has come
    kel::TBuffer<unsigned char> errorBody_;
};

} // namespace vantra::tool
