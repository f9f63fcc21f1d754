#include "LogRedaction.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using kel::CXMLElement;
using kel::P;
using testing::ElementsAre;
using vantra::tool::redactPasswords;

namespace {

/// A log with messages such as {"send", "PASS secret"}; the texts after redaction.
std::vector<std::string> redact(const std::vector<std::pair<const char*, const char*>>& messages,
                                const char* type = "header") {
    const P<CXMLElement> log = new CXMLElement("NetRequest");
    for (const auto& [name, text] : messages) {
        const P<CXMLElement> message = new CXMLElement(name);
        message->addAttribute("type", type);
        message->setText(text);
        log->addChild(message);
    }
    redactPasswords(*log);
    std::vector<std::string> texts;
    for (const P<CXMLElement>& message : log->getChildren()) texts.push_back(message->getText().toUTF8());
    return texts;
}

} // namespace

TEST(LogRedaction, StripsEveryAuthorizationHeaderOfARequest) {
    EXPECT_THAT(redact({{"send", "GET / HTTP/1.1\r\nHost: h\r\nProxy-Authorization: Basic YTpi\r\n"
                                 "authorization: Digest response=\"x\"\r\nAccept: */*"}}),
                ElementsAre("GET / HTTP/1.1\r\nHost: h\r\nProxy-Authorization: ~stripped~\n"
                            "authorization: ~stripped~\nAccept: */*"));
    EXPECT_THAT(redact({{"send", "X-Custom-Authorization: token"}}),
                ElementsAre("X-Custom-Authorization: ~stripped~"));
}

TEST(LogRedaction, StripsThePasswordOfFTP) {
    EXPECT_THAT(
        redact({{"send", "USER me"}, {"receive", "331 go on"}, {"send", "PASS secret"}, {"send", "PWD"}}),
        ElementsAre("USER me", "331 go on", "PASS ~stripped~", "PWD"));
}

TEST(LogRedaction, StripsWhatSMTPLogsInWith) {
    EXPECT_THAT(redact({{"send", "EHLO h"}, {"send", "AUTH PLAIN AGEAYg=="}, {"receive", "235 ok"}}),
                ElementsAre("EHLO h", "AUTH PLAIN ~stripped~", "235 ok"));
    EXPECT_THAT(redact({{"send", "AUTH LOGIN"},
                        {"receive", "334 VXNlcm5hbWU6"},
                        {"send", "YQ=="},
                        {"receive", "334 UGFzc3dvcmQ6"},
                        {"send", "Yg=="},
                        {"receive", "235 ok"},
                        {"send", "MAIL FROM:<a@b.example>"}}),
                ElementsAre("AUTH LOGIN", "334 VXNlcm5hbWU6", "~stripped~", "334 UGFzc3dvcmQ6", "~stripped~",
                            "235 ok", "MAIL FROM:<a@b.example>"));
}

TEST(LogRedaction, LeavesEverythingElse) {
    EXPECT_THAT(redact({{"receive", "PASS word"}, {"send", "AUTH TLS"}, {"send", "X: authorization: no"}}),
                ElementsAre("PASS word", "AUTH TLS", "X: authorization: no"));
    EXPECT_THAT(redact({{"send", "PASS me by"}}, "data"), ElementsAre("PASS me by"));
}
