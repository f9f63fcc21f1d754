/// @file S3Verbs.h
/// The verbs for object stores.
#pragma once

#include "Verb.h"

namespace vantra::tool {

/// Adds the group "s3" to the program, and its verbs to the list.
void addS3Verbs(CLI::App& program, VerbList& verbs);

} // namespace vantra::tool
