#include "Backup.h"
#include "Document.h"
#include "Example.h"

#include "support/TempDir.h"

#include <gmock/gmock.h>

#include <filesystem>

using namespace testsupport;
using testing::HasSubstr;

TEST(S3Backup, StoresEveryFileOfAFolder) {
    const std::vector<std::pair<std::string, std::string>> contents{
        {"big.bin", NginxServer::bigContent()},
        {"empty", ""},
        {"sub/deeper/50% #1&2.txt", "odd name\n"},
        {"\u00dcbersicht \u65e5\u672c \U0001F680.txt", "Unicode\n"}};
    const TempDir folder;
    for (const auto& [name, content] : contents) folder.writeFile("files/" + name, content);
    std::filesystem::create_directory(folder.file("files/nothing in here"));

    const Outcome outcome =
        runExample("s3_backup", {folder.file("files"), "bucket", "backup/"}, backupEnvironment());
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

    Environment wrongKey = backupEnvironment();
    wrongKey["AWS_SECRET_ACCESS_KEY"] = "wrong";
    const Outcome refused = runExample("s3_backup", arguments, wrongKey);
    EXPECT_EQ(refused.exitStatus, 1);
    EXPECT_THAT(refused.error, HasSubstr("SignatureDoesNotMatch"));

    const Outcome noBucket =
        runExample("s3_backup", {folder.file("files"), "nobucket", ""}, backupEnvironment());
    EXPECT_EQ(noBucket.exitStatus, 1);
    EXPECT_THAT(noBucket.error, HasSubstr("NoSuchBucket"));

    const Outcome noFolder = runExample("s3_backup", {folder.file("none"), "empty", ""}, backupEnvironment());
    EXPECT_EQ(noFolder.exitStatus, 1);
    EXPECT_THAT(noFolder.error, HasSubstr("No such file or directory"));

    Environment noKey = backupEnvironment();
    noKey["AWS_SECRET_ACCESS_KEY"] = std::nullopt;
    EXPECT_EQ(runExample("s3_backup", arguments, noKey),
              (Outcome{1, "", "AWS_SECRET_ACCESS_KEY is not set in the environment.\n"}));

    const TempDir copy;
    downloadBucket("empty", copy);
    EXPECT_THAT(filesIn(copy.path()), testing::IsEmpty());
}
