#include "ftp/Commands.h"

#include "http/LineEnd.h"

#include <kel/Error.h>

namespace vantra {

using kel::CInvalidArgError;
using kel::P;
using kel::String;

P<CNetStringList> makeCommands(const char* function, std::initializer_list<FTPCommand> commands) {
    P<CNetStringList> lines = new CNetStringList();
    for (const FTPCommand& command : commands) {
        if (hasLineEnd(command.path.view()))
            throw CInvalidArgError(function, "path contains a line break or a NUL character");
        lines->add(String(command.verb) + " " + command.path);
    }
    return lines;
}

} // namespace vantra
