#include "options/ResponseOptions.h"

#include "arguments/FileArgument.h"
#include "Errors.h"

#include <CLI/CLI.hpp>

namespace vantra::tool {

void CResponseOptions::addTo(CLI::App& verb) {
    verb.add_option_function<std::string>(
            "-o,--output",
            [this](const std::string& argument) { outputName_ = parseFileArgument("--output", argument); },
            "File to write what is received to, - for standard\noutput (the default). It appears when it is "
            "complete;\nafter a failure an existing file is what it was")
        ->type_name("FILE");
    verb.add_flag("--include", includeHeaders_,
                  "Write the status line and the headers ahead of the\nbody, to the same output; those of "
                  "redirects too.\nHTTP only");
}

void CResponseOptions::checkFor(const CURLArgument& url) const {
    if (includeHeaders_ && !url.isHTTP()) throw CUsageError("--include: needs an http or https URL");
}

std::unique_ptr<IOutput> CResponseOptions::open() const { return openOutput(outputName_); }

} // namespace vantra::tool
