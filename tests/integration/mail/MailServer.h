/// @file MailServer.h
/// The mail server that the tests of this program share, and clients for it.
#pragma once

#include <vantra/vantra.h>

#include "support/SmtpServer.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// Started for the first test that asks for it, stopped at the end of the program.
testsupport::SmtpServer& mailServer();

/// The server's port for a kind of connection, without a login or with the right one.
vantra::CSMTPParams makeParams(vantra::CSMTPParams::ConnectType type, bool withLogin);

kel::P<vantra::CSMTPClient> makeClient(vantra::CSMTPParams::ConnectType type, bool withLogin);

kel::P<kel::TBuffer<unsigned char>> makeBuffer(std::string_view bytes);

/// Sends a mail to joe@example.org.
void sendMail(vantra::CSMTPClient& client, std::string_view message);

/// Calls a function that must fail with a CCURLError, and returns that.
vantra::CCURLError errorOf(const std::function<void()>& function);

/// Tests against a server that has no mail yet.
class Mail : public testing::Test {
protected:
    Mail() { mailServer().takeMails(); }

    static std::vector<testsupport::SmtpMail> takeMails() { return mailServer().takeMails(); }
};
