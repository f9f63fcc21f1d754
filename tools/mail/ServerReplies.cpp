#include "mail/ServerReplies.h"

namespace vantra::tool {

using kel::String;
using kel::TArray;

MailServerDescription describeMailServer(const CNetStringList& lines) {
    constexpr std::size_t codeLength = 4; // with what stands behind it
    MailServerDescription description;
    TArray<String> reply;
    CNetStringList::CIterator line(lines.getSList());
    while (line.next()) {
        const String entry = line.getEntry().trimRight();
        if (description.greeting.isEmpty() && entry.startsWith(L"220"))
            description.greeting = entry.substr(codeLength);
        if (!entry.startsWith(L"250")) continue;
        reply.push_back(entry.substr(codeLength));
        if (entry.startsWith(L"250-")) continue;
        reply.erase(reply.begin()); // the server's name
        // Over TLS a server may offer other things than before, and says so again.
        if (!reply.empty()) description.extensions = reply;
        reply.clear();
    }
    return description;
}

} // namespace vantra::tool
