/// @file support/ScriptedFtpServer.h
/// An FTP server inside the test which says yes to everything, unless told otherwise.
///
///     ScriptedFtpServer server;
///     server.sendAsData("type=file;size=3; x\r\n");
///     server.answer("DELE /x", "550 no\r\n");
///     ...
///     EXPECT_EQ(server.commands(), (std::vector<std::string>{"USER me", "PASS secret", "PWD", ...}));
#pragma once

#include "support/Script.h"
#include "support/ScriptedConnection.h"
#include "support/ScriptedServer.h"

#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace testsupport {

/// A server that plays an FTP conversation on a free port of 127.0.0.1, with the login directory "/". It has
/// no files: what it sends over a data connection is what the test has put in, and each command gets the
/// reply that a willing server gives.
///
/// Thread safety: any thread may call any member but the destructor.
class ScriptedFtpServer {
public:
    ScriptedFtpServer();

    std::uint16_t port() const { return control_.port(); }

    /// "127.0.0.1:<port>".
    std::string host() const;

    /// Replies to a command in the test's way when it comes for the next time, once. Several replies for one
    /// command are given in order.
    /// @param line the whole command, without CRLF.
    /// @param reply whole lines. Empty: the control connection is closed instead.
    void answer(std::string_view line, std::string_view reply);

    /// Queues the bytes for the next data connection that needs some.
    void sendAsData(std::string bytes);

    /// Lets the next data connection take so many bytes, from then on the client has to close it.
    void receiveAsData(std::size_t count);

    /// What came over the control connection of this number so far, byte for byte.
    std::string received(std::size_t connection = 0) const { return control_.received(connection); }

    /// The commands in received(), without CRLF.
    std::vector<std::string> commands(std::size_t connection = 0) const;

    /// How many control connections there were.
    std::size_t connectionCount() const { return control_.connectionCount(); }

    /// What came over the data connection of this number, once all those that were queued are over.
    std::string dataReceived(std::size_t connection = 0);

    /// What went wrong on the data connections; see ScriptedServer::finish().
    std::vector<std::string> finish() { return data_.finish(); }

private:
    void serve(ScriptedConnection& connection);
    std::string replyTo(const std::string& line);

    std::mutex mutex_;
    std::map<std::string, std::deque<std::string>, std::less<>> answers_;
    ScriptedServer data_;
    ScriptedServer control_; // last: its threads use the members above
};

} // namespace testsupport
