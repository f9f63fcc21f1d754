#include "support/ServerFile.h"

#include "support/Command.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace testsupport {

namespace {

/// Runs a program of the servers' system.
std::string run(const std::vector<std::string>& command, std::string_view standardInput = {}) {
    CommandResult result = runCommand(command, standardInput);
    if (result.exitStatus != 0) throw std::runtime_error(command.at(0) + ": " + result.standardError);
    return std::move(result.standardOutput);
}

} // namespace

void writeServerFile(const std::string& path, std::string_view content) {
    run({"sh", "-c", "exec cat >\"$1\"", "sh", path}, content);
}

std::string readServerFile(const std::string& path) { return run({"cat", path}); }

void makeServerFolder(const std::string& path) { run({"mkdir", "-p", path}); }

bool existsOnServer(const std::string& path) {
    const CommandResult result = runCommand({"test", "-e", path});
    if (result.exitStatus > 1) throw std::runtime_error("test: " + result.standardError);
    return result.exitStatus == 0;
}

std::vector<std::string> namesInServerFolder(const std::string& path) {
    const std::string list = run({"find", path, "-mindepth", "1", "-maxdepth", "1", "-printf", "%f\\0"});
    std::vector<std::string> names;
    for (std::size_t begin = 0; begin < list.size(); begin += names.back().size() + 1)
        names.emplace_back(list.c_str() + begin);
    std::ranges::sort(names);
    return names;
}

void setServerFileTime(const std::string& path, std::chrono::sys_seconds time) {
    if (!existsOnServer(path)) throw std::runtime_error("there is no " + path); // touch would make it
    run({"touch", "-d", "@" + std::to_string(time.time_since_epoch().count()), path});
}

} // namespace testsupport
