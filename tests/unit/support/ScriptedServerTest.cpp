#include "support/ScriptedServer.h"

#include "support/TcpClient.h"
#include "unit/support/Curl.h"

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace testsupport;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(ScriptedServer, AnswersARequestWithTheExactBytes) {
    ScriptedServer server;
    server.play(
        Script().expectRequest().send("HTTP/1.1 201 Made\r\nX-One:  1\r\nContent-Length: 2\r\n\r\nhi"));
    EXPECT_EQ(curl({"--include", server.url("/path?query")}).standardOutput,
              "HTTP/1.1 201 Made\r\nX-One:  1\r\nContent-Length: 2\r\n\r\nhi");
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ScriptedServer, RecordsEveryByte) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(okResponse("")));
    std::string bytes = "POST /x HTTP/1.1\r\nHost: h\r\nContent-Length: 4\r\n\r\n";
    bytes += {'\0', '\xff', '\r', '\n'};
    TcpClient client(server.port());
    client.send(bytes);
    EXPECT_EQ(client.readBytes(okResponse("").size()), okResponse(""));
    EXPECT_EQ(server.connectionCount(), 1U);
    EXPECT_EQ(server.received(0), bytes);
    EXPECT_THROW(server.received(1), std::out_of_range);
}

TEST(ScriptedServer, TakesRequestsApart) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(okResponse("")));
    curl({"--data", "the body", "--header", "X-Two: b", server.url("/form")});
    ASSERT_EQ(server.requests().size(), 1U);
    const HttpRequest request = server.requests()[0];
    EXPECT_EQ(request.connection, 0U);
    EXPECT_EQ(request.startLine, "POST /form HTTP/1.1");
    EXPECT_THAT(request.headerLines,
                ElementsAre("Host: 127.0.0.1:" + std::to_string(server.port()),
                            testing::StartsWith("User-Agent: curl/"), "Accept: */*", "X-Two: b",
                            "Content-Length: 8", "Content-Type: application/x-www-form-urlencoded"));
    EXPECT_EQ(request.body, "the body");
    EXPECT_TRUE(request.isComplete);
}

TEST(ScriptedServer, ReadsAChunkedBody) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(okResponse("")));
    TcpClient client(server.port());
    client.send("PUT / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n"
                "5\r\nhello\r\nA;name=value\r\n, chunked \r\n5\r\nworld\r\n0\r\nX-Trailer: 1\r\n\r\n");
    client.readBytes(okResponse("").size());
    EXPECT_EQ(server.requests().at(0).body, "hello, chunked world");
    client.close();
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ScriptedServer, ReadsARequestThatComesByteByByte) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(okResponse("x")));
    TcpClient client(server.port());
    const std::string request = "PUT / HTTP/1.1\r\nContent-Length: 3\r\n\r\nabc";
    for (const char byte : request) client.send(std::string_view(&byte, 1));
    EXPECT_EQ(client.readBytes(okResponse("x").size()), okResponse("x"));
    EXPECT_EQ(server.requests().at(0).body, "abc");
}

TEST(ScriptedServer, PlaysOneScriptForEachConnectionInTurn) {
    ScriptedServer server;
    for (const char* body : {"first", "second", "third"}) {
        server.play(Script().expectRequest().send(okResponse(body)));
    }
    EXPECT_EQ(curl({server.url("/1")}).standardOutput, "first");
    EXPECT_EQ(curl({server.url("/2")}).standardOutput, "second");
    EXPECT_EQ(curl({server.url("/3")}).standardOutput, "third");
    std::vector<std::string> targets;
    for (const HttpRequest& request : server.requests()) {
        targets.push_back(std::to_string(request.connection) + request.target());
    }
    EXPECT_THAT(targets, ElementsAre("0/1", "1/2", "2/3"));
    EXPECT_EQ(server.connectionCount(), 3U);
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ScriptedServer, AnswersSeveralRequestsOnOneConnection) {
    ScriptedServer server;
    server.play(
        Script().expectRequest().send(okResponse("first")).expectRequest().send(okResponse("second")));
    EXPECT_EQ(curl({server.url("/1"), server.url("/2")}).standardOutput, "firstsecond");
    EXPECT_EQ(server.connectionCount(), 1U);
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ScriptedServer, SendsInterimResponses) {
    ScriptedServer server;
    server.play(Script()
                    .expectHead()
                    .send("HTTP/1.1 100 Continue\r\n\r\n")
                    .expectBody()
                    .send("HTTP/1.1 103 Early Hints\r\nLink: </a>\r\n\r\n")
                    .send(okResponse("done")));
    const CommandResult result = curl({"--include", "--header", "Expect: 100-continue", "--expect100-timeout",
                                       "15", "--data", "the body", server.url()});
    EXPECT_EQ(result.standardOutput, "HTTP/1.1 100 Continue\r\n\r\n"
                                     "HTTP/1.1 103 Early Hints\r\nLink: </a>\r\n\r\n" +
                                         okResponse("done"));
    EXPECT_EQ(server.requests().at(0).body, "the body");
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ScriptedServer, SpeaksALineProtocol) {
    ScriptedServer server;
    server.play(Script()
                    .send("220 ready\r\n")
                    .expectLine("EHLO client")
                    .send("250 hello\r\n")
                    .expectAnyLine()
                    .send("354 go on\r\n")
                    .expectUntil("\r\n.\r\n")
                    .send("250 taken\r\n")
                    .expectExactly("QUIT\r\n")
                    .send("221 bye\r\n")
                    .close());
    TcpClient client(server.port());
    EXPECT_EQ(client.readUntil("\r\n"), "220 ready\r\n");
    client.send("EHLO client\r\n");
    EXPECT_EQ(client.readUntil("\r\n"), "250 hello\r\n");
    client.send("DATA\r\n");
    EXPECT_EQ(client.readUntil("\r\n"), "354 go on\r\n");
    client.send("mail\r\n..dotted\r\n.");
    client.send("\r\nQUIT\r\n");
    EXPECT_EQ(client.readToEnd(), "250 taken\r\n221 bye\r\n");
    EXPECT_EQ(server.received(0), "EHLO client\r\nDATA\r\nmail\r\n..dotted\r\n.\r\nQUIT\r\n");
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ScriptedServer, ReadsAGivenNumberOfBytes) {
    ScriptedServer server;
    server.play(Script().expectBytes(3).send("three").expectBytes(2).send("two"));
    TcpClient client(server.port());
    client.send("abcde");
    EXPECT_EQ(client.readBytes(8), "threetwo");
    client.close();
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ScriptedServer, SendsInChunksOfTheirOwn) {
    ScriptedServer server;
    server.play(Script().sendInChunks("abcdefgh", 3, std::chrono::milliseconds(20)));
    TcpClient client(server.port());
    std::vector<std::string> pieces;
    for (std::size_t size = 0; size < 8; size += pieces.back().size()) pieces.push_back(client.readSome());
    EXPECT_THAT(pieces, ElementsAre("abc", "def", "gh"));
}

TEST(ScriptedServer, SendsByteByByte) {
    ScriptedServer server;
    const std::string response = okResponse("byte by byte");
    server.play(Script().expectRequest().sendInChunks(response, 1));
    EXPECT_EQ(curl({"--include", server.url()}).standardOutput, response);
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ScriptedServer, DelaysAnAnswer) {
    ScriptedServer server;
    server.play(Script().delay(std::chrono::milliseconds(150)).send("late"));
    const auto start = std::chrono::steady_clock::now();
    TcpClient client(server.port());
    EXPECT_EQ(client.readBytes(4), "late");
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(150));
}

TEST(ScriptedServer, SendsMoreThanTheSystemBuffers) {
    ScriptedServer server;
    const std::string body(20'000'000, 'b');
    server.play(Script().expectRequest().send(okResponse(body)));
    EXPECT_EQ(curl({server.url()}).standardOutput, body);
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ScriptedServer, RunsAStepOfTheTestsOwn) {
    ScriptedServer server;
    server.play(
        Script().expectLine("ping").then("answer with the number", [](ScriptedConnection& connection) {
            connection.send("connection " + std::to_string(connection.number()));
        }));
    TcpClient client(server.port());
    client.send("ping\r\n");
    EXPECT_EQ(client.readBytes(12), "connection 0");
}

TEST(ScriptedServer, HandsConnectionsToAHandler) {
    ScriptedServer server([](ScriptedConnection& connection) {
        while (const auto request = connection.readRequest())
            connection.send(okResponse(request->target() + "\n"));
    });
    EXPECT_EQ(curl({server.url("/1"), server.url("/2")}).standardOutput, "/1\n/2\n");
    EXPECT_EQ(curl({server.url("/3")}).standardOutput, "/3\n");
    EXPECT_EQ(server.connectionCount(), 2U);
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ScriptedServer, PlaysQueuedScriptsBeforeTheHandler) {
    ScriptedServer server([](ScriptedConnection& connection) {
        connection.readRequest();
        connection.send(okResponse("handler"));
    });
    server.play(Script().expectRequest().send(okResponse("script")));
    EXPECT_EQ(curl({server.url()}).standardOutput, "script");
    EXPECT_EQ(curl({server.url()}).standardOutput, "handler");
}

TEST(ScriptedServer, ServesManyConnectionsAtTheSameTime) {
    constexpr std::size_t count = 40;
    ScriptedServer server([](ScriptedConnection& connection) {
        const std::string line = connection.readLine();
        connection.send("you said " + line);
    });
    std::vector<TcpClient> clients;
    for (std::size_t index = 0; index < count; ++index) clients.emplace_back(server.port());
    EXPECT_TRUE(server.waitForConnections(count));
    std::vector<std::thread> threads;
    std::vector<std::string> answers(count);
    for (std::size_t index = 0; index < count; ++index) {
        threads.emplace_back([&, index] {
            clients[index].send(std::to_string(index) + "\r\n");
            answers[index] = clients[index].readToEnd();
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (std::size_t index = 0; index < count; ++index) {
        EXPECT_EQ(answers[index], "you said " + std::to_string(index));
    }
    EXPECT_EQ(server.connectionCount(), count);
    EXPECT_THAT(server.errors(), IsEmpty());
}

TEST(ScriptedServer, WaitsForRequests) {
    ScriptedServer server;
    server.play(Script().expectRequest().stall());
    EXPECT_FALSE(server.waitForRequests(1, std::chrono::milliseconds(10)));
    EXPECT_FALSE(server.waitForConnections(1, std::chrono::milliseconds(10)));
    TcpClient client(server.port());
    client.send("PUT / HTTP/1.1\r\nContent-Length: 2\r\n\r\na");
    EXPECT_TRUE(server.waitForConnections(1));
    EXPECT_FALSE(server.waitForRequests(1, std::chrono::milliseconds(10)));
    client.send("b");
    EXPECT_TRUE(server.waitForRequests(1));
    EXPECT_EQ(server.requests().at(0).body, "ab");
}

TEST(ScriptedServerErrors, ShowALineThatWasNotExpected) {
    ScriptedServer server;
    server.play(Script().send("220 ready\r\n").expectLine("USER user").send("230 in\r\n"));
    TcpClient client(server.port());
    client.send("USER\tother\r\n");
    EXPECT_EQ(client.readToEnd(), "220 ready\r\n");
    EXPECT_THAT(server.finish(), ElementsAre("connection 0, step 2 of 3 (expect the line \"USER user\"): "
                                             "expected \"USER user\", received \"USER\\x09other\""));
}

TEST(ScriptedServerErrors, ShowBytesThatWereNotExpected) {
    ScriptedServer server;
    server.play(Script().expectExactly("\"a\\"));
    TcpClient client(server.port());
    client.send("abc");
    EXPECT_EQ(client.readToEnd(), "");
    EXPECT_THAT(server.finish(), ElementsAre("connection 0, step 1 of 1 (expect \"\\\"a\\\\\"): "
                                             "expected \"\\\"a\\\\\", received \"abc\""));
}

TEST(ScriptedServerErrors, ShowALineWithABareLineFeed) {
    ScriptedServer server;
    server.play(Script().expectLine("NOOP"));
    TcpClient client(server.port());
    client.send("NOOP\n");
    EXPECT_EQ(client.readToEnd(), "");
    EXPECT_THAT(
        server.finish(),
        ElementsAre(
            "connection 0, step 1 of 1 (expect the line \"NOOP\"): a line without CRLF: \"NOOP\\n\""));
}

TEST(ScriptedServerErrors, ShowWhatIsNoRequest) {
    ScriptedServer server;
    server.play(Script().expectRequest());
    TcpClient client(server.port());
    client.send("hello\r\n\r\n");
    EXPECT_EQ(client.readToEnd(), "");
    EXPECT_THAT(
        server.finish(),
        ElementsAre("connection 0, step 1 of 1 (expect a request): not an HTTP request line: \"hello\""));
}

TEST(ScriptedServerErrors, ShowABadChunk) {
    ScriptedServer server;
    server.play(Script().expectRequest());
    TcpClient client(server.port());
    client.send("PUT / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\nxyz\r\n");
    EXPECT_EQ(client.readToEnd(), "");
    EXPECT_THAT(server.finish(),
                ElementsAre("connection 0, step 1 of 1 (expect a request): not a chunk size: \"xyz\""));
}

TEST(ScriptedServerErrors, ShowAClientThatLeavesTooEarly) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(okResponse("")));
    TcpClient client(server.port());
    client.send("GET / HT");
    client.close();
    EXPECT_THAT(
        server.finish(),
        ElementsAre(
            "connection 0, step 1 of 2 (expect a request): the client closed the connection before it "
            "had sent \"\\r\\n\\r\\n\"; unread until then: \"GET / HT\""));
}

TEST(ScriptedServerErrors, ShowAClientThatSendsNoRequestAtAll) {
    ScriptedServer server;
    server.play(Script().expectRequest());
    TcpClient(server.port()).close();
    EXPECT_THAT(server.finish(),
                ElementsAre("connection 0, step 1 of 1 (expect a request): the client closed the "
                            "connection instead of sending a request"));
}

TEST(ScriptedServerErrors, ShowBytesAfterTheEndOfTheScript) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(okResponse("")));
    TcpClient client(server.port());
    client.send("GET /1 HTTP/1.1\r\n\r\n");
    EXPECT_EQ(client.readBytes(okResponse("").size()), okResponse(""));
    client.send("GET /2 HTTP/1.1\r\n\r\n");
    EXPECT_EQ(client.readToEnd(), "");
    EXPECT_THAT(
        server.errors(),
        ElementsAre("connection 0, after its script: unexpected bytes: \"GET /2 HTTP/1.1\\r\\n\\r\\n\""));
}

TEST(ScriptedServerErrors, ShowAConnectionWithoutAScript) {
    ScriptedServer server;
    TcpClient client(server.port());
    EXPECT_EQ(client.readToEnd(), "");
    EXPECT_THAT(server.errors(), ElementsAre("connection 0: there was no script for it"));
}

TEST(ScriptedServerErrors, ShowScriptsThatWereNotFinished) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(okResponse("")));
    server.play(Script().expectRequest());
    TcpClient client(server.port());
    ASSERT_TRUE(server.waitForConnections(1));
    client.send("GET");
    EXPECT_THAT(
        server.finish(std::chrono::milliseconds(100)),
        ElementsAre("connection 0, step 1 of 2 (expect a request): not finished", "scripts never played: 1"));
}

TEST(ScriptedServerErrors, ShowWhatAHandlerThrows) {
    ScriptedServer server([](ScriptedConnection&) { throw std::runtime_error("broken handler"); });
    TcpClient client(server.port());
    EXPECT_EQ(client.readToEnd(), "");
    EXPECT_THAT(server.errors(), ElementsAre("connection 0: broken handler"));
}

TEST(ScriptedServerErrors, ShowAStepAfterTheClose) {
    ScriptedServer server;
    server.play(Script().close().send("more"));
    TcpClient client(server.port());
    EXPECT_EQ(client.readToEnd(), "");
    EXPECT_THAT(server.finish(),
                ElementsAre("connection 0, step 2 of 2 (send 4 bytes): the connection has been closed "
                            "by the script itself"));
}
