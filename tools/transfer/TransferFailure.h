/// @file TransferFailure.h
/// Telling the user of a transfer's failure.
#pragma once

#include <vantra/NetRequest.h>

#include <kel/Error.h>
#include <kel/String.h>

namespace vantra::tool {

/// What went wrong, ready to be shown: "URL: STATUS LINE: SERVER MESSAGE" for an HTTP response outside 200 to
/// 299, "URL: MESSAGE" for any other failure of libcurl, for FTP and SMTP with ": REPLY" of the server, and
/// the error's own message for any other error, such as one of a file.
/// @param url as it may be shown.
/// @param serverMessage what the body of the response said; may be empty.
[[nodiscard]] kel::String describeTransferFailure(const kel::CError& error, const CNetRequest& request,
                                                  const kel::String& url, const kel::String& serverMessage);

} // namespace vantra::tool
