#include "options/DownloadOptions.h"

#include "arguments/FileArgument.h"

#include <CLI/CLI.hpp>

namespace vantra::tool {

void CDownloadOptions::addTo(CLI::App& verb) {
    verb.add_option_function<std::string>(
            "-o,--output",
            [this](const std::string& argument) { outputName_ = parseFileArgument("--output", argument); },
            "File to write, - for standard output (the default).\nIt appears when it is complete; after a "
            "failure an\nexisting file is what it was")
        ->type_name("FILE");
    verb.add_option_function<std::string>(
            "--range", [this](const std::string& argument) { range_.emplace("--range", argument); },
            "Fetch the bytes from A to B (A-B) or all from A on\n(A-) alone; the first byte is 0")
        ->type_name("A-B");
}

} // namespace vantra::tool
