#include "Tool.h"

#include "support/ScriptedFtpServer.h"
#include "support/ScriptedServer.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

using namespace testsupport;
using namespace tooltest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

/// An FTP server's side of the conversation up to the transfer itself.
Script ftpScript(const std::string& user, const std::string& password, std::uint16_t dataPort) {
    return Script()
        .send("220 ready\r\n")
        .expectLine("USER " + user)
        .send("331 password, please\r\n")
        .expectLine("PASS " + password)
        .send("230 come in\r\n")
        .expectLine("PWD")
        .send("257 \"/\" is here\r\n")
        .expectLine("EPSV")
        .send("229 Entering Extended Passive Mode (|||" + std::to_string(dataPort) + "|)\r\n")
        .expectLine("TYPE I")
        .send("200 binary\r\n");
}

std::string ftpURL(const ScriptedServer& server) {
    return "ftp://127.0.0.1:" + std::to_string(server.port()) + "/file.bin";
}

} // namespace

TEST(ToolFTP, FetchesAFile) {
    ScriptedServer data;
    data.play(Script().send(std::string("ftp\0\n", 5)).close());
    ScriptedServer server;
    server.play(ftpScript("me", "secret", data.port())
                    .expectLine("SIZE file.bin")
                    .send("213 5\r\n")
                    .expectLine("RETR file.bin")
                    .send("150 here it comes\r\n")
                    .send("226 done\r\n")
                    .expectLine("QUIT")
                    .send("221 bye\r\n"));
    EXPECT_EQ(runTool({"get", "--user", "me", "--password-file", "-", ftpURL(server)}, "secret"),
              succeeded(std::string("ftp\0\n", 5)));
    EXPECT_THAT(server.finish(), IsEmpty());
    EXPECT_THAT(data.finish(), IsEmpty());
}

TEST(ToolFTP, TellsTheServersReplyWhenThereIsNoFile) {
    ScriptedServer data;
    data.play(Script().stall());
    ScriptedServer server;
    server.play(ftpScript("anonymous", "ftp@example.com", data.port())
                    .expectLine("SIZE file.bin")
                    .send("550 file.bin:\x1b[1m gone\r\n")
                    .expectLine("QUIT")
                    .send("221 bye\r\n"));
    EXPECT_EQ(runTool({"get", ftpURL(server)}),
              failed(ftpURL(server) +
                     ": Remote file not found: The file does not exist (response code: ftp 550): "
                     "550 file.bin:\xEF\xBF\xBD[1m gone"));
}

TEST(ToolFTP, TellsTheServersReplyWhenTheFileCannotBeRead) {
    ScriptedServer data;
    data.play(Script().stall());
    ScriptedServer server;
    server.play(ftpScript("anonymous", "ftp@example.com", data.port())
                    .expectLine("SIZE file.bin")
                    .send("213 5\r\n")
                    .expectLine("RETR file.bin")
                    .send("450 file.bin: locked\r\n")
                    .expectLine("QUIT")
                    .send("221 bye\r\n"));
    EXPECT_EQ(runTool({"get", ftpURL(server)}),
              failed(ftpURL(server) +
                     ": FTP: couldn't retrieve (RETR failed) the specified file: RETR response: 450 "
                     "(response code: ftp 450): 450 file.bin: locked"));
}

TEST(ToolFTP, TellsTheServersReplyWhenTheLoginIsRefused) {
    ScriptedServer server;
    server.play(Script()
                    .send("220 ready\r\n")
                    .expectLine("USER me")
                    .send("331 password, please\r\n")
                    .expectLine("PASS wrong")
                    .send("530 Login incorrect.\r\n")
                    .stall());
    EXPECT_EQ(runTool({"get", "--user", "me", "--password-file", "-", ftpURL(server)}, "wrong"),
              failed(ftpURL(server) +
                     ": Login denied: Access denied: 530 (response code: ftp 530): 530 Login incorrect."));
}

TEST(ToolFTP, StoresAFile) {
    ScriptedFtpServer server;
    server.receiveAsData(7);
    TempDir folder;
    EXPECT_EQ(
        runTool({"put", "ftp://" + server.host() + "/file.bin", "-f", folder.writeFile("body", "content")}),
        succeeded(""));
    EXPECT_EQ(server.dataReceived(), "content");
    EXPECT_THAT(server.commands(), ElementsAre("USER anonymous", "PASS ftp@example.com", "PWD", "EPSV",
                                               "TYPE I", "STOR file.bin", "QUIT"));
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ToolFTP, TellsTheServersReplyWhenAFileIsRefused) {
    ScriptedFtpServer server;
    server.answer("STOR file.bin", "553 no room\r\n");
    const std::string url = "ftp://" + server.host() + "/file.bin";
    const Outcome outcome = runTool({"put", url, "-f", "-"}, "content");
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_THAT(outcome.error, HasSubstr("vantra: " + url + ": "));
    EXPECT_THAT(outcome.error, HasSubstr(" (response code: ftp 553): 553 no room\n"));
}

TEST(ToolFTP, FetchesAPartOfAFile) {
    ScriptedFtpServer server;
    server.answer("SIZE file.bin", "213 10\r\n");
    server.sendAsData("456789");
    EXPECT_EQ(runTool({"get", "--range", "4-", "ftp://" + server.host() + "/file.bin"}), succeeded("456789"));
    EXPECT_THAT(server.commands(), testing::Contains("REST 4"));
}

TEST(ToolFTP, LogsNoPassword) {
    ScriptedFtpServer server;
    server.sendAsData("0123456789");
    TempDir folder;
    const Outcome outcome = runTool({"get", "--log", folder.file("log"), "--user", "me", "--password-file",
                                     "-", "ftp://" + server.host() + "/file.bin"},
                                    "secret");
    EXPECT_EQ(outcome, succeeded("0123456789"));
    EXPECT_THAT(server.commands(), testing::Contains("PASS secret"));
    const std::string log = folder.readFile("log");
    EXPECT_THAT(log, HasSubstr(">PASS ~stripped~</send>"));
    EXPECT_THAT(log, Not(HasSubstr("secret")));
}
