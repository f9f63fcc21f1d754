/// @file ftp/Commands.h
/// Commands that accompany a transfer.
#pragma once

#include "vantra/NetStringList.h"

#include <kel/P.h>
#include <kel/String.h>

#include <initializer_list>

namespace vantra {

/// A command and the path it is about.
struct FTPCommand {
    const char* verb;
    const kel::String& path;
};

/// The commands' lines, "VERB PATH" with the path as it is.
/// @param function what the error names as its context.
/// @throws kel::CInvalidArgError for a path that would end its line and begin a command of its own.
[[nodiscard]] kel::P<CNetStringList> makeCommands(const char* function,
                                                  std::initializer_list<FTPCommand> commands);

} // namespace vantra
