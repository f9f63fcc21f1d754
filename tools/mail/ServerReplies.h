/// @file mail/ServerReplies.h
/// What a mail server said.
#pragma once

#include <vantra/NetStringList.h>

#include <kel/Array.h>
#include <kel/String.h>

namespace vantra::tool {

/// What a mail server tells of itself.
struct MailServerDescription {
    kel::String greeting;                ///< its first words, without the code
    kel::TArray<kel::String> extensions; ///< as it listed them last, such as "SIZE 1000" (RFC 5321 §4.1.1.1)
};

/// Reads the replies of a session up to the login.
/// @param lines one or more of each reply, such as "250-SIZE 1000".
[[nodiscard]] MailServerDescription describeMailServer(const CNetStringList& lines);

} // namespace vantra::tool
