/// @file mail/MailSendCommand.h
/// vantra mail send: sends a mail.
#pragma once

#include "mail/Letter.h"
#include "mail/MailServerOptions.h"
#include "options/LogOption.h"
#include "Verb.h"

namespace vantra::tool {

class CMailSendCommand : public CVerb {
public:
    explicit CMailSendCommand(CLI::App& group);

    void run() override;

private:
    void addEnvelopeOptions();
    void addContentOptions();
    void check() const;

    CMailServerOptions server_;
    Letter letter_;
    CLogOption log_;
};

} // namespace vantra::tool
