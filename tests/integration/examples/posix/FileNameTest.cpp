#include "Backup.h"
#include "Mirror.h"

#include <gmock/gmock.h>

using namespace testsupport;
using testing::ElementsAre;

namespace {

/// A name that no file of Windows can have. A backslash is in none: the programs take it for a slash.
const std::string oddName = " 50% #1?*:\"<>|;type=a.txt. ";

template <class Server>
class FTPMirrorName : public Mirror<Server> {};

} // namespace

TYPED_TEST_SUITE(FTPMirrorName, MirrorServers, MirrorServerNames);

TYPED_TEST(FTPMirrorName, MayBeAny) {
    this->writeFile("/names/" + oddName + "/" + oddName, "odd\n");
    EXPECT_EQ(
        this->mirror("/names"),
        (Outcome{0, this->server().path("/names/" + oddName + "/" + oddName) + "\nfiles fetched: 1\n", ""}));
    EXPECT_THAT(filesIn(this->folder_.path()), ElementsAre(oddName + "/" + oddName));
    EXPECT_EQ(this->folder_.readFile(oddName + "/" + oddName), "odd\n");
}

TEST(S3BackupName, MayBeAny) {
    const TempDir folder;
    folder.writeFile("files/" + oddName + "/" + oddName, "odd\n");
    EXPECT_EQ(runExample("s3_backup", {folder.file("files"), "names", ""}, backupEnvironment()),
              (Outcome{0, oddName + "/" + oddName + ": 4 bytes\n1 files are in 'names'\n", ""}));
    const TempDir copy;
    downloadBucket("names", copy);
    EXPECT_THAT(filesIn(copy.path()), ElementsAre(oddName + "/" + oddName));
    EXPECT_EQ(copy.readFile(oddName + "/" + oddName), "odd\n");
}

TEST(S3BackupName, IsRefusedWhenItIsNotUTF8) {
    const TempDir folder;
    folder.writeFile("files/\xE4.txt", "a");
    EXPECT_EQ(runExample("s3_backup", {folder.file("files"), "empty", ""}, backupEnvironment()),
              (Outcome{1, "", "The name of this file is not UTF-8: \uFFFD.txt\n"}));
}
