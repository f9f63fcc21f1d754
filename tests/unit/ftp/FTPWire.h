/// @file FTPWire.h
/// Requests performed by libcurl itself against an FTP server inside the test.
#pragma once

#include "vantra/FTPClient.h"

#include "support/ScriptedFtpServer.h"

#include <kel/P.h>
#include <kel/String.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace vantra::test {

/// A client of a server that says yes to everything, and the bytes that reach the server.
class FTPWire : public testing::Test {
protected:
    void TearDown() override {
        request_ = nullptr; // closes its connections
        EXPECT_THAT(server_.finish(), testing::IsEmpty());
    }

    /// What the control connection has received since the last time. The first time leaves out the login,
    /// which is always the same.
    std::string takeConversation() {
        static const std::string login = "USER u\r\nPASS p\r\nPWD\r\n";
        const std::string received = server_.received();
        if (taken_ == 0) {
            EXPECT_TRUE(received.starts_with(login)) << received;
            taken_ = login.size();
        }
        std::string conversation = received.substr(taken_);
        taken_ = received.size();
        return conversation;
    }

    testsupport::ScriptedFtpServer server_;
    CFTPClient client_{kel::String(server_.host()), "u", "p", CFTPClient::ConnectUnencrypted};
    kel::P<CNetRequest> request_ = new CNetRequest();

private:
    std::size_t taken_ = 0;
};

} // namespace vantra::test
