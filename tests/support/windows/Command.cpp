#include "support/Command.h"

#include "support/launcher/Launcher.h"

namespace testsupport {

CommandResult runCommand(const std::vector<std::string>& arguments, std::string_view standardInput,
                         const CommandOptions& options) {
    Message request{std::string(runRequest), std::to_string(options.limit.count()),
                    std::string(standardInput)};
    appendProgram(request, arguments, options.workingDirectory, options.environment);
    const Message reply = Launcher().ask(request);
    return {static_cast<int>(numberIn(reply.at(0))), reply.at(1), reply.at(2)};
}

} // namespace testsupport
