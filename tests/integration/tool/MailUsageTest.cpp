#include "MailTool.h"
#include "System.h"

#include <gmock/gmock.h>

using namespace tooltest;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

/// Runs "vantra mail send" with one of its options as given, and the others such that nothing else is wrong.
/// Nobody listens on the server's port.
Outcome sendWith(const std::string& option, const std::string& value) {
    std::vector<std::string> arguments{"mail", "send", option, value};
    const std::pair<const char*, std::string> others[] = {
        {"--server", "127.0.0.1:1"}, {"--tls", "none"},  {"--from", "jane@example.org"},
        {"--to", "joe@example.org"}, {"--subject", "x"}, {"--text", nullDevice()}};
    for (const auto& [name, other] : others)
        if (name != option) arguments.insert(arguments.end(), {name, other});
    return runTool(arguments);
}

} // namespace

TEST(ToolMailUsage, HelpsWithTheGroupAndWithEachVerb) {
    EXPECT_EQ(
        runTool({"mail", "--help"}),
        succeeded("Send mail, and try mail servers\n"
                  "Usage: vantra mail [OPTIONS] [VERB]\n"
                  "\n"
                  "Options:\n"
                  "  -h,--help                   Print this help message and exit\n"
                  "\n"
                  "Verbs:\n"
                  "  send                        Send a mail with text, HTML and attached files\n"
                  "  test                        Connect to a mail server, log in, and tell what it is\n"
                  "\n"
                  "vantra mail VERB --help tells a verb's options.\n"));
    EXPECT_THAT(
        runTool({"mail", "send", "--help"}).output,
        StartsWith("Send a mail with text, HTML and attached files\nUsage: vantra mail send [OPTIONS]\n"));
    EXPECT_THAT(runTool({"mail", "test", "--help"}).output,
                StartsWith("Connect to a mail server, log in, and tell what it is\nUsage: vantra mail test "
                           "[OPTIONS]\n"));
    EXPECT_THAT(runTool({"--help"}).output,
                HasSubstr("\n  mail                        Send mail, and try mail "
                          "servers\n"));
}

TEST(ToolMailUsage, NeedsAVerb) {
    EXPECT_EQ(runTool({"mail"}), refused("no verb was given; vantra mail --help lists them"));
    EXPECT_EQ(runTool({"mail", "read"}), refused("The following argument was not expected: read"));
}

TEST(ToolMailUsage, NeedsEverythingThatMakesAMail) {
    const std::vector<std::string> all{"--server",  "127.0.0.1:1", "--tls",  "none",
                                       "--from",    "a@b.c",       "--to",   "d@e.f",
                                       "--subject", "x",           "--text", nullDevice()};
    for (std::size_t left = 0; left + 2 < all.size(); left += 2) {
        std::vector<std::string> arguments{"mail", "send"};
        for (std::size_t i = 0; i < all.size(); ++i)
            if (i / 2 != left / 2) arguments.push_back(all[i]);
        EXPECT_EQ(runTool(arguments), refused(all[left] + " is required"));
    }
    EXPECT_EQ(runTool({"mail", "send", "--server", "127.0.0.1:1", "--tls", "none", "--from", "a@b.c", "--to",
                       "d@e.f", "--subject", "x"}),
              refused("the mail has no body; give one with --text or --html"));
    EXPECT_EQ(runTool({"mail", "test", "--tls", "none"}), refused("--server is required"));
    EXPECT_EQ(runTool({"mail", "test", "--server", "127.0.0.1:1"}), refused("--tls is required"));
}

TEST(ToolMailUsage, RefusesLineBreaks) {
    const std::string control = ": must not contain line breaks or other control characters";
    for (const char* const lineBreak : {"\n", "\r\n", "\r", "\x7F", "\t"}) {
        EXPECT_EQ(sendWith("--subject", std::string("a") + lineBreak + "Bcc: x@y.z"),
                  refused("--subject" + control));
        EXPECT_EQ(sendWith("--from", std::string("a@b.c") + lineBreak + "x"), refused("--from" + control));
        EXPECT_EQ(sendWith("--to", std::string("a@b.c>") + lineBreak + "RCPT TO:<d@e.f"),
                  refused("--to" + control));
    }
}

TEST(ToolMailUsage, RefusesAddressesThatAreNone) {
    for (const char* const text :
         {"", "jane", "jane@host", "@example.org", "Jane <jane@example.org>", "a@b@c.d"}) {
        const std::string message = std::string(": '") + text + "' is not an e-mail address";
        EXPECT_EQ(sendWith("--from", text), refused("--from" + message));
        EXPECT_EQ(sendWith("--to", text), refused("--to" + message));
    }
}

TEST(ToolMailUsage, RefusesServersThatAreNone) {
    for (const char* const text :
         {"", "mail.example", "mail.example:", ":25", "mail.example:0", "mail.example:65536",
          "mail.example:-1", "mail.example:smtp", "user@mail.example:25", "mail.example/path:25",
          "smtp://mail.example:25", "a b:25", "m\u00fcller.example:25", "::1:25", "[]:25", "[x y]:25",
          "mail.example:000025", "mail.example\n:25"}) {
        const std::string shown = std::string(text) == "mail.example\n:25" ? "mail.example :25" : text;
        EXPECT_EQ(sendWith("--server", text),
                  refused("--server: '" + shown + "' is not HOST:PORT, such as mail.example:587"));
    }
    for (const char* const text : {"127.0.0.1:1", "[::1]:1", "localhost:1", "LOCALHOST:00001"})
        EXPECT_EQ(sendWith("--server", text).exitStatus, 1) << text;
}

TEST(ToolMailUsage, RefusesOtherKindsOfTLS) {
    for (const char* const text : {"", "SSL", "tls", "unencrypted", "yes"})
        EXPECT_EQ(sendWith("--tls", text),
                  refused(std::string("--tls: '") + text + "' is none of none, ssl and starttls"));
}

TEST(ToolMailUsage, RefusesFilesThatAreNone) {
    for (const char* const option : {"--text", "--html", "--attach", "--log"}) {
        EXPECT_EQ(sendWith(option, ""), refused(std::string(option) + ": must not be empty"));
        EXPECT_EQ(sendWith(option, "folder/"),
                  refused(std::string(option) + ": 'folder/' names a folder, not a file"));
    }
    EXPECT_EQ(sendWith("--attach", "-"), refused("--attach: must name a file"));
}

TEST(ToolMailUsage, ReadsStandardInputOnce) {
    const std::string message = "standard input can be only one of --text, --html and --password-file";
    const std::vector<std::string> start{"mail",   "send",  "--server", "127.0.0.1:1", "--tls",     "none",
                                         "--from", "a@b.c", "--to",     "d@e.f",       "--subject", "x"};
    const auto runWith = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), start.begin(), start.end());
        return runTool(arguments);
    };
    EXPECT_EQ(runWith({"--text", "-", "--html", "-"}), refused(message));
    EXPECT_EQ(runWith({"--text", "-", "--user", "u", "--password-file", "-"}), refused(message));
    EXPECT_EQ(runWith({"--html", "-", "--user", "u", "--password-file", "-"}), refused(message));
}
