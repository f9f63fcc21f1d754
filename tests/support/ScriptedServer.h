/// @file support/ScriptedServer.h
/// A TCP server inside the test which plays exact scripts, for all that a real server would not do.
///
///     ScriptedServer server;
///     server.play(Script().expectRequest().send(okResponse("first")));
///     server.play(Script().expectRequest().reset());
///     ...
///     EXPECT_EQ(server.requests().at(0).startLine, "GET / HTTP/1.1");
///     EXPECT_THAT(server.finish(), IsEmpty());
#pragma once

#include "support/Event.h"
#include "support/HttpRequest.h"
#include "support/Script.h"
#include "support/ScriptedConnection.h"
#include "support/ScriptedRecord.h"
#include "support/Sockets.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace testsupport {

/// A TCP server on a free port of 127.0.0.1 with a thread for each connection.
///
/// Each accepted connection takes the next script in the queue; when the queue is empty it goes to the
/// handler, and without one is closed at once and noted as an error. Everything received is recorded. The
/// destructor interrupts whatever is going on and ends all threads.
///
/// Thread safety: any thread may call any member but the destructor.
class ScriptedServer {
public:
    /// Serves one connection; when it returns the connection is closed. What it throws is noted as an error,
    /// with the exception of ServerStopped. Several may run at the same time.
    using Handler = std::function<void(ScriptedConnection&)>;

    ScriptedServer();
    explicit ScriptedServer(Handler handler);
    ~ScriptedServer();

    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    std::uint16_t port() const { return port_; }

    /// "http://127.0.0.1:<port>" and the path.
    std::string url(std::string_view path = "/") const;

    /// Queues a script for the next connection that has none yet.
    void play(Script script);

    /// Sets how many bytes the system keeps for a connection that is not read from, for connections from now
    /// on. The system doubles the number. Small ones stop a client's upload early at stallWithoutReading().
    void setReceiveBufferSize(int bytes);

    std::size_t connectionCount() const { return record_.connectionCount(); }

    /// All bytes received so far on a connection, counted from 0 in the order of arrival.
    /// @throws std::out_of_range if there was no such connection.
    std::string received(std::size_t connection) const { return record_.received(connection); }

    /// The HTTP requests so far, over all connections in the order in which their heads came.
    std::vector<HttpRequest> requests() const { return record_.requests(); }

    /// Waits until so many connections have been accepted.
    /// @return whether they were within the limit.
    bool waitForConnections(std::size_t count, std::chrono::milliseconds limit = defaultLimit);

    /// Waits until so many requests have come, with their bodies.
    /// @return whether they came within the limit.
    bool waitForRequests(std::size_t count, std::chrono::milliseconds limit = defaultLimit);

    /// What has gone wrong so far: bytes that were not expected, clients that went away too early,
    /// connections without a script.
    std::vector<std::string> errors() const { return record_.errors(); }

    /// Waits until every script is played to its end, or the limit has passed.
    /// @return errors(), the scripts not finished, and the number of those which no connection took.
    std::vector<std::string> finish(std::chrono::milliseconds limit = defaultLimit);

    static constexpr std::chrono::milliseconds defaultLimit{10000};

private:
    /// A connection's thread, which sets the flag last of all.
    struct Worker {
        std::thread thread;
        std::atomic<bool> isFinished{false};
    };

    /// What a new connection gets to do.
    struct Assignment {
        std::size_t connection;
        Handler handler;
        bool isScript;
    };

    void acceptConnections();
    bool acceptOne();
    void startWorker(Socket socket);
    Assignment assignHandler();
    Handler handlerFor(Script script);
    void serve(ScriptedConnection& connection, const Assignment& assignment);
    std::size_t waitingScripts() const;
    void joinFinishedWorkers();

    ScriptedRecord record_;
    Event stop_;
    Socket listener_;
    std::uint16_t port_;
    const Handler handler_;
    mutable std::mutex mutex_;
    std::deque<Script> scripts_;
    std::list<Worker> workers_; // belongs to the accepting thread
    std::thread acceptor_;
};

} // namespace testsupport
