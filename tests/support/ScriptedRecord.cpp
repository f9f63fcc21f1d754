#include "support/ScriptedRecord.h"

#include <algorithm>
#include <utility>

namespace testsupport {

std::size_t ScriptedRecord::addConnection(bool isAwaited) {
    const std::lock_guard lock(mutex_);
    connections_.push_back({{}, {}, isAwaited});
    changed_.notify_all();
    return connections_.size() - 1;
}

void ScriptedRecord::addReceived(std::size_t connection, std::string_view bytes) {
    const std::lock_guard lock(mutex_);
    connections_.at(connection).received.append(bytes);
}

std::size_t ScriptedRecord::addRequest(HttpRequest request) {
    const std::lock_guard lock(mutex_);
    requests_.push_back(std::move(request));
    return requests_.size() - 1;
}

void ScriptedRecord::completeRequest(std::size_t request, std::string body) {
    const std::lock_guard lock(mutex_);
    requests_.at(request).body = std::move(body);
    requests_.at(request).isComplete = true;
    changed_.notify_all();
}

void ScriptedRecord::setActivity(std::size_t connection, std::string activity) {
    const std::lock_guard lock(mutex_);
    connections_.at(connection).activity = std::move(activity);
}

std::string ScriptedRecord::nameOf(std::size_t connection) const {
    const std::string name = "connection " + std::to_string(connection);
    const std::string& activity = connections_.at(connection).activity;
    return activity.empty() ? name : name + ", " + activity;
}

void ScriptedRecord::addError(std::size_t connection, std::string_view error) {
    const std::lock_guard lock(mutex_);
    errors_.push_back(nameOf(connection) + ": " + std::string(error));
}

void ScriptedRecord::addServerError(std::string error) {
    const std::lock_guard lock(mutex_);
    errors_.push_back(std::move(error));
}

void ScriptedRecord::setDone(std::size_t connection) {
    const std::lock_guard lock(mutex_);
    connections_.at(connection).isDone = true;
    changed_.notify_all();
}

std::size_t ScriptedRecord::connectionCount() const {
    const std::lock_guard lock(mutex_);
    return connections_.size();
}

std::string ScriptedRecord::received(std::size_t connection) const {
    const std::lock_guard lock(mutex_);
    return connections_.at(connection).received;
}

std::vector<HttpRequest> ScriptedRecord::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

std::vector<std::string> ScriptedRecord::errors() const {
    const std::lock_guard lock(mutex_);
    return errors_;
}

bool ScriptedRecord::waitForConnections(std::size_t count, std::chrono::milliseconds limit) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, limit, [&] { return connections_.size() >= count; });
}

bool ScriptedRecord::waitForRequests(std::size_t count, std::chrono::milliseconds limit) {
    const auto isComplete = [](const HttpRequest& request) { return request.isComplete; };
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, limit, [&] {
        return std::count_if(requests_.begin(), requests_.end(), isComplete) >=
               static_cast<std::ptrdiff_t>(count);
    });
}

bool ScriptedRecord::isAnyAtWork() const {
    return std::any_of(connections_.begin(), connections_.end(), [](const Connection& connection) {
        return connection.isAwaited && !connection.isDone;
    });
}

std::vector<std::string> ScriptedRecord::waitUntilDone(std::chrono::nanoseconds limit) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, limit, [this] { return !isAnyAtWork(); });
    std::vector<std::string> atWork;
    for (std::size_t number = 0; number < connections_.size(); ++number) {
        const Connection& connection = connections_[number];
        if (connection.isAwaited && !connection.isDone) atWork.push_back(nameOf(number) + ": not finished");
    }
    return atWork;
}

} // namespace testsupport
