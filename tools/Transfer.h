/// @file Transfer.h
/// Performing a request and telling the user of its failure.
#pragma once

#include "ResponseSink.h"
#include "URLArgument.h"

#include <vantra/NetRequest.h>

namespace vantra::tool {

/// Performs the request with the sink as its destination; the user may interrupt it (see Interrupt.h).
/// @throws kel::CError "URL: STATUS LINE: SERVER MESSAGE" for an HTTP response outside 200 to 299, "URL:
/// MESSAGE" for any other failure of libcurl, for FTP with ": REPLY" of the server; what the output throws.
void performTransfer(CNetRequest& request, const CURLArgument& url, CResponseSink& sink);

} // namespace vantra::tool
