#include "MailTool.h"
#include "Tool.h"

#include "support/TempDir.h"

#include <gmock/gmock.h>

using namespace testsupport;
using namespace tooltest;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/// A name with letters that few code pages have, and one from outside of Unicode's basic plane.
constexpr const char* name = "Gr\u00f6\u00dfe \u65e5\u672c \u20ac \U0001F418.bin";
constexpr const char* escapedName = "Gr%C3%B6%C3%9Fe%20%E6%97%A5%E6%9C%AC%20%E2%82%AC%20%F0%9F%90%98.bin";
const std::string content("\0\r\n\xff\x1a more", 10);

} // namespace

TEST(ToolFileName, MayHaveAnyLettersWhereABodyGoes) {
    NginxServer& server = webServer();
    const TempDir folder;
    EXPECT_EQ(runTool({"get", "-o", folder.file(name), server.url("/hello.txt")}), succeeded(""));
    EXPECT_EQ(folder.readFile(name), NginxServer::helloContent());
    EXPECT_THAT(filesIn(folder.path()), ElementsAre(name));
}

TEST(ToolFileName, MayHaveAnyLettersWhereABodyComesFrom) {
    NginxServer& server = webServer();
    const TempDir folder;
    const std::string file = folder.writeFile(name, content);
    EXPECT_EQ(runTool({"put", "-f", file, server.url("/put/any-letters")}), succeeded(""));
    EXPECT_EQ(server.fileContent("put/any-letters"), content);
}

TEST(ToolFileName, MayHaveAnyLettersInTheFolderOfManyDownloads) {
    NginxServer& server = webServer();
    const TempDir folder;
    folder.writeFile(std::string(name) + "/kept", "");
    EXPECT_EQ(runTool({"get-all", "-d", folder.file(name), server.url("/hello.txt")}), succeeded(""));
    EXPECT_EQ(folder.readFile(std::string(name) + "/hello.txt"), NginxServer::helloContent());
}

TEST(ToolFileName, MayHaveAnyLettersInAnErrorMessage) {
    const TempDir folder;
    EXPECT_EQ(
        runTool({"put", "-f", folder.file(name), "http://127.0.0.1:1/"}),
        failed("Error opening file '" + nativeName(folder.file(name)) + "': No such file or directory."));
}

TEST(ToolFileName, MayHaveAnyLettersInAnAttachment) {
    const TempDir folder;
    EXPECT_EQ(
        sendMail({"--text", folder.writeFile("text", "x"), "--attach", folder.writeFile(name, content)}),
        succeeded(""));
    EXPECT_THAT(takeMail().bytes, HasSubstr("Content-Disposition: attachment; filename*=UTF-8''" +
                                            std::string(escapedName) + "\r\n"));
}
