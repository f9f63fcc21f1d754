#include "Document.h"
#include "Example.h"

#include "support/S3Server.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

using namespace testsupport;
using testing::HasSubstr;

namespace {

S3Server& store() {
    static S3Server server({"bucket", "empty"});
    return server;
}

Environment environment() {
    return {{"AWS_ACCESS_KEY_ID", S3Server::accessKey()},
            {"AWS_SECRET_ACCESS_KEY", S3Server::secretKey()},
            {"AWS_ENDPOINT_URL", store().url()}};
}

/// Reads a bucket over the store's own interface, which is none of S3: each object is written to a file of
/// its name in a folder.
constexpr const char* readBucket = R"(
import os, sys, urllib.parse, urllib.request
base, bucket, folder = sys.argv[1:]
opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
login = urllib.request.Request(base + "auth/v1.0", headers={"X-Auth-User": "test:tester", "X-Auth-Key": "testing"})
answer = opener.open(login)
token, url = answer.headers["X-Auth-Token"], answer.headers["X-Storage-Url"] + "/" + bucket
def get(path):
    return opener.open(urllib.request.Request(url + path, headers={"X-Auth-Token": token})).read()
for name in get("?limit=1000").decode().splitlines():
    path = os.path.join(folder, name)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as file:
        file.write(get("/" + urllib.parse.quote(name)))
)";

void downloadBucket(const std::string& bucket, const TempDir& folder) {
    const CommandResult result = runCommand(
        {"/usr/bin/python3", "-I", "-X", "utf8", "-c", readBucket, store().url(), bucket, folder.path()});
    ASSERT_EQ(result.exitStatus, 0) << result.standardError;
}

} // namespace

TEST(S3Backup, StoresEveryFileOfAFolder) {
    const std::vector<std::pair<std::string, std::string>> contents{
        {"big.bin", NginxServer::bigContent()},
        {"empty", ""},
        {"sub/deeper/50% #1?.txt", "odd name\n"},
        {"\u00dcbersicht \u65e5\u672c \U0001F680.txt", "Unicode\n"}};
    const TempDir folder;
    for (const auto& [name, content] : contents) folder.writeFile("files/" + name, content);
    std::filesystem::create_directory(folder.file("files/nothing in here"));

    const Outcome outcome =
        runExample("s3_backup", {folder.file("files"), "bucket", "backup/"}, environment());
    EXPECT_EQ(outcome.exitStatus, 0) << outcome.error;
    EXPECT_EQ(outcome.output, documentedOutput("docs/s3.md", "s3_backup"));
    EXPECT_EQ(outcome.error, "");

    const TempDir copy;
    downloadBucket("bucket", copy);
    std::vector<std::string> names;
    for (const auto& [name, content] : contents) {
        names.push_back("backup/" + name);
        EXPECT_TRUE(copy.readFile(names.back()) == content) << name;
    }
    EXPECT_THAT(filesIn(copy.path()), testing::UnorderedElementsAreArray(names));
}

TEST(S3Backup, SaysWhatFailed) {
    const TempDir folder;
    folder.writeFile("files/a.txt", "a");
    const std::vector<std::string> arguments{folder.file("files"), "empty", ""};

    Environment wrongKey = environment();
    wrongKey["AWS_SECRET_ACCESS_KEY"] = "wrong";
    const Outcome refused = runExample("s3_backup", arguments, wrongKey);
    EXPECT_EQ(refused.exitStatus, 1);
    EXPECT_THAT(refused.error, HasSubstr("SignatureDoesNotMatch"));

    const Outcome noBucket = runExample("s3_backup", {folder.file("files"), "nobucket", ""}, environment());
    EXPECT_EQ(noBucket.exitStatus, 1);
    EXPECT_THAT(noBucket.error, HasSubstr("NoSuchBucket"));

    const Outcome noFolder = runExample("s3_backup", {folder.file("none"), "empty", ""}, environment());
    EXPECT_EQ(noFolder.exitStatus, 1);
    EXPECT_THAT(noFolder.error, HasSubstr("No such file or directory"));

    Environment noKey = environment();
    noKey["AWS_SECRET_ACCESS_KEY"] = std::nullopt;
    EXPECT_EQ(runExample("s3_backup", arguments, noKey),
              (Outcome{1, "", "AWS_SECRET_ACCESS_KEY is not set in the environment.\n"}));

    const TempDir copy;
    downloadBucket("empty", copy);
    EXPECT_THAT(filesIn(copy.path()), testing::IsEmpty());
}

TEST(S3Backup, RefusesANameThatIsNotUTF8) {
    const TempDir folder;
    folder.writeFile("files/\xE4.txt", "a");
    EXPECT_EQ(runExample("s3_backup", {folder.file("files"), "empty", ""}, environment()),
              (Outcome{1, "", "The name of this file is not UTF-8: \uFFFD.txt\n"}));
}
