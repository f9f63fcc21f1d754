#include "support/ScriptedServer.h"

#include "support/Wait.h"

#include <array>
#include <cerrno>
#include <exception>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace testsupport {

namespace {

Socket listenOnAnyPort() {
    constexpr int backlog = 4096;
    Socket listener = bindLoopback(0);
    if (!listener.isOpen()) throw std::runtime_error("the system has no free port left");
    makeNonBlocking(listener);
    listenOn(listener, backlog);
    return listener;
}

} // namespace

ScriptedServer::ScriptedServer() : ScriptedServer(Handler()) {}

ScriptedServer::ScriptedServer(Handler handler)
    : listener_(listenOnAnyPort()),
      port_(localPort(listener_)),
      handler_(std::move(handler)),
      acceptor_([this] { acceptConnections(); }) {}

ScriptedServer::~ScriptedServer() {
    stop_.set();
    acceptor_.join();
    for (Worker& worker : workers_) worker.thread.join();
}

std::string ScriptedServer::url(std::string_view path) const {
    return "http://127.0.0.1:" + std::to_string(port_) + std::string(path);
}

void ScriptedServer::play(Script script) {
    const std::lock_guard lock(mutex_);
    scripts_.push_back(std::move(script));
}

void ScriptedServer::setReceiveBufferSize(int bytes) {
    // Connections inherit it from the listening socket; later it would not bound what the client may already
    // send.
    testsupport::setReceiveBufferSize(listener_, bytes);
}

bool ScriptedServer::waitForConnections(std::size_t count, std::chrono::milliseconds limit) {
    return record_.waitForConnections(count, limit);
}

bool ScriptedServer::waitForRequests(std::size_t count, std::chrono::milliseconds limit) {
    return record_.waitForRequests(count, limit);
}

std::vector<std::string> ScriptedServer::finish(std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    waitUntil([this] { return waitingScripts() == 0; }, limit);
    const std::vector<std::string> unfinished =
        record_.waitUntilDone(deadline - std::chrono::steady_clock::now());
    std::vector<std::string> all = record_.errors();
    all.insert(all.end(), unfinished.begin(), unfinished.end());
    if (waitingScripts() != 0) all.push_back("scripts never played: " + std::to_string(waitingScripts()));
    return all;
}

std::size_t ScriptedServer::waitingScripts() const {
    const std::lock_guard lock(mutex_);
    return scripts_.size();
}

void ScriptedServer::acceptConnections() {
    while (true) {
        std::array<AwaitedSocket, 2> awaited{
            {{&stop_.socket(), Readiness::readable}, {&listener_, Readiness::readable}}};
        waitForAny(awaited, std::nullopt);
        if (awaited[0].isReady) return;
        if (awaited[1].isReady && !acceptOne()) return;
    }
}

/// @return false if the server cannot go on.
bool ScriptedServer::acceptOne() {
    Socket socket = acceptConnection(listener_);
    if (socket.isOpen()) {
        joinFinishedWorkers();
        startWorker(std::move(socket));
        return true;
    }
    if (errno == EAGAIN || errno == EINTR || errno == ECONNABORTED) return true;
    record_.addServerError("cannot accept connections any more: " + std::generic_category().message(errno));
    return false;
}

void ScriptedServer::startWorker(Socket socket) {
    Assignment assignment = assignHandler();
    if (!assignment.handler) {
        record_.addError(assignment.connection, "there was no script for it");
        return;
    }
    Worker& worker = workers_.emplace_back();
    worker.thread = std::thread(
        [this, &worker, assignment = std::move(assignment), socket = std::move(socket)]() mutable {
            ScriptedConnection connection(std::move(socket), stop_, assignment.connection, record_);
            serve(connection, assignment);
            worker.isFinished = true;
        });
}

/// Takes a script and notes the connection in one go: finish() must not see the script gone and no connection
/// at work.
ScriptedServer::Assignment ScriptedServer::assignHandler() {
    const std::lock_guard lock(mutex_);
    const bool isScript = !scripts_.empty();
    const std::size_t number = record_.addConnection(isScript);
    if (!isScript) return {number, handler_, false};
    Assignment assignment{number, handlerFor(std::move(scripts_.front())), true};
    scripts_.pop_front();
    return assignment;
}

ScriptedServer::Handler ScriptedServer::handlerFor(Script script) {
    return [this, script = std::move(script)](ScriptedConnection& connection) {
        const std::size_t number = connection.number();
        const auto notePosition = [&](const std::string& step) { record_.setActivity(number, step); };
        if (!script.playOn(connection, notePosition)) return;
        record_.setActivity(number, "after its script");
        record_.setDone(number);
        connection.waitForEnd();
    };
}

/// Runs a connection's handler and notes how it ended.
void ScriptedServer::serve(ScriptedConnection& connection, const Assignment& assignment) {
    try {
        assignment.handler(connection);
        if (connection.isOpen()) connection.close();
    } catch (const ServerStopped&) {
        return;
    } catch (const std::exception& error) {
        record_.addError(assignment.connection, error.what());
    }
    if (assignment.isScript) record_.setDone(assignment.connection);
}

void ScriptedServer::joinFinishedWorkers() {
    for (auto worker = workers_.begin(); worker != workers_.end();) {
        if (worker->isFinished) {
            worker->thread.join();
            worker = workers_.erase(worker);
        } else {
            ++worker;
        }
    }
}

} // namespace testsupport
