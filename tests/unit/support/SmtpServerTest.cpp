#include "support/SmtpServer.h"

#include "support/TempDir.h"
#include "unit/support/Curl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace testsupport;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

class SmtpServerTest : public testing::Test {
protected:
    static void SetUpTestSuite() { server_ = std::make_unique<SmtpServer>(); }
    static void TearDownTestSuite() { server_.reset(); }
    static SmtpServer& server() { return *server_; }

    /// Lets the curl command send a mail.
    CommandResult send(const std::string& scheme, std::uint16_t port, const std::string& message,
                       std::vector<std::string> arguments) const {
        arguments.insert(arguments.end(), {scheme + "://127.0.0.1:" + std::to_string(port), "--insecure",
                                           "--upload-file", folder_.writeFile("mail", message)});
        return curl(arguments);
    }

private:
    TempDir folder_;
    static std::unique_ptr<SmtpServer> server_;
};

std::unique_ptr<SmtpServer> SmtpServerTest::server_;

} // namespace

TEST_F(SmtpServerTest, KeepsAMailAndItsEnvelope) {
    const std::string message = "Subject: x\r\n\r\n.dot\r\n..dots\r\n\xff\r\n";
    const CommandResult result =
        send("smtp", server().ports().plain, message,
             {"--mail-from", "a@b.c", "--mail-rcpt", "d@e.f", "--mail-rcpt", "g@h.i"});
    ASSERT_EQ(result.exitStatus, 0) << result.standardError;
    const std::vector<SmtpMail> mails = server().takeMails();
    ASSERT_EQ(mails.size(), 1U);
    EXPECT_EQ(mails[0].bytes, message);
    EXPECT_EQ(mails[0].from, "a@b.c");
    EXPECT_THAT(mails[0].recipients, ElementsAre("d@e.f", "g@h.i"));
    EXPECT_EQ(mails[0].tlsVersion, "");
    EXPECT_EQ(mails[0].login, "");
    EXPECT_GT(mails[0].clientPort, 0);
    EXPECT_THAT(server().takeMails(), IsEmpty());
}

TEST_F(SmtpServerTest, NotesTLSAndLogin) {
    const std::vector<std::string> arguments{"--mail-from",
                                             "a@b.c",
                                             "--mail-rcpt",
                                             "d@e.f",
                                             "--ssl-reqd",
                                             "--user",
                                             SmtpServer::userName() + ":" + SmtpServer::password()};
    EXPECT_EQ(send("smtp", server().ports().starttls, "x\r\n", arguments).exitStatus, 0);
    EXPECT_EQ(send("smtps", server().ports().tls, "x\r\n", arguments).exitStatus, 0);
    const std::vector<SmtpMail> mails = server().takeMails();
    ASSERT_EQ(mails.size(), 2U);
    for (const SmtpMail& mail : mails) {
        EXPECT_THAT(mail.tlsVersion, StartsWith("TLSv1."));
        EXPECT_EQ(mail.login, "user");
    }
}

TEST_F(SmtpServerTest, RefusesWhatItShall) {
    const auto refusal = [&](const std::string& from, const std::string& recipient, const std::string& text) {
        return send("smtp", server().ports().plain, text,
                    {"--verbose", "--mail-from", from, "--mail-rcpt", recipient})
            .standardError;
    };
    EXPECT_THAT(refusal("badsender@b.c", "d@e.f", "x\r\n"), HasSubstr("< 553 5.1.8 sender refused"));
    EXPECT_THAT(refusal("a@b.c", "reject@e.f", "x\r\n"), HasSubstr("< 550 5.1.1 has that name"));
    EXPECT_THAT(refusal("a@b.c", "tempfail@e.f", "x\r\n"), HasSubstr("< 451 4.3.0 try later"));
    EXPECT_THAT(refusal("a@b.c", "d@e.f", "REJECT-DATA\r\n"), HasSubstr("< 554 5.6.0 content refused"));
    EXPECT_THAT(send("smtp", server().ports().plain, "x\r\n",
                     {"--verbose", "--mail-from", "a@b.c", "--mail-rcpt", "d@e.f", "--user", "user:wrong"})
                    .standardError,
                HasSubstr("< 535 "));
    EXPECT_THAT(send("smtp", server().ports().starttls, "x\r\n",
                     {"--verbose", "--mail-from", "a@b.c", "--mail-rcpt", "d@e.f"})
                    .standardError,
                HasSubstr("< 530 "));
    EXPECT_THAT(server().takeMails(), IsEmpty());
}
