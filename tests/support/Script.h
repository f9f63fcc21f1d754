/// @file support/Script.h
/// What a ScriptedServer does on one connection, step by step.
///
///     Script().expectRequest().send("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhalf").reset()
#pragma once

#include "support/Latch.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace testsupport {

class ScriptedConnection;

/// The steps for one connection. A step that fails (the client sends something else, or goes away) ends the
/// connection and is noted among the server's errors. After the last step the client is expected to close the
/// connection without sending anything more.
///
/// Thread safety: one thread at a time.
class Script {
public:
    /// Reads a request with its body by Content-Length or the chunked coding. Does not answer
    /// "Expect: 100-continue"; that takes expectHead(), send() and expectBody().
    Script& expectRequest();

    /// Reads a request up to the blank line.
    Script& expectHead();

    /// Reads the body of the request whose head was read last.
    Script& expectBody();

    /// Reads so many bytes, whatever they are.
    Script& expectBytes(std::size_t count);

    /// Reads exactly these bytes.
    Script& expectExactly(std::string bytes);

    /// Reads exactly this line, given without its CRLF.
    Script& expectLine(std::string line);

    /// Reads one line, whatever it is.
    Script& expectAnyLine();

    /// Reads up to and including a text, such as the end of mail data, "\r\n.\r\n".
    Script& expectUntil(std::string terminator);

    Script& send(std::string bytes);

    /// Sends in pieces of the given size, 1 for byte by byte, with pauses between them.
    Script& sendInChunks(std::string bytes, std::size_t chunkSize,
                         std::chrono::milliseconds pause = std::chrono::milliseconds(1));

    Script& delay(std::chrono::milliseconds time);

    /// Does nothing but read until the client goes away, which is no error and ends the script, or the latch,
    /// if any, is released.
    Script& stall(std::shared_ptr<Latch> latch = nullptr);

    /// Like stall(), without reading what the client sends.
    Script& stallWithoutReading(std::shared_ptr<Latch> latch = nullptr);

    /// Waits for the latch, whatever the client does.
    Script& waitFor(std::shared_ptr<Latch> latch);

    /// Ends the connection in order.
    Script& close();

    /// Ends the server's sending. What the client sends after that is recorded and no error.
    Script& halfClose();

    /// Ends the connection with a reset, after all bytes sent have arrived.
    Script& reset();

    /// Adds a step of the test's own.
    /// @param description what it does, for the texts of errors.
    Script& then(std::string description, std::function<void(ScriptedConnection&)> action);

    /// Plays the script; for ScriptedServer.
    /// @param notePosition is called with the description of each step before it begins.
    /// @return false if the client went away in a stall, which ended the script.
    /// @throws what the failed step threw.
    bool playOn(ScriptedConnection& connection,
                const std::function<void(const std::string&)>& notePosition) const;

private:
    struct Step {
        std::string description;
        std::function<void(ScriptedConnection&)> action;
    };

    std::vector<Step> steps_;
};

} // namespace testsupport
