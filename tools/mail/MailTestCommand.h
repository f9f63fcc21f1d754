/// @file mail/MailTestCommand.h
/// vantra mail test: tries a mail server without sending anything.
#pragma once

#include "mail/MailServerOptions.h"
#include "options/LogOption.h"
#include "Verb.h"

namespace vantra::tool {

class CMailTestCommand : public CVerb {
public:
    explicit CMailTestCommand(CLI::App& group);

    void run() override;

private:
    CMailServerOptions server_;
    CLogOption log_;
};

} // namespace vantra::tool
