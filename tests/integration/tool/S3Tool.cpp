#include "S3Tool.h"

#include <gtest/gtest.h>

namespace tooltest {

using testsupport::S3Server;
using testsupport::TempDir;

namespace {

const TempDir& keyFolder() {
    static const TempDir folder;
    return folder;
}

} // namespace

S3Server& objectStore() {
    static S3Server server({"bucket", "listed", "paged"});
    return server;
}

const std::string& secretKeyFile() {
    static const std::string file = keyFolder().writeFile("secret", S3Server::secretKey() + "\n");
    return file;
}

const std::string& wrongSecretKeyFile() {
    static const std::string file = keyFolder().writeFile("wrong", "wrong\n");
    return file;
}

Outcome runS3(std::vector<std::string> arguments, std::string_view standardInput) {
    arguments.insert(arguments.begin(), "s3");
    arguments.insert(arguments.end(), {"--endpoint", objectStore().url(), "--access-key",
                                       S3Server::accessKey(), "--secret-key-file", secretKeyFile()});
    return runTool(arguments, standardInput);
}

Outcome runS3At(const std::string& endpoint, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "s3");
    arguments.insert(arguments.end(),
                     {"--endpoint", endpoint, "--access-key", "id", "--secret-key-file", secretKeyFile()});
    return runTool(arguments);
}

void putObject(const std::string& url, const std::string& content) {
    EXPECT_EQ(runS3({"put", url, "-f", "-"}, content), succeeded(""));
}

} // namespace tooltest
