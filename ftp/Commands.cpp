#include "ftp/Commands.h"

#include <kel/Error.h>

#include <string_view>

namespace vantra {

using kel::CInvalidArgError;
using kel::P;
using kel::String;

P<CNetStringList> makeCommands(std::initializer_list<FTPCommand> commands) {
    static constexpr std::wstring_view lineEnds(L"\r\n\0", 3);
    P<CNetStringList> lines = new CNetStringList();
    for (const FTPCommand& command : commands) {
        if (command.path.view().find_first_of(lineEnds) != std::wstring_view::npos)
            throw CInvalidArgError("CFTPClient", "path contains a line break or a NUL character");
        lines->add(String(command.verb) + " " + command.path);
    }
    return lines;
}

} // namespace vantra
