#include "support/Script.h"

#include "support/ScriptedConnection.h"

#include <utility>

namespace testsupport {

namespace {

/// Ends a script before its last step without that being an error.
struct ScriptEnded {};

void requireEqual(const std::string& received, const std::string& expected) {
    if (received != expected) {
        throw UnexpectedBytes("expected " + quoted(expected) + ", received " + quoted(received));
    }
}

template <typename Request>
void requireRequest(const Request& request) {
    if (!request) throw ClientGone("the client closed the connection instead of sending a request");
}

std::string bytesText(std::size_t count) { return std::to_string(count) + (count == 1 ? " byte" : " bytes"); }

} // namespace

Script& Script::then(std::string description, std::function<void(ScriptedConnection&)> action) {
    steps_.push_back({std::move(description), std::move(action)});
    return *this;
}

Script& Script::expectRequest() {
    return then("expect a request",
                [](ScriptedConnection& connection) { requireRequest(connection.readRequest()); });
}

Script& Script::expectHead() {
    return then("expect a request's head",
                [](ScriptedConnection& connection) { requireRequest(connection.readHead()); });
}

Script& Script::expectBody() {
    return then("expect a request's body", [](ScriptedConnection& connection) { connection.readBody(); });
}

Script& Script::expectBytes(std::size_t count) {
    return then("expect " + bytesText(count),
                [count](ScriptedConnection& connection) { connection.readBytes(count); });
}

Script& Script::expectExactly(std::string bytes) {
    std::string description = "expect " + quoted(bytes);
    return then(std::move(description), [bytes = std::move(bytes)](ScriptedConnection& connection) {
        requireEqual(connection.readBytes(bytes.size()), bytes);
    });
}

Script& Script::expectLine(std::string line) {
    std::string description = "expect the line " + quoted(line);
    return then(std::move(description), [line = std::move(line)](ScriptedConnection& connection) {
        requireEqual(connection.readLine(), line);
    });
}

Script& Script::expectAnyLine() {
    return then("expect a line", [](ScriptedConnection& connection) { connection.readLine(); });
}

Script& Script::expectUntil(std::string terminator) {
    std::string description = "expect anything up to " + quoted(terminator);
    return then(std::move(description), [terminator = std::move(terminator)](ScriptedConnection& connection) {
        connection.readUntil(terminator);
    });
}

Script& Script::send(std::string bytes) {
    std::string description = "send " + bytesText(bytes.size());
    return then(std::move(description),
                [bytes = std::move(bytes)](ScriptedConnection& connection) { connection.send(bytes); });
}

Script& Script::sendInChunks(std::string bytes, std::size_t chunkSize, std::chrono::milliseconds pause) {
    std::string description =
        "send " + bytesText(bytes.size()) + " in chunks of " + std::to_string(chunkSize);
    return then(std::move(description),
                [bytes = std::move(bytes), chunkSize, pause](ScriptedConnection& connection) {
                    connection.sendInChunks(bytes, chunkSize, pause);
                });
}

Script& Script::delay(std::chrono::milliseconds time) {
    return then("delay", [time](ScriptedConnection& connection) { connection.delay(time); });
}

Script& Script::stall(std::shared_ptr<Latch> latch) {
    return then("stall", [latch = std::move(latch)](ScriptedConnection& connection) {
        if (!connection.stall(latch)) throw ScriptEnded();
    });
}

Script& Script::stallWithoutReading(std::shared_ptr<Latch> latch) {
    return then("stall without reading", [latch = std::move(latch)](ScriptedConnection& connection) {
        if (!connection.stallWithoutReading(latch)) throw ScriptEnded();
    });
}

Script& Script::waitFor(std::shared_ptr<Latch> latch) {
    return then("wait for a latch",
                [latch = std::move(latch)](ScriptedConnection& connection) { connection.waitFor(latch); });
}

Script& Script::close() {
    return then("close", [](ScriptedConnection& connection) { connection.close(); });
}

Script& Script::halfClose() {
    return then("half-close", [](ScriptedConnection& connection) { connection.halfClose(); });
}

Script& Script::reset() {
    return then("reset", [](ScriptedConnection& connection) { connection.reset(); });
}

bool Script::playOn(ScriptedConnection& connection,
                    const std::function<void(const std::string&)>& notePosition) const {
    const std::string count = std::to_string(steps_.size());
    try {
        for (std::size_t index = 0; index < steps_.size(); ++index) {
            notePosition("step " + std::to_string(index + 1) + " of " + count + " (" +
                         steps_[index].description + ")");
            steps_[index].action(connection);
        }
        return true;
    } catch (const ScriptEnded&) {
        return false;
    }
}

} // namespace testsupport
