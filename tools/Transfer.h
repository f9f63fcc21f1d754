/// @file Transfer.h
/// Performing a request and telling the user of its failure.
#pragma once

#include "ProgressDisplay.h"
#include "ResponseSink.h"
#include "URLArgument.h"

#include <vantra/NetRequest.h>

namespace vantra::tool {

/// Performs the request with the sink as its destination; the user may interrupt it (see Interrupt.h).
/// @param line where progress is shown; null for nowhere.
/// @throws kel::CError with the text of describeTransferFailure(); CClosedPipeError from the output.
void performTransfer(CNetRequest& request, const CURLArgument& url, CResponseSink& sink,
                     CProgressLine* line = nullptr);

} // namespace vantra::tool
