/// Running the `vantra` command as its users do.
#pragma once

#include "support/Command.h"
#include "support/FilePath.h"
#include "support/NginxServer.h"
#include "support/Outcome.h"

#include <string>
#include <string_view>
#include <vector>

namespace tooltest {

using testsupport::nativeName;
using testsupport::Outcome;

/// Exit status 0, the bytes on standard output, nothing on standard error.
Outcome succeeded(std::string_view output);
/// Exit status 1, nothing on standard output, and "vantra: MESSAGE" as the one line on standard error.
Outcome failed(std::string_view message);
/// The same after some bytes went to standard output.
Outcome failedAfter(std::string_view output, std::string_view message);
/// As failed(), with the exit status 2.
Outcome refused(std::string_view message);

/// What the program may say, after "vantra: ", of a download whose server resets the connection while so many
/// bytes of the body are missing.
std::vector<std::string> messagesOfReset(const std::string& url, int missingBytes);

/// The path of the program.
std::string toolPath();
/// The environment of the program: the test's own without anything that sets a proxy.
testsupport::Environment toolEnvironment();

/// Runs the program to its end.
Outcome runTool(const std::vector<std::string>& arguments, std::string_view standardInput = {});
/// Runs a bash script to its end in which "$TOOL" is the program and "$1" the first argument.
Outcome runScript(const std::string& script, const std::vector<std::string>& arguments);

/// The start of a script for runScript() whose commands may not do what files' permissions forbid, even if
/// root runs the tests.
std::string withoutRootsRights();

/// The web server that all tests share; it keeps nothing of one test that the next could notice, but its
/// access log.
testsupport::NginxServer& webServer();

/// The names of all files in a folder, hidden ones included, sorted.
std::vector<std::string> filesIn(const std::string& folder);

} // namespace tooltest
