/// @file Transfer.h
/// Performing a request and telling the user of its failure.
#pragma once

#include "arguments/URLArgument.h"
#include "display/ProgressDisplay.h"
#include "JSONObject.h"
#include "transfer/ResponseSink.h"
#include "transfer/TransferLog.h"

#include <vantra/NetRequest.h>

#include <optional>

namespace vantra::tool {

/// Performs the request with the sink as its destination; the user may interrupt it (see Interrupt.h).
/// @param line where progress is shown; null for nowhere.
/// @throws kel::CError with the text of describeTransferFailure(); CClosedPipeError from the output.
void performTransfer(CNetRequest& request, const CURLArgument& url, CResponseSink& sink,
                     CProgressLine* line = nullptr);

/// What runTransfer() does beside the transfer itself.
struct TransferSettings {
    CJSONObject& result;       ///< see CTransferResult
    bool showProgress = false; ///< unless the output is on a terminal
    bool includeHeaders = false;
    /// To be sent by the server; the request asks for it already.
    std::optional<CRangeArgument> range = std::nullopt;
    CTransferLog* log = nullptr; ///< null for none
};

/// performTransfer() for the only transfer of a verb, from its start to the output's commit(): with its
/// progress on the terminal, its log and its result.
void runTransfer(CNetRequest& request, const CURLArgument& url, IOutput& output,
                 const TransferSettings& settings);

} // namespace vantra::tool
