#include "Tool.h"

#include "support/TempDir.h"

#include <gmock/gmock.h>

#include <filesystem>

using namespace testsupport;
using namespace tooltest;
using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

namespace {

/// Runs the command "$TOOL" "$@" in the folder "$1", on a disk of 64 KiB, and then lists what is left in the
/// folder. Where nobody may mount a disk, a limit on the size of files is the nearest thing to it.
constexpr const char* onASmallDisk = R"(
folder=$1
shift
run='cd "$0" && { "$TOOL" "$@"; status=$?; ls -A; exit $status; }'
for namespace in "unshare --mount" "unshare --user --map-root-user --mount"; do
    if $namespace mount -t tmpfs -o size=64k none "$folder" 2>/dev/null; then
        exec $namespace bash -c 'mount -t tmpfs -o size=64k none "$0" && '"$run" "$folder" "$@"
    fi
done
trap '' XFSZ
ulimit -f 64
exec bash -c "$run" "$folder" "$@"
)";

Outcome runOnASmallDisk(const TempDir& folder, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), folder.path());
    return runScript(onASmallDisk, arguments);
}

} // namespace

TEST(ToolFullDisk, IsAnErrorThatLeavesNoFile) {
    const std::string url = webServer().url("/big.bin");
    TempDir folder;
    EXPECT_THAT(runOnASmallDisk(folder, {"get", "-o", "out", url}),
                AnyOf(failed("Error writing file 'out': No space left on device."),
                      failed("Error writing file 'out': File too large.")));
    EXPECT_THAT(filesIn(folder.path()), IsEmpty());
}

TEST(ToolFullDisk, HasRoomAgainForTheNextFile) {
    NginxServer& server = webServer();
    TempDir folder;
    const std::string summary = "vantra: 1 of 2 transfers failed.\n";
    EXPECT_THAT(runOnASmallDisk(
                    folder, {"get-all", "--parallel", "1", server.url("/big.bin"), server.url("/hello.txt")}),
                AnyOf(Outcome{1, "hello.txt\n",
                              "vantra: Error writing file 'big.bin': No space left on device.\n" + summary},
                      Outcome{1, "hello.txt\n",
                              "vantra: Error writing file 'big.bin': File too large.\n" + summary}));
}

TEST(ToolFullDisk, IsAnErrorOfTheLogToo) {
    NginxServer& server = webServer();
    TempDir folder;
    const Outcome outcome =
        runOnASmallDisk(folder, {"get", "-o", "/dev/null", "--log", "log", server.url("/big.bin")});
    EXPECT_THAT(outcome, AnyOf(failed("Error writing file 'log': No space left on device."),
                               failed("Error writing file 'log': File too large.")));
}

TEST(ToolFolder, ThatCannotBeWrittenToIsAnError) {
    TempDir folder;
    fs::create_directory(folder.file("closed"));
    fs::permissions(folder.file("closed"), fs::perms::owner_read | fs::perms::owner_exec);
    const std::string url = "http://127.0.0.1:1/name";
    const std::string closed = folder.file("closed");
    EXPECT_EQ(runScript(withoutRootsRights() + "\"$TOOL\" get \"$1\" -o \"$2/out\"", {url, closed}),
              failed("Error creating file '" + closed + "/out': Permission denied."));
    EXPECT_EQ(runScript(withoutRootsRights() + "\"$TOOL\" get \"$1\" --log \"$2/log\"", {url, closed}),
              failed("Error creating file '" + closed + "/log': Permission denied."));
    EXPECT_EQ(runScript(withoutRootsRights() + "\"$TOOL\" get-all \"$1\" -d \"$2\"", {url, closed}),
              failed("Error creating a file in folder '" + closed + "': Permission denied."));
    EXPECT_THAT(filesIn(closed), IsEmpty());
}
