#include "mail/MailVerbs.h"

#include "mail/MailSendCommand.h"
#include "mail/MailTestCommand.h"

namespace vantra::tool {

void addMailVerbs(CLI::App& program, VerbList& verbs) {
    CLI::App& group = addVerbGroup(program, "mail", "Send mail, and try mail servers");
    verbs.push_back(std::make_unique<CMailSendCommand>(group));
    verbs.push_back(std::make_unique<CMailTestCommand>(group));
}

} // namespace vantra::tool
