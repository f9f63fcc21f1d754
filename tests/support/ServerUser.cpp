#include "support/ServerUser.h"

#include "support/Command.h"

namespace testsupport {

namespace {

std::string answerOf(const std::vector<std::string>& command) {
    const CommandResult result = runCommand(command);
    return result.exitStatus == 0 ? result.standardOutput.substr(0, result.standardOutput.find('\n')) : "";
}

} // namespace

const ServerUser& serverUser() {
    static const ServerUser user{answerOf({"id", "-u"}), answerOf({"id", "-g"}), answerOf({"id", "-un"})};
    return user;
}

} // namespace testsupport
