#include "MailTool.h"

#include "support/Ports.h"
#include "support/ScriptedServer.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

using namespace testsupport;
using namespace tooltest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

const std::string commonHead = "Date: DATE\r\n"
                               "From: jane@example.org\r\n"
                               "MIME-Version: 1.0\r\n"
                               "Message-ID: <ID@example.org>\r\n"
                               "Subject: x\r\n"
                               "To: joe@example.org\r\n"
                               "\r\n";
const std::string textHead = "Content-Transfer-Encoding: quoted-printable\r\n"
                             "Content-Type: text/plain; charset=utf-8\r\n";
const std::string htmlHead = "Content-Transfer-Encoding: quoted-printable\r\n"
                             "Content-Type: text/html; charset=utf-8\r\n";
const std::string partEnd = "MIME-Version: 1.0\r\n\r\n";

class ToolMail : public testing::Test {
protected:
    ToolMail() { mailServer().takeMails(); }

    std::string file(std::string_view name, std::string_view content) const {
        return folder_.writeFile(name, content);
    }

    TempDir folder_;
};

} // namespace

TEST_F(ToolMail, SendsATextWithMailsLineEnds) {
    EXPECT_EQ(sendMail({"--text", file("text", "Gr\u00fc\u00dfe\n.\r\n\nend")}), succeeded(""));
    const SmtpMail mail = takeMail();
    EXPECT_EQ(maskRandomness(mail.bytes), textHead + commonHead + "Gr=C3=BC=C3=9Fe\r\n.\r\n\r\nend\r\n");
    EXPECT_EQ(mail.from, "jane@example.org");
    EXPECT_THAT(mail.recipients, ElementsAre("joe@example.org"));
}

TEST_F(ToolMail, SendsHTML) {
    EXPECT_EQ(sendMail({"--html", file("html", "<p>\n")}), succeeded(""));
    EXPECT_EQ(maskRandomness(takeMail().bytes), htmlHead + commonHead + "<p>\r\n");
}

TEST_F(ToolMail, SendsTextAndHTMLAsAlternatives) {
    EXPECT_EQ(sendMail({"--html", file("html", "<p>\n"), "--text", file("text", "p\n")}), succeeded(""));
    EXPECT_EQ(maskRandomness(takeMail().bytes), "Content-Type: multipart/alternative; boundary=B1\r\n" +
                                                    commonHead +                                      //
                                                    "--B1\r\n" + textHead + partEnd + "p\r\n" +       //
                                                    "\r\n--B1\r\n" + htmlHead + partEnd + "<p>\r\n" + //
                                                    "\r\n--B1--\r\n");
}

TEST_F(ToolMail, AttachesFilesUnderTheirOwnNames) {
    EXPECT_EQ(sendMail({"--text", file("text", "p\n"), "--html", file("html", "<p>\n"), "--attach",
                        file("a b.PNG", std::string("\0\r\n\xff", 4)), file("sub/\u00fc.bin", ""), "--attach",
                        file("none", "hello\n")}),
              succeeded(""));
    EXPECT_EQ(maskRandomness(takeMail().bytes),
              "Content-Type: multipart/mixed; boundary=B1\r\n" + commonHead +                     //
                  "--B1\r\n" + "Content-Type: multipart/alternative; boundary=B2\r\n" + partEnd + //
                  "--B2\r\n" + textHead + partEnd + "p\r\n" +                                     //
                  "\r\n--B2\r\n" + htmlHead + partEnd + "<p>\r\n" +                               //
                  "\r\n--B2--\r\n" +                                                              //
                  "\r\n--B1\r\n" + "Content-Disposition: attachment; filename=\"a b.PNG\"\r\n" +
                  "Content-Transfer-Encoding: base64\r\nContent-Type: image/png\r\n" + partEnd + "AA0K/w==" +
                  "\r\n--B1\r\n" + "Content-Disposition: attachment; filename*=UTF-8''%C3%BC.bin\r\n" +
                  "Content-Transfer-Encoding: base64\r\nContent-Type: application/octet-stream\r\n" +
                  partEnd + "\r\n--B1\r\n" + "Content-Disposition: attachment; filename=\"none\"\r\n" +
                  "Content-Transfer-Encoding: base64\r\nContent-Type: application/octet-stream\r\n" +
                  partEnd + "aGVsbG8K" + "\r\n--B1--\r\n");
}

TEST_F(ToolMail, TakesATextFromStandardInput) {
    EXPECT_EQ(sendMail({"--text", "-"}, "from a pipe\n"), succeeded(""));
    EXPECT_EQ(maskRandomness(takeMail().bytes), textHead + commonHead + "from a pipe\r\n");
    EXPECT_EQ(sendMail({"--html", "-"}, ""), succeeded(""));
    EXPECT_EQ(maskRandomness(takeMail().bytes), htmlHead + commonHead);
}

TEST_F(ToolMail, SendsToManyRecipientsOnLinesOfTheirOwn) {
    std::vector<std::string> arguments{"--text", file("text", ""), "--to"};
    std::string expected = "To: joe@example.org";
    for (int i = 0; i < 50; ++i) {
        arguments.push_back("jim" + std::to_string(i) + "@example.org");
        expected += ",\r\n " + arguments.back();
    }
    EXPECT_EQ(sendMail(arguments), succeeded(""));
    const SmtpMail mail = takeMail();
    EXPECT_EQ(mail.recipients.size(), 51U);
    EXPECT_EQ(mail.recipients.at(50), "jim49@example.org");
    EXPECT_THAT(mail.bytes, HasSubstr("\r\n" + expected + "\r\n\r\n"));
}

namespace {

/// The field as it arrives for a subject.
std::string subjectFieldOf(const std::string& subject, const std::string& textFile) {
    EXPECT_EQ(
        runTool({"mail", "send", "--server", serverAt(mailServer().ports().plain), "--tls", "none", "--from",
                 "jane@example.org", "--to", "joe@example.org", "--subject", subject, "--text", textFile}),
        succeeded(""));
    const std::string mail = takeMail().bytes;
    const std::size_t start = mail.find("\r\nSubject: ") + 2;
    return mail.substr(start, mail.find("\r\nTo: ") - start);
}

} // namespace

TEST_F(ToolMail, EncodesASubjectThatNeedsIt) {
    const std::string text = file("text", "");
    EXPECT_EQ(subjectFieldOf("Plain, \"as\" it is", text), "Subject: Plain, \"as\" it is");
    EXPECT_EQ(subjectFieldOf("", text), "Subject: ");
    EXPECT_EQ(subjectFieldOf("Gr\u00fc\u00dfe", text), "Subject: =?utf-8?q?Gr=C3=BC=C3=9Fe?=");
    EXPECT_EQ(subjectFieldOf("=?utf-8?q?a?=", text), "Subject: =?utf-8?q?=3D=3Futf=2D8=3Fq=3Fa=3F=3D?=");
    const std::string words = subjectFieldOf(std::string(1000, 'a'), text);
    EXPECT_THAT(words, StartsWith("Subject: =?utf-8?q?" + std::string(46, 'a') + "?=\r\n =?utf-8?q?"));
}

TEST_F(ToolMail, GivesEachMailAnIdentifierOfItsOwn) {
    const std::string text = file("text", "");
    const auto identifierOfNext = [&] {
        EXPECT_EQ(sendMail({"--text", text}), succeeded(""));
        const std::string mail = takeMail().bytes;
        return mail.substr(mail.find("Message-ID: <"), 46);
    };
    EXPECT_NE(identifierOfNext(), identifierOfNext());
}

TEST_F(ToolMail, GoesOverTLSAndWithALogin) {
    const std::string password = file("password", "secret\n");
    const auto send = [&](const char* tls, std::uint16_t port) {
        return runTool({"mail", "send", "--server", serverAt(port), "--tls", tls, "--user", "user",
                        "--password-file", password, "--from", "jane@example.org", "--to", "joe@example.org",
                        "--subject", "x", "--text", file("text", "hello\n")});
    };
    const SmtpPorts& ports = mailServer().ports();
    for (const auto& [tls, port] : {std::pair{"ssl", ports.tls}, std::pair{"starttls", ports.starttls}}) {
        EXPECT_EQ(send(tls, port), succeeded(""));
        const SmtpMail mail = takeMail();
        EXPECT_EQ(maskRandomness(mail.bytes), textHead + commonHead + "hello\r\n");
        EXPECT_THAT(mail.tlsVersion, StartsWith("TLSv1."));
        EXPECT_EQ(mail.login, "user");
    }
    EXPECT_EQ(send("none", ports.plain), succeeded(""));
    EXPECT_EQ(takeMail().tlsVersion, "");
}

TEST_F(ToolMail, SaysHowTheServerRefused) {
    const std::string text = file("text", "x\n");
    const std::string url = "smtp://" + serverAt(mailServer().ports().plain) + ": ";
    EXPECT_EQ(sendMail({"--text", text, "--to", "reject@example.org"}),
              failed(url + "Failed sending data to the peer: RCPT failed: 550 (response code: smtp 550): 550 "
                           "5.1.1 has that name"));
    EXPECT_EQ(sendMail({"--text", file("text", "REJECT-DATA\n")}),
              failed(url + "Weird server reply (response code: smtp 554): 554 5.6.0 content refused"));
    EXPECT_EQ(sendMail({"--text", text, "--user", "user", "--password-file", file("password", "wrong")}),
              failed(url + "Login denied (response code: smtp 535): 535 5.7.8 Authentication credentials "
                           "invalid"));
    EXPECT_THAT(mailServer().takeMails(), IsEmpty());
}

TEST_F(ToolMail, SaysThatThereIsNoServer) {
    const RefusedPort refused;
    const Outcome outcome =
        runTool({"mail", "send", "--server", serverAt(refused.port()), "--tls", "ssl", "--from", "a@b.c",
                 "--to", "d@e.f", "--subject", "x", "--text", file("text", "")});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_THAT(outcome.error,
                StartsWith("vantra: smtps://" + serverAt(refused.port()) +
                           ": Couldn't connect to server: Failed to connect to 127.0.0.1 port "));
}

TEST_F(ToolMail, SendsNothingOfWhatItCannotRead) {
    const std::string text = file("text", "x\n");
    const std::string missing = folder_.file("missing");
    const Outcome noSuchFile =
        failed("Error opening file '" + nativeName(missing) + "': No such file or directory.");
    EXPECT_EQ(sendMail({"--text", missing}), noSuchFile);
    EXPECT_EQ(sendMail({"--html", missing}), noSuchFile);
    EXPECT_EQ(sendMail({"--text", text, "--attach", text, missing}), noSuchFile);
    EXPECT_EQ(sendMail({"--text", text, "--attach", folder_.path()}).exitStatus, 1);
    EXPECT_EQ(sendMail({"--text", text, "--user", "u", "--password-file", missing}), noSuchFile);
    const std::string latin1 = file("latin1", "Gr\xFC\xDF"
                                              "e");
    EXPECT_EQ(sendMail({"--text", latin1}),
              failed("The text in '" + nativeName(latin1) + "' is not valid UTF-8."));
    EXPECT_EQ(sendMail({"--html", "-"}, "\xFF"), failed("The text in standard input is not valid UTF-8."));
    EXPECT_THAT(mailServer().takeMails(), IsEmpty());
}

TEST_F(ToolMail, LogsTheConversationWithoutThePassword) {
    const std::string log = folder_.file("log.xml");
    EXPECT_EQ(sendMail({"--text", file("text", "x\n"), "--user", "user", "--password-file",
                        file("password", "secret"), "--log", log}),
              succeeded(""));
    takeMail();
    const std::string written = folder_.readFile("log.xml");
    EXPECT_THAT(written, HasSubstr(">RCPT TO:&lt;joe@example.org&gt;<"));
    EXPECT_THAT(written, Not(HasSubstr("secret")));
    EXPECT_THAT(written, Not(HasSubstr("c2VjcmV0")));         // secret in base64
    EXPECT_THAT(written, Not(HasSubstr("AHVzZXIAc2VjcmV0"))); // what AUTH PLAIN sends
}

TEST_F(ToolMail, EndsInTimeWhenTheServerDoesNot) {
    ScriptedServer server;
    server.play(Script().stall());
    const Outcome outcome =
        runTool({"mail", "send", "--server", serverAt(server.port()), "--tls", "none", "--timeout", "0.2",
                 "--from", "a@b.c", "--to", "d@e.f", "--subject", "x", "--text", file("text", "")});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_THAT(outcome.error,
                StartsWith("vantra: smtp://" + serverAt(server.port()) + ": Timeout was reached: "));
}
