#include "mail/MailTestCommand.h"

#include "display/TerminalText.h"
#include "files/Output.h"
#include "mail/MailTransfer.h"
#include "mail/ServerReplies.h"

#include <vantra/SMTPClient.h>

#include <string>

namespace vantra::tool {

using kel::P;
using kel::String;

namespace {

/// Sets requests up as the client does for its own test.
class CTestSetup : public CSMTPClient {
public:
    static void apply(CNetRequest& request, const CSMTPParams& params) {
        doInitialRequestInit(request, params);
        resetOptions(request);
        request.setOptionInt(CURLOPT_CONNECT_ONLY, 1);
    }
};

std::string describe(const CNetRequest& request, const CSMTPParams& params) {
    const MailServerDescription server = describeMailServer(request.getResponseInfo());
    std::string text = toTerminalLine(request.getURL() + ": " + server.greeting) + "\n";
    for (const String& extension : server.extensions) text += "  " + toTerminalLine(extension) + "\n";
    const bool isLoggedIn = !params.getLoginName().isEmpty();
    text += isLoggedIn ? toTerminalLine("logged in as " + params.getLoginName()) : "not logged in";
    return text + "\n";
}

void addDescription(CJSONObject& result, const CNetRequest& request, const CSMTPParams& params) {
    const MailServerDescription server = describeMailServer(request.getResponseInfo());
    result.setText("greeting", server.greeting);
    result.setTexts("extensions", server.extensions);
    if (params.getLoginName().isEmpty())
        result.setNull("loggedInAs");
    else
        result.setText("loggedInAs", params.getLoginName());
}

} // namespace

CMailTestCommand::CMailTestCommand(CLI::App& group)
    : CVerb(group, "test", "Connect to a mail server, log in, and tell what it is",
            {"vantra mail test --server mail.example.com:465 --tls ssl --user jane --password-file pw.txt"}) {
    server_.addTo(getParser());
    log_.addTo(getParser());
}

void CMailTestCommand::run() {
    const CSMTPParams params = server_.getParams();
    const P<CNetRequest> request = new CNetRequest();
    CTestSetup::apply(*request, params);
    server_.applyTo(*request);
    getResult().setText("server", request->getURL());
    performMailTransfer(*request, log_, nullptr);
    if (wantsJSON()) {
        addDescription(getResult(), *request, params);
        return;
    }
    openOutput(std::nullopt)->write(describe(*request, params));
}

} // namespace vantra::tool
