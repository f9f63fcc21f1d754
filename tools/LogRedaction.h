/// @file LogRedaction.h
/// Keeping passwords out of transfer logs.
#pragma once

#include <kel/XMLElement.h>

namespace vantra::tool {

/// Replaces by "~stripped~" what logs in to a server among the lines sent: the value of every HTTP header
/// whose name ends in "Authorization", FTP's PASS, and what SMTP's AUTH sends, in the command itself or in
/// answer to the server's challenges.
/// @param transfer "NetRequest" as CNetRequest::getVerboseOutput makes it.
void redactPasswords(kel::CXMLElement& transfer);

} // namespace vantra::tool
