/// @file mail/MailTransfer.h
/// Performing a request to a mail server.
#pragma once

#include "display/ProgressDisplay.h"
#include "options/LogOption.h"

#include <vantra/NetRequest.h>

namespace vantra::tool {

/// Performs the request, which the user may interrupt and may want a log of.
/// @param line where progress is shown; null for nowhere.
/// @throws kel::CError with the text of describeTransferFailure().
void performMailTransfer(CNetRequest& request, const CLogOption& log, CProgressLine* line);

} // namespace vantra::tool
