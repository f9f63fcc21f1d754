/// @file Verbs.h
/// The verbs that there are.
#pragma once

#include "Verb.h"

namespace vantra::tool {

/// Adds every verb of the program, in the order in which help lists them.
void addVerbs(CLI::App& program, VerbList& verbs);

} // namespace vantra::tool
