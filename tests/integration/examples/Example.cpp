#include "Example.h"

#include "support/FilePath.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

std::string exampleProgram(const std::string& name) {
    std::string path = FIRST_EXAMPLE; // the others' paths differ in the name alone
    path.resize(path.size() - std::string_view("first").size());
    return path + name;
}

testsupport::Environment exampleEnvironment() {
    testsupport::Environment environment;
    for (const char* variable : {"http_proxy",
                                 "https_proxy",
                                 "ftp_proxy",
                                 "all_proxy",
                                 "no_proxy",
                                 "HTTP_PROXY",
                                 "HTTPS_PROXY",
                                 "FTP_PROXY",
                                 "ALL_PROXY",
                                 "NO_PROXY",
                                 "SSL_CERT_FILE",
                                 "AWS_ACCESS_KEY_ID",
                                 "AWS_SECRET_ACCESS_KEY",
                                 "AWS_ENDPOINT_URL",
                                 "FTP_USER",
                                 "FTP_PASSWORD",
                                 "SMTP_USER",
                                 "SMTP_PASSWORD",
                                 "HTTP_USER",
                                 "HTTP_PASSWORD"})
        environment[variable] = std::nullopt;
    return environment;
}

Outcome runExample(const std::string& name, const std::vector<std::string>& arguments,
                   const testsupport::Environment& environment, std::string_view standardInput) {
    std::vector<std::string> command{exampleProgram(name)};
    command.insert(command.end(), arguments.begin(), arguments.end());
    testsupport::CommandOptions options;
    options.environment = exampleEnvironment();
    for (const auto& [variable, value] : environment) options.environment[variable] = value;
    return testsupport::outcomeOf(testsupport::runCommand(command, standardInput, options));
}

testsupport::NginxServer& webServer() {
    static testsupport::NginxServer server;
    return server;
}

std::vector<std::string> filesIn(const std::string& folder) {
    std::vector<std::string> names;
    const std::filesystem::path root = testsupport::pathOf(folder);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root))
        if (!entry.is_directory())
            names.push_back(testsupport::nameOf(entry.path().lexically_relative(root)));
    std::ranges::sort(names);
    return names;
}
