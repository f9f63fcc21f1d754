/// @file unit/support/Curl.h
/// The curl command as a client that has nothing to do with the code under test.
#pragma once

#include "support/Command.h"

#include <string>
#include <vector>

/// Runs curl without any configuration file or proxy of the machine's and with a time limit.
inline testsupport::CommandResult curl(const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"curl", "-q", "--silent", "--show-error", "--max-time", "20"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    testsupport::CommandOptions options;
    for (const char* name : {"http_proxy", "https_proxy", "ftp_proxy", "all_proxy", "no_proxy", "HTTPS_PROXY",
                             "ALL_PROXY", "NO_PROXY"}) {
        options.environment[name] = std::nullopt;
    }
    return testsupport::runCommand(command, {}, options);
}

/// What curl prints about a transfer with --write-out, without the body.
inline std::string curlInformation(const std::string& format, std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--output", "/dev/null", "--write-out", format});
    return curl(arguments).standardOutput;
}
