#include "FTPServers.h"

#include <gmock/gmock.h>

#include <chrono>
#include <sstream>

using namespace testsupport;
using namespace tooltest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

namespace {

/// The lines of an output, without their ends.
std::vector<std::string> linesOf(const std::string& output) {
    std::vector<std::string> lines;
    std::istringstream stream(output);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

/// Sets a file's time to 2019-04-01 12:30:00 UTC.
void setTime(const std::string& file) {
    const std::chrono::sys_seconds time = std::chrono::sys_days{std::chrono::year{2019} / 4 / 1} +
                                          std::chrono::hours(12) + std::chrono::minutes(30);
    setServerFileTime(file, time);
}

/// Expects a failure that is told in one line, which begins with the URL.
void expectFailure(const Outcome& outcome, const std::string& url, const std::string& reason) {
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(linesOf(outcome.error), ElementsAre(StartsWith("vantra: " + url + ": ")));
    EXPECT_THAT(outcome.error, HasSubstr(reason));
}

} // namespace

TEST_P(ToolFtp, ListsADirectory) {
    writeFile("/report of April.txt", "content");
    setTime(fileAt("/report of April.txt"));
    writeFile("/sub/f", "");
    setTime(fileAt("/sub"));
    const Outcome outcome = runFtp({"ls", url("")});
    EXPECT_EQ(outcome.exitStatus, 0) << outcome.error;
    EXPECT_EQ(outcome.error, "");
    EXPECT_THAT(linesOf(outcome.output),
                UnorderedElementsAre("file             7  2019-04-01T12:30:00Z  report of April.txt",
                                     "dir              -  2019-04-01T12:30:00Z  sub"));
    EXPECT_EQ(runFtp({"ls", url("/sub/")}).exitStatus, 0);
}

TEST_P(ToolFtp, ListsNothingOfAnEmptyDirectory) { EXPECT_EQ(runFtp({"ls", url("")}), succeeded("")); }

TEST_P(ToolFtp, TellsOfAFileAndADirectory) {
    writeFile("/d/f", "content");
    setTime(fileAt("/d/f"));
    const Outcome file = runFtp({"stat", url("/d/f")});
    EXPECT_EQ(file.exitStatus, 0) << file.error;
    EXPECT_THAT(file.output, StartsWith("file             7  2019-04-01T12:30:00Z  "));
    EXPECT_TRUE(file.output.ends_with("/d/f\n")) << file.output;
    EXPECT_THAT(runFtp({"stat", url("/d")}).output, StartsWith("dir              -  "));
}

TEST_P(ToolFtp, FailsToTellOfWhatIsNotThere) {
    expectFailure(runFtp({"stat", url("/none")}), url("/none"), "550 ");
    EXPECT_EQ(runFtp({"ls", url("/none")}).exitStatus, 1);
    expectFailure(runFtp({"get", url("/none")}), url("/none"), "550 ");
}

TEST_P(ToolFtp, FetchesAFileOrAPartOfIt) {
    writeFile("/f", "0123456789");
    EXPECT_EQ(runFtp({"get", url("/f")}), succeeded("0123456789"));
    EXPECT_EQ(runFtp({"get", "--range", "3-5", url("/f")}), succeeded("345"));
    EXPECT_EQ(runFtp({"get", "--range", "7-", url("/f")}), succeeded("789"));
    EXPECT_EQ(runFtp({"get", "-o", local_.file("out"), url("/f")}), succeeded(""));
    EXPECT_EQ(local_.readFile("out"), "0123456789");
}

TEST_P(ToolFtp, LeavesNoFileOfADownloadThatFails) {
    local_.writeFile("old", "old content");
    EXPECT_EQ(runFtp({"get", "-o", local_.file("new"), url("/none")}).exitStatus, 1);
    EXPECT_EQ(runFtp({"get", "-o", local_.file("old"), url("/none")}).exitStatus, 1);
    EXPECT_THAT(filesIn(local_.path()), ElementsAre("old", "password"));
    EXPECT_EQ(local_.readFile("old"), "old content");
}

TEST_P(ToolFtp, StoresAFile) {
    std::string content(100000, '\0');
    for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>(i);
    const std::string file = local_.writeFile("file", content);
    EXPECT_EQ(runFtp({"put", url("/f"), file}), succeeded(""));
    EXPECT_EQ(readFile("/f"), content);
    EXPECT_EQ(runFtp({"put", url("/f"), local_.writeFile("empty", "")}), succeeded(""));
    EXPECT_EQ(readFile("/f"), "");
}

TEST_P(ToolFtp, StoresAFileInMissingDirectoriesOnlyIfToldTo) {
    const std::string file = local_.writeFile("file", "content");
    EXPECT_EQ(runFtp({"put", url("/a/b/f"), file}).exitStatus, 1);
    EXPECT_THAT(namesInServerFolder(fileAt("")), IsEmpty());
    EXPECT_EQ(runFtp({"put", "--create-dirs", url("/a/b/f"), file}), succeeded(""));
    EXPECT_EQ(readFile("/a/b/f"), "content");
    for (const char* way : {"steps", "direct", "none"}) {
        EXPECT_EQ(runFtp({"put", "--cwd", way, url("/a/b/" + std::string(way)), file}), succeeded(""));
        EXPECT_EQ(readFile("/a/b/" + std::string(way)), "content");
    }
}

TEST_P(ToolFtp, FailsToStoreWithoutPermissionOrWithoutAFile) {
    const std::string file = local_.writeFile("file", "content");
    EXPECT_EQ(runFtp({"put", serverUrl("/readonly/new"), file}).exitStatus, 1);
    EXPECT_THAT(namesInServerFolder(server().file("/readonly")), ElementsAre("kept.txt"));
    EXPECT_EQ(
        runFtp({"put", url("/f"), local_.file("none")}),
        failed("Error opening file '" + nativeName(local_.file("none")) + "': No such file or directory."));
}

TEST_P(ToolFtp, CreatesAndRemovesDirectories) {
    EXPECT_EQ(runFtp({"mkdir", url("/a")}), succeeded(""));
    EXPECT_EQ(runFtp({"mkdir", url("/b/")}), succeeded(""));
    expectFailure(runFtp({"mkdir", url("/a")}), url("/a"), "550 ");
    expectFailure(runFtp({"mkdir", url("/c/d")}), url("/c/d"), "550 ");
    EXPECT_EQ(runFtp({"mkdir", "--create-dirs", url("/c/d")}), succeeded(""));
    EXPECT_THAT(namesInServerFolder(fileAt("")), ElementsAre("a", "b", "c"));
    expectFailure(runFtp({"rmdir", url("/c")}), url("/c"), "550 ");
    EXPECT_EQ(runFtp({"rmdir", url("/c/d")}), succeeded(""));
    EXPECT_EQ(runFtp({"rmdir", url("/c/")}), succeeded(""));
    EXPECT_THAT(namesInServerFolder(fileAt("")), ElementsAre("a", "b"));
}

TEST_P(ToolFtp, DeletesAFile) {
    writeFile("/f", "content");
    EXPECT_EQ(runFtp({"rm", url("/f")}), succeeded(""));
    EXPECT_THAT(namesInServerFolder(fileAt("")), IsEmpty());
    expectFailure(runFtp({"rm", url("/f")}), url("/f"), "550 ");
    expectFailure(runFtp({"rm", serverUrl("/readonly/kept.txt")}), serverUrl("/readonly/kept.txt"), "550 ");
    EXPECT_EQ(readWholeFile(server().file("/readonly/kept.txt")), "kept\n");
}

TEST_P(ToolFtp, MovesFilesAndDirectories) {
    writeFile("/f", "content");
    writeFile("/d/g", "more");
    EXPECT_EQ(runFtp({"mv", url("/f"), url("/d/f")}), succeeded(""));
    EXPECT_EQ(runFtp({"mv", url("/d/"), url("/e/")}), succeeded(""));
    EXPECT_THAT(namesInServerFolder(fileAt("")), ElementsAre("e"));
    expectFailure(runFtp({"mv", url("/e/f"), url("/x/f")}), url("/e/f"), "550 ");
    EXPECT_EQ(runFtp({"mv", "--create-dirs", url("/e/f"), url("/x/y/f")}), succeeded(""));
    EXPECT_EQ(runFtp({"mv", "--create-dirs", url("/e"), url("/x/z/e")}), succeeded(""));
    EXPECT_THAT(namesInServerFolder(fileAt("")), ElementsAre("x"));
    EXPECT_EQ(readFile("/x/y/f"), "content");
    EXPECT_THAT(namesInServerFolder(fileAt("/x/z/e")), ElementsAre("g"));
    EXPECT_EQ(readFile("/x/z/e/g"), "more");
}

TEST_P(ToolFtp, RemovesATreeOnceTheUserHasAgreed) {
    const auto makeTree = [&] {
        writeFile("/tree/f", "");
        writeFile("/tree/a b/100%/#1?;x", "");
    };
    const std::string question = "Remove " + url("/tree") + " with all its contents? [y/N] ";
    makeTree();
    EXPECT_EQ(runFtp({"rmtree", url("/tree")}, "n\n"),
              (Outcome{1, "", question + "vantra: " + url("/tree") + ": nothing was removed.\n"}));
    EXPECT_EQ(runFtp({"rmtree", url("/tree")}),
              (Outcome{1, "", question + "\nvantra: " + url("/tree") + ": nothing was removed.\n"}));
    EXPECT_THAT(namesInServerFolder(fileAt("")), ElementsAre("tree"));
    EXPECT_EQ(runFtp({"rmtree", url("/tree")}, "y\n"), (Outcome{0, "", question}));
    EXPECT_THAT(namesInServerFolder(fileAt("")), IsEmpty());
    makeTree();
    EXPECT_EQ(runFtp({"rmtree", "--yes", url("/tree/")}), succeeded(""));
    EXPECT_THAT(namesInServerFolder(fileAt("")), IsEmpty());
}

TEST_P(ToolFtp, CountsPathsFromTheDirectoryOfTheLogin) {
    writeFile("/d/f", "content");
    EXPECT_EQ(runFtp({"get", urlFromLogin("/d/f")}), succeeded("content"));
    EXPECT_THAT(runFtp({"stat", urlFromLogin("/d")}).output, StartsWith("dir              -  "));
    EXPECT_EQ(runFtp({"mkdir", urlFromLogin("/e")}), succeeded(""));
    EXPECT_EQ(runFtp({"mv", urlFromLogin("/d/f"), urlFromLogin("/e/g")}), succeeded(""));
    EXPECT_EQ(readFile("/e/g"), "content");
    EXPECT_EQ(runFtp({"rmdir", urlFromLogin("/d")}), succeeded(""));
    EXPECT_FALSE(existsOnServer(fileAt("/d")));
    EXPECT_EQ(runFtp({"mkdir", "--create-dirs", urlFromLogin("/h/i")}), succeeded(""));
    EXPECT_EQ(runFtp({"mv", "--create-dirs", urlFromLogin("/e/g"), urlFromLogin("/h/j/k")}), succeeded(""));
    EXPECT_EQ(readFile("/h/j/k"), "content");
    EXPECT_EQ(runFtp({"mv", "--create-dirs", urlFromLogin("/h"), urlFromLogin("/l/m")}), succeeded(""));
    EXPECT_EQ(readFile("/l/m/j/k"), "content");
    EXPECT_EQ(runFtp({"rm", urlFromLogin("/l/m/j/k")}), succeeded(""));
    EXPECT_FALSE(existsOnServer(fileAt("/l/m/j/k")));
    writeFile("/l/n", "");
    EXPECT_EQ(runFtp({"rmtree", "--yes", urlFromLogin("/l")}), succeeded(""));
    EXPECT_FALSE(existsOnServer(fileAt("/l")));
}

TEST_P(ToolFtp, TakesNamesThatURLsEncode) {
    const std::string file = local_.writeFile("file", "content");
    const std::string name = "/%20a%20%3Bb%25%23%3F%E2%82%AC";
    const std::string plain = "/ a ;b%#?\xE2\x82\xAC";
    EXPECT_EQ(runFtp({"put", "--create-dirs", url(name + name), file}), succeeded(""));
    EXPECT_EQ(readFile(plain + plain), "content");
    EXPECT_EQ(runFtp({"get", url(name + name)}), succeeded("content"));
    EXPECT_TRUE(runFtp({"ls", url(name)}).output.ends_with("  " + plain.substr(1) + "\n"));
    EXPECT_EQ(runFtp({"mv", "--create-dirs", url(name + name), url("/new" + name + name)}), succeeded(""));
    EXPECT_EQ(readFile("/new" + plain + plain), "content");
    EXPECT_EQ(runFtp({"rm", url("/new" + name + name)}), succeeded(""));
    EXPECT_EQ(runFtp({"rmdir", url("/new" + name)}), succeeded(""));
    EXPECT_EQ(runFtp({"mkdir", "--create-dirs", url(name + "/b" + name)}), succeeded(""));
    EXPECT_EQ(runFtp({"rmtree", "--yes", url(name)}), succeeded(""));
    EXPECT_THAT(namesInServerFolder(fileAt("")), ElementsAre("new"));
}

TEST_P(ToolFtp, TellsThatTheLoginIsRefused) {
    const Outcome outcome = runTool({"ftp", "ls", "--user", "user", "--password-file", "-", "--cacert",
                                     server().caFile(), "--tls",
                                     GetParam().security == FtpSecurity::none          ? "none"
                                     : GetParam().security == FtpSecurity::explicitTls ? "explicit"
                                                                                       : "implicit",
                                     url("")},
                                    "wrong");
    expectFailure(outcome, url(""), "530 ");
}

TEST_P(ToolFtp, LogsTheConversationWithoutThePassword) {
    EXPECT_EQ(runFtp({"mkdir", "--log", local_.file("log"), url("/a")}), succeeded(""));
    const std::string log = local_.readFile("log");
    EXPECT_THAT(log, HasSubstr("MKD "));
    EXPECT_THAT(log, testing::Not(HasSubstr(FtpServer::password())));
}

TEST_P(ToolFtp, LogsAllTransfersOfARemovedTree) {
    writeFile("/tree/branch/leaf", "");
    EXPECT_EQ(runFtp({"rmtree", "--yes", "--log", local_.file("log"), url("/tree")}), succeeded(""));
    const std::string log = local_.readFile("log");
    EXPECT_THAT(log, testing::StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<NetRequests>\n"));
    for (const char* command : {">USER ", ">DELE ", ">RMD "}) EXPECT_THAT(log, HasSubstr(command));
    EXPECT_THAT(log, HasSubstr("/tree/branch<"));
    EXPECT_THAT(log, testing::Not(HasSubstr(FtpServer::password())));
}
