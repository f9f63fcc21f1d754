/// @file TransferResult.h
/// What a transfer came to, for programs to read.
#pragma once

#include "JSONObject.h"

#include <vantra/NetRequest.h>

namespace vantra::tool {

/// At its destruction adds to a verb's result what the request's latest transfer came to, whether or not it
/// succeeded: "status" (the HTTP status or the last reply code, once there was one), "sent" and "received"
/// (bytes of bodies and files), "seconds"; for HTTP also "finalUrl" (behind redirects, without a password)
/// and "headers" (the last response's, by their names in lower case).
class CTransferResult {
public:
    /// @param result, request must outlive the object.
    CTransferResult(CJSONObject& result, const CNetRequest& request) : result_(result), request_(request) {}
    CTransferResult(const CTransferResult&) = delete;
    CTransferResult& operator=(const CTransferResult&) = delete;
    ~CTransferResult();

private:
    void addHTTP();
    void addAmounts();

    CJSONObject& result_;
    const CNetRequest& request_;
};

/// The response's headers by their names in lower case.
void setHeaders(CJSONObject& result, const CNetRequest& request);

} // namespace vantra::tool
