#include "LogOption.h"

#include "Errors.h"
#include "FileArgument.h"

#include <CLI/CLI.hpp>

namespace vantra::tool {

void CLogOption::addTo(CLI::App& verb) {
    verb.add_option_function<std::string>(
            "--log",
            [this](const std::string& argument) {
                file_ = parseFileArgument("--log", argument);
                if (*file_ == "-") throw CUsageError("--log: must name a file");
            },
            "File to write a log of the transfer to, as XML; it is\nwritten when the transfer fails, too. It "
            "holds what was\nreceived, but no passwords")
        ->type_name("FILE");
}

std::unique_ptr<CTransferLog> CLogOption::open(CTransferLog::Kind kind) const {
    return file_ ? std::make_unique<CTransferLog>(*file_, kind) : nullptr;
}

} // namespace vantra::tool
