/// @file AsyncFixture.h
/// Requests that end in every way, and what is known of each end.
#pragma once

#include <vantra/vantra.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "WebServer.h"

#include "support/Ports.h"
#include "support/ScriptedServer.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <string>

/// Long enough for any transfer of these tests.
constexpr int patienceMs = 60000;

/// Calls a function at the end of each transfer.
class CCallingListener : public kel::CBase, public vantra::CNetRequest::IDoneListener {
public:
    using Function = std::function<void(vantra::CNetRequest&, const kel::CError*)>;

    explicit CCallingListener(Function function) : function_(std::move(function)) {}
    void onRequestDone(vantra::CNetRequest* request, const kel::CError* error) override {
        function_(*request, error);
    }

private:
    const Function function_;
};

/// A worker and the servers around it.
class Async : public testing::Test {
protected:
    Async() { thread_->start(); }

    /// Adds the request and waits for its end.
    void transfer(vantra::CNetRequest& request);
    /// A request that is never answered.
    kel::P<vantra::CNetRequest> makeEndless();
    /// Waits until so many of those have reached their server.
    void waitForEndless(std::size_t count);

    testsupport::ScriptedServer silent_{[](testsupport::ScriptedConnection& connection) {
        if (connection.readRequest()) connection.stall();
    }};
    kel::P<vantra::CAsyncNetRequestThread> thread_ = new vantra::CAsyncNetRequestThread(nullptr);
};

/// The ways in which the requests of a mixed batch end: of each ten, one each is answered with 404, refused,
/// and reset; the others get a body of their own.
class Mixture {
public:
    kel::P<vantra::CNetRequest> make(std::size_t number) const;
    /// The end that the request by this number must come to: "ok BODY", or "error CODE RESPONSECODE MESSAGE".
    std::string expected(std::size_t number) const;
    /// The end it came to.
    static std::string outcome(const vantra::CNetRequest& request);

private:
    std::string path(std::size_t number) const;

    testsupport::ScriptedServer resetting_{[](testsupport::ScriptedConnection& connection) {
        if (connection.readRequest()) connection.reset();
    }};
    testsupport::RefusedPort refused_;
};
