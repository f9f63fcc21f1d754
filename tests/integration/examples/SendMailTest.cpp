#include "Document.h"
#include "Example.h"

#include "support/SmtpServer.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

using namespace testsupport;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

SmtpServer& mailServer() {
    static SmtpServer server;
    return server;
}

Environment environment() {
    return {{"SMTP_USER", SmtpServer::userName()},
            {"SMTP_PASSWORD", SmtpServer::password()},
            {"SSL_CERT_FILE", mailServer().caFile()}};
}

std::vector<std::string> makeArguments(const std::string& to, const std::string& subject,
                                       const std::string& file) {
    return {"localhost", std::to_string(mailServer().ports().starttls), "jane@example.org", to, subject,
            file};
}

/// Prints what a parser of another make finds in the mail on standard input, and saves the attached file.
constexpr const char* readMail = R"(
import email, email.policy, sys
mail = email.message_from_bytes(sys.stdin.buffer.read(), policy=email.policy.default)
text, file = mail.iter_parts()
print(mail["From"], mail["To"], mail["Subject"], sep="\n")
print(text.get_content_type(), text.get_content(), end="")
print(file.get_content_disposition(), file.get_filename())
open(sys.argv[1], "wb").write(file.get_content())
)";

} // namespace

TEST(SendMail, BringsTextAndFile) {
    const TempDir folder;
    const std::string name = "Bericht \u65e5\u672c \U0001F680.bin";
    folder.writeFile(name, NginxServer::bigContent());
    mailServer().takeMails();
    EXPECT_EQ(runExample("send_mail",
                         makeArguments("joe@example.org", "Gr\u00fc\u00dfe \U0001F680", folder.file(name)),
                         environment(), "Sch\u00f6nen Tag!\n.\nJane\n"),
              (Outcome{0, documentedOutput("docs/mail.md", "send_mail"), ""}));

    const std::vector<SmtpMail> mails = mailServer().takeMails();
    ASSERT_EQ(mails.size(), 1U);
    EXPECT_EQ(mails[0].from, "jane@example.org");
    EXPECT_THAT(mails[0].recipients, ElementsAre("joe@example.org"));
    EXPECT_EQ(mails[0].login, SmtpServer::userName());
    EXPECT_THAT(mails[0].tlsVersion, testing::StartsWith("TLS"));
    const CommandResult read = runCommand(
        {"/usr/bin/python3", "-I", "-X", "utf8", "-c", readMail, folder.file("saved")}, mails[0].bytes);
    EXPECT_EQ(read.standardError, "");
    EXPECT_EQ(read.standardOutput, "jane@example.org\njoe@example.org\nGr\u00fc\u00dfe \U0001F680\n"
                                   "text/plain Sch\u00f6nen Tag!\r\n.\r\nJane\r\nattachment " +
                                       name + "\n");
    EXPECT_TRUE(folder.readFile("saved") == NginxServer::bigContent());
}

TEST(SendMail, SaysWhatFailed) {
    const TempDir folder;
    const std::string file = folder.writeFile("a.txt", "a");
    mailServer().takeMails();
    const auto expectFailure = [&](const std::vector<std::string>& arguments, const Environment& settings,
                                   const std::string& message) {
        const Outcome outcome = runExample("send_mail", arguments, settings, "text\n");
        EXPECT_EQ(outcome.exitStatus, 1) << message;
        EXPECT_EQ(outcome.output, "") << message;
        EXPECT_THAT(outcome.error, HasSubstr(message));
    };
    expectFailure(makeArguments("reject@example.org", "x", file), environment(), "smtp 550");
    expectFailure(makeArguments("no address", "x", file), environment(), "'no address' is no mail address.");
    expectFailure(makeArguments("joe@example.org", "x\r\nBcc: eve@example.org", file), environment(),
                  "The subject holds a line break.");
    expectFailure(makeArguments("joe@example.org", "x", folder.file("none")), environment(),
                  "No such file or directory");

    Environment wrongPassword = environment();
    wrongPassword["SMTP_PASSWORD"] = "wrong";
    expectFailure(makeArguments("joe@example.org", "x", file), wrongPassword, "smtp 535");
    Environment noPassword = environment();
    noPassword["SMTP_PASSWORD"] = std::nullopt;
    expectFailure(makeArguments("joe@example.org", "x", file), noPassword,
                  "SMTP_PASSWORD is not set in the environment.");
    Environment noTrust = environment();
    noTrust["SSL_CERT_FILE"] = std::nullopt;
    expectFailure(makeArguments("joe@example.org", "x", file), noTrust,
                  "SSL peer certificate or SSH remote key was not OK");
    EXPECT_THAT(mailServer().takeMails(), IsEmpty());
}
