/// @file MailTool.h
/// Running the verbs of mail.
#pragma once

#include "Tool.h"

#include "support/SmtpServer.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tooltest {

/// The mail server that all tests share.
testsupport::SmtpServer& mailServer();

/// "127.0.0.1:<port>".
std::string serverAt(std::uint16_t port);

/// Runs "vantra mail send" on the server's port without TLS, from jane@example.org to joe@example.org about
/// "x", with these arguments too.
Outcome sendMail(const std::vector<std::string>& arguments, std::string_view standardInput = {});

/// The one mail that has arrived since the last call; fails the test when there is none or more.
testsupport::SmtpMail takeMail();

/// The mail's text with DATE, ID, B1, B2 and so on in place of the date, the Message-ID's left side and the
/// boundaries.
std::string maskRandomness(const std::string& mail);

} // namespace tooltest
