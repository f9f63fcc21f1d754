#include "MailTool.h"

#include <gtest/gtest.h>

#include <regex>

using testsupport::SmtpMail;
using testsupport::SmtpServer;

namespace tooltest {

SmtpServer& mailServer() {
    static SmtpServer server;
    return server;
}

std::string serverAt(std::uint16_t port) { return "127.0.0.1:" + std::to_string(port); }

Outcome sendMail(const std::vector<std::string>& arguments, std::string_view standardInput) {
    std::vector<std::string> all{"mail",      "send",
                                 "--server",  serverAt(mailServer().ports().plain),
                                 "--tls",     "none",
                                 "--from",    "jane@example.org",
                                 "--to",      "joe@example.org",
                                 "--subject", "x"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return runTool(all, standardInput);
}

SmtpMail takeMail() {
    std::vector<SmtpMail> mails = mailServer().takeMails();
    EXPECT_EQ(mails.size(), 1U);
    return mails.empty() ? SmtpMail() : mails.front();
}

std::string maskRandomness(const std::string& mail) {
    static const std::regex date("Date: (Mon|Tue|Wed|Thu|Fri|Sat|Sun), [1-3]?[0-9] [A-Z][a-z]{2} 20[0-9]{2} "
                                 "[0-2][0-9]:[0-5][0-9]:[0-6][0-9] \\+0000\r\n");
    static const std::regex messageID("Message-ID: <[0-9a-f]{32}@");
    static const std::regex boundary("boundary=([0-9a-f]{10,32})");
    std::string masked = std::regex_replace(mail, date, "Date: DATE\r\n");
    masked = std::regex_replace(masked, messageID, "Message-ID: <ID@");
    std::smatch found;
    for (int number = 1; std::regex_search(masked, found, boundary); ++number) {
        const std::string value = found[1];
        const std::string name = "B" + std::to_string(number);
        for (std::size_t at = masked.find(value); at != std::string::npos; at = masked.find(value))
            masked.replace(at, value.size(), name);
    }
    return masked;
}

} // namespace tooltest
