#include "Console.h"

#include "Tool.h"

#include "support/Command.h"
#include "support/Wait.h"

#include <chrono>
#include <regex>
#include <stdexcept>

namespace tooltest {

using testsupport::ChildOptions;
using testsupport::CommandResult;
using testsupport::waitUntil;

namespace {

ChildOptions multiplexerOptions() {
    ChildOptions options;
    options.environment = toolEnvironment();
    options.environment["LC_ALL"] = "C.UTF-8";
    options.environment["TMUX"] = std::nullopt; // it would not run within another
    return options;
}

/// A client that starts no server of its own.
CommandResult runClient(const std::string& socket, const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"tmux", "-N", "-u", "-S", socket};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return testsupport::runCommand(command, {}, {{}, {{"LC_ALL", "C.UTF-8"}}});
}

} // namespace

Console::Console(const std::string& script, const std::vector<std::string>& arguments)
    : multiplexer_({"tmux", "-D", "-u", "-f", "/dev/null", "-S", folder_.file("socket")},
                   multiplexerOptions()) {
    constexpr std::chrono::seconds startLimit{20};
    const auto accepts = [&] { return runClient(folder_.file("socket"), {"list-commands"}).exitStatus == 0; };
    if (!waitUntil(accepts, startLimit)) throw std::runtime_error("tmux did not start");
    std::vector<std::string> session{"new-session", "-d",   "-x", "200",  "-y",
                                     "24",          "bash", "-c", script, "bash"};
    session.insert(session.end(), arguments.begin(), arguments.end());
    command(session);
}

std::string Console::command(const std::vector<std::string>& arguments) const {
    const CommandResult result = runClient(folder_.file("socket"), arguments);
    if (result.exitStatus != 0) throw std::runtime_error("tmux: " + result.standardError);
    return result.standardOutput;
}

std::string Console::screen() const {
    std::string rows = command({"capture-pane", "-p"});
    rows.erase(rows.find_last_not_of('\n') + 1);
    return rows;
}

std::string Console::waitForScreen(const std::string& pattern) const {
    constexpr std::chrono::seconds waitLimit{30};
    const std::regex regex(pattern);
    waitUntil([&] { return std::regex_match(screen(), regex); }, waitLimit);
    return screen();
}

void Console::type(const std::string& text) const { command({"send-keys", "-l", text}); }

void Console::press(const std::string& key) const { command({"send-keys", key}); }

} // namespace tooltest
