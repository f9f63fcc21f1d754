#include "arguments/RefusedSecret.h"

#include "Errors.h"

#include <CLI/CLI.hpp>

namespace vantra::tool {

using kel::String;

void addRefusedSecret(CLI::App& verb, const std::string& option, const std::string& fileOption) {
    verb.add_option_function<std::string>(option,
                                          [option, fileOption](const std::string&) {
                                              throw CUsageError(
                                                  String(option) +
                                                  ": others can read the command line; put the secret into a "
                                                  "file and name that with " +
                                                  String(fileOption));
                                          })
        ->group("");
}

} // namespace vantra::tool
