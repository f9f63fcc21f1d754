#include "MailTool.h"

#include "support/Ports.h"
#include "support/ScriptedServer.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

using namespace testsupport;
using namespace tooltest;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

const std::string extensions = "  SIZE 33554432\n"
                               "  8BITMIME\n"
                               "  SMTPUTF8\n"
                               "  AUTH LOGIN PLAIN\n"
                               "  HELP\n";

} // namespace

TEST(ToolMailTest, TellsWhatTheServerIsAndThatTheLoginWorks) {
    const SmtpPorts& ports = mailServer().ports();
    TempDir folder;
    const std::string password = folder.writeFile("password", "secret\n");
    mailServer().takeMails();
    EXPECT_EQ(runTool({"mail", "test", "--server", serverAt(ports.starttls), "--tls", "starttls", "--user",
                       "user", "--password-file", password}),
              succeeded("smtp://" + serverAt(ports.starttls) + ": mail.test test mail server\n" + extensions +
                        "logged in as user\n"));
    EXPECT_EQ(runTool({"mail", "test", "--server", serverAt(ports.tls), "--tls", "ssl", "--user", "user",
                       "--password-file", "-"},
                      "secret\n"),
              succeeded("smtps://" + serverAt(ports.tls) + ": mail.test test mail server\n" + extensions +
                        "logged in as user\n"));
    EXPECT_EQ(runTool({"mail", "test", "--server", serverAt(ports.plain), "--tls", "none"}),
              succeeded("smtp://" + serverAt(ports.plain) + ": mail.test test mail server\n" + extensions +
                        "not logged in\n"));
    EXPECT_THAT(mailServer().takeMails(), IsEmpty());
}

TEST(ToolMailTest, SaysWhatDoesNotWork) {
    const SmtpPorts& ports = mailServer().ports();
    EXPECT_EQ(
        runTool({"mail", "test", "--server", serverAt(ports.plain), "--tls", "none", "--user", "user",
                 "--password-file", "-"},
                "wrong"),
        failed("smtp://" + serverAt(ports.plain) +
               ": Login denied (response code: smtp 535): 535 5.7.8 Authentication credentials invalid"));
    EXPECT_EQ(
        runTool({"mail", "test", "--server", serverAt(ports.plain), "--tls", "starttls"}),
        failed("smtp://" + serverAt(ports.plain) +
               ": Requested SSL level failed: STARTTLS not supported. (response code: smtp 250): 250 HELP"));
    const RefusedPort refused;
    EXPECT_EQ(runTool({"mail", "test", "--server", serverAt(refused.port()), "--tls", "none"}).exitStatus, 1);
}

TEST(ToolMailTest, ShowsNoControlCharactersOfTheServer) {
    ScriptedServer server;
    server.play(Script()
                    .send("220-first\x1b[2J\r\n220 second\r\n")
                    .expectAnyLine()
                    .send("250-me\r\n250 A\x07Z\r\n")
                    .then("read on", [](ScriptedConnection& connection) { connection.stall(); }));
    EXPECT_EQ(runTool({"mail", "test", "--server", serverAt(server.port()), "--tls", "none"}),
              succeeded("smtp://" + serverAt(server.port()) +
                        ": first\xEF\xBF\xBD[2J\n  A\xEF\xBF\xBDZ\nnot "
                        "logged in\n"));
}

TEST(ToolMailTest, TellsOfAServerWithoutExtensions) {
    ScriptedServer server;
    server.play(Script()
                    .send("220 old\r\n")
                    .expectAnyLine()
                    .send("250 me\r\n")
                    .then("read on", [](ScriptedConnection& connection) { connection.stall(); }));
    EXPECT_EQ(runTool({"mail", "test", "--server", serverAt(server.port()), "--tls", "none"}),
              succeeded("smtp://" + serverAt(server.port()) + ": old\nnot logged in\n"));
}
