/// Running the programs in examples/.
#pragma once

#include "support/Command.h"
#include "support/NginxServer.h"
#include "support/Outcome.h"

#include <string>
#include <string_view>
#include <vector>

using testsupport::Outcome;

/// Runs an example to its end.
/// @param name of the program.
/// @param environment variables to set beside those of the test, which name neither a proxy, a login nor
/// certificates.
Outcome runExample(const std::string& name, const std::vector<std::string>& arguments,
                   const testsupport::Environment& environment = {}, std::string_view standardInput = {});

/// What runExample() starts, for those who want to run it themselves.
std::string exampleProgram(const std::string& name);
testsupport::Environment exampleEnvironment();

/// The web server that all tests share.
testsupport::NginxServer& webServer();

/// The names of all files below a folder, hidden ones included, in order.
std::vector<std::string> filesIn(const std::string& folder);
