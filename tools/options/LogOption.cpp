#include "options/LogOption.h"

#include "arguments/FileArgument.h"
#include "Errors.h"
#include "files/OutputFile.h"

#include <CLI/CLI.hpp>

#include <kel/Path.h>

#include <filesystem>
#include <system_error>

namespace vantra::tool {

namespace fs = std::filesystem;

void CLogOption::addTo(CLI::App& verb) {
    verb.add_option_function<std::string>(
            "--log",
            [this](const std::string& argument) {
                file_ = parseFileArgument("--log", argument);
                if (*file_ == "-") throw CUsageError("--log: must name a file");
            },
            "File to write a log of the transfer to, as XML; it is\nwritten when the transfer fails, too. It "
            "holds "
            "bodies\n(of put just their size) and no passwords")
        ->type_name("FILE");
}

void CLogOption::checkFor(const std::optional<kel::String>& outputName) const {
    if (!file_ || !outputName) return;
    std::error_code error; // leaves an empty path, which is of no use for the comparison
    const fs::path logPath = kel::CPath(*file_).toStdPath();
    const fs::path log = fs::weakly_canonical(logPath, error);
    const fs::path output = fs::weakly_canonical(kel::CPath(*outputName).toStdPath(), error);
    if (!log.empty() && areSamePath(log, output) && !isSpecialFile(logPath))
        throw CUsageError("--log: names the same file as --output");
}

std::unique_ptr<CTransferLog> CLogOption::open(CTransferLog::Kind kind) const {
    return file_ ? std::make_unique<CTransferLog>(*file_, kind) : nullptr;
}

} // namespace vantra::tool
