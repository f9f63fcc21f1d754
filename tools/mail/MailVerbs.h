/// @file mail/MailVerbs.h
/// vantra mail ...
#pragma once

#include "Verb.h"

namespace vantra::tool {

/// Adds the group "mail" and its verbs.
void addMailVerbs(CLI::App& program, VerbList& verbs);

} // namespace vantra::tool
