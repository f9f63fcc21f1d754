#include "Verbs.h"

#include "GetCommand.h"

namespace vantra::tool {

void addVerbs(CLI::App& program, VerbList& verbs) { verbs.push_back(std::make_unique<CGetCommand>(program)); }

} // namespace vantra::tool
