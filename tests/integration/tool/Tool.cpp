#include "Tool.h"

#include "support/FilePath.h"
#include "support/ResetConnection.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

namespace tooltest {

namespace {

std::string asLine(std::string_view message) { return "vantra: " + std::string(message) + "\n"; }

Outcome run(const std::vector<std::string>& command, std::string_view standardInput) {
    testsupport::CommandOptions options;
    options.environment = toolEnvironment();
    return testsupport::outcomeOf(testsupport::runCommand(command, standardInput, options));
}

} // namespace

Outcome succeeded(std::string_view output) { return {0, std::string(output), ""}; }

Outcome failed(std::string_view message) { return failedAfter("", message); }

Outcome failedAfter(std::string_view output, std::string_view message) {
    return {1, std::string(output), asLine(message)};
}

Outcome refused(std::string_view message) { return {2, "", asLine(message)}; }

std::vector<std::string> messagesOfReset(const std::string& url, int missingBytes) {
    const std::string code = " (response code: http 200)";
    std::vector<std::string> messages{url + ": Failure when receiving data from the peer: Recv failure: " +
                                      "Connection reset by peer" + code};
    if (testsupport::resetMayLookLikeAnEnd())
        messages.push_back(url + ": Transferred a partial file: transfer closed with " +
                           std::to_string(missingBytes) + " bytes remaining to read" + code);
    return messages;
}

std::string toolPath() { return VANTRA_COMMAND; }

testsupport::Environment toolEnvironment() {
    testsupport::Environment environment;
    for (const char* variable : {"http_proxy", "https_proxy", "ftp_proxy", "all_proxy", "no_proxy",
                                 "HTTP_PROXY", "HTTPS_PROXY", "FTP_PROXY", "ALL_PROXY", "NO_PROXY"})
        environment[variable] = std::nullopt;
    environment["TOOL"] = toolPath();
    return environment;
}

Outcome runTool(const std::vector<std::string>& arguments, std::string_view standardInput) {
    std::vector<std::string> command{toolPath()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return run(command, standardInput);
}

Outcome runScript(const std::string& script, const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"bash", "-c", script, "bash"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return run(command, {});
}

std::string withoutRootsRights() {
    return "[ \"$(id -u)\" != 0 ] || [ \"$RIGHTS\" = dropped ] || RIGHTS=dropped exec setpriv "
           "--bounding-set=-dac_override,-dac_read_search bash -c \"$BASH_EXECUTION_STRING\" bash \"$@\"\n";
}

testsupport::NginxServer& webServer() {
    static testsupport::NginxServer server;
    return server;
}

std::vector<std::string> filesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(testsupport::pathOf(folder)))
        names.push_back(testsupport::nameOf(entry.path().filename()));
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace tooltest
