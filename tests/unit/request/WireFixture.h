/// @file WireFixture.h
/// Requests performed by libcurl itself against a server inside the test.
#pragma once

#include "Doubles.h"

#include "vantra/NetRequest.h"

#include "support/ScriptedServer.h"

#include <kel/P.h>
#include <kel/String.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>

namespace vantra::test {

/// Requests performed by libcurl itself, and the bytes that reach a server.
class Wire : public testing::Test {
protected:
    Wire() { request_->setURL(kel::String(server_.url("/path"))); }

    void TearDown() override {
        request_ = nullptr; // closes its connections, which the scripts wait for
        EXPECT_THAT(server_.finish(), testing::IsEmpty());
    }

    std::string hostLine() const { return "Host: 127.0.0.1:" + std::to_string(server_.port()) + "\r\n"; }

    /// A request's head as libcurl writes it.
    std::string head(const std::string& method, const std::string& moreHeaders = "") const {
        return method + " /path HTTP/1.1\r\n" + hostLine() + "Accept: */*\r\n" + moreHeaders + "\r\n";
    }

    /// Performs the request against a server that gives the answer, and gives what it received. All goes over
    /// the first connection.
    std::string performAndGetBytes(const std::string& answer = testsupport::okResponse("answer")) {
        const std::size_t before = server_.connectionCount() == 0 ? 0 : server_.received(0).size();
        answers_.push(answer);
        request_->perform();
        EXPECT_EQ(server_.connectionCount(), 1U);
        return server_.received(0).substr(before);
    }

private:
    /// The answers that the server has yet to give.
    class Answers {
    public:
        void push(const std::string& answer) {
            const std::lock_guard lock(mutex_);
            answers_.push_back(answer);
        }
        std::string pop() {
            const std::lock_guard lock(mutex_);
            if (answers_.empty()) throw std::logic_error("a request too many");
            std::string answer = answers_.front();
            answers_.pop_front();
            return answer;
        }

    private:
        std::mutex mutex_;
        std::deque<std::string> answers_;
    };

    void serve(testsupport::ScriptedConnection& connection) {
        while (const std::optional<testsupport::HttpRequest> head = connection.readHead()) {
            if (head->header("Expect")) connection.send("HTTP/1.1 100 Continue\r\n\r\n");
            connection.readBody();
            connection.send(answers_.pop());
        }
    }

    Answers answers_;

protected:
    testsupport::ScriptedServer server_{
        [this](testsupport::ScriptedConnection& connection) { serve(connection); }};
    kel::P<CTestRequest> request_ = new CTestRequest();
};

} // namespace vantra::test
