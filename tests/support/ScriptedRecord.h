/// @file support/ScriptedRecord.h
/// What a ScriptedServer remembers; its connections write here and the test reads.
#pragma once

#include "support/HttpRequest.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace testsupport {

/// The record of one ScriptedServer.
///
/// Thread safety: any thread may call any member.
class ScriptedRecord {
public:
    /// Notes a new connection.
    /// @param isAwaited whether allDone() waits for it.
    /// @return its number, from 0.
    std::size_t addConnection(bool isAwaited);

    void addReceived(std::size_t connection, std::string_view bytes);

    /// Notes a request whose head has come.
    /// @return its number, for completeRequest().
    std::size_t addRequest(HttpRequest request);

    void completeRequest(std::size_t request, std::string body);

    /// Notes what a connection is at, for the texts of errors.
    void setActivity(std::size_t connection, std::string activity);

    /// Notes an error of a connection, with what it was at.
    void addError(std::size_t connection, std::string_view error);

    /// Notes an error of the server itself.
    void addServerError(std::string error);

    /// Notes that a connection has played its script to the end.
    void setDone(std::size_t connection);

    std::size_t connectionCount() const;
    std::string received(std::size_t connection) const;
    std::vector<HttpRequest> requests() const;
    std::vector<std::string> errors() const;

    bool waitForConnections(std::size_t count, std::chrono::milliseconds limit);

    /// Waits until so many requests have come as a whole.
    bool waitForRequests(std::size_t count, std::chrono::milliseconds limit);

    /// Waits until no awaited connection is at work.
    /// @return a text for each that still is when the limit has passed.
    std::vector<std::string> waitUntilDone(std::chrono::nanoseconds limit);

private:
    struct Connection {
        std::string received;
        std::string activity;
        bool isAwaited;
        bool isDone = false;
    };

    bool isAnyAtWork() const;
    std::string nameOf(std::size_t connection) const;

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Connection> connections_;
    std::vector<HttpRequest> requests_;
    std::vector<std::string> errors_;
};

} // namespace testsupport
