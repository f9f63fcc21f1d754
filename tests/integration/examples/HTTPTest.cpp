#include "Document.h"
#include "Example.h"

#include "support/Ports.h"
#include "support/TempDir.h"
#include "support/Wait.h"

#include <gmock/gmock.h>

using namespace testsupport;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

const std::string unicodeName = "gr\u00f6\u00dfe \u65e5\u672c \U0001F680.bin";

} // namespace

TEST(First, PrintsTheSize) {
    EXPECT_EQ(runExample("first", {webServer().url("/hello.txt")}), (Outcome{0, "26 bytes\n", ""}));
}

TEST(First, SaysWhatFailed) {
    const Outcome outcome = runExample("first", {webServer().url("/s404")});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.error, HasSubstr("404"));
}

TEST(GetWithProgress, WritesTheFileAndTellsOfEachTenth) {
    const TempDir folder;
    const Outcome outcome =
        runExample("get_with_progress", {webServer().url("/big.bin"), folder.file(unicodeName)});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.output, "1048576 bytes\n");
    EXPECT_EQ(outcome.error + outcome.output, documentedOutput("docs/http.md", "get_with_progress"));
    EXPECT_THAT(filesIn(folder.path()), ElementsAre(unicodeName));
    EXPECT_TRUE(folder.readFile(unicodeName) == NginxServer::bigContent());
}

TEST(GetWithProgress, TrustsTheCertificatesItIsGiven) {
    const TempDir folder;
    const std::string url = webServer().httpsUrl("/hello.txt");
    const Outcome refused = runExample("get_with_progress", {url, folder.file("x")});
    EXPECT_EQ(refused.exitStatus, 1);
    EXPECT_THAT(refused.error, HasSubstr("SSL peer certificate or SSH remote key was not OK"));
    EXPECT_THAT(filesIn(folder.path()), IsEmpty());
    EXPECT_EQ(
        runExample("get_with_progress", {url, folder.file("x")}, {{"SSL_CERT_FILE", webServer().caFile()}}),
        (Outcome{0, "26 bytes\n", "100 %\n"}));
    EXPECT_EQ(folder.readFile("x"), NginxServer::helloContent());
}

TEST(GetWithProgress, LeavesFilesAsTheyWereWhenItFails) {
    const TempDir folder;
    folder.writeFile("old", "old content");
    const Outcome outcome = runExample("get_with_progress", {webServer().url("/s404"), folder.file("old")});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.error, HasSubstr("404"));
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("old"));
    EXPECT_EQ(folder.readFile("old"), "old content");
}

TEST(GetWithProgress, LeavesNothingWhenTheServerGoesAway) {
    NginxServer server;
    const TempDir folder;
    ChildOptions options;
    options.environment = exampleEnvironment();
    ChildProcess program({exampleProgram("get_with_progress"), server.url("/slow"), folder.file("half")},
                         options);
    const auto hasBytes = [&] {
        const std::vector<std::string> files = filesIn(folder.path());
        return !files.empty() && !folder.readFile(files[0]).empty();
    };
    ASSERT_TRUE(waitUntil(hasBytes, std::chrono::seconds(20)));
    server.process().stop();
    ASSERT_TRUE(waitUntil([&] { return !program.isRunning(); }, std::chrono::seconds(20)));
    EXPECT_EQ(program.exitStatus(), 1);
    EXPECT_THAT(program.output(), HasSubstr("transfer closed with "));
    EXPECT_THAT(filesIn(folder.path()), IsEmpty());
}

TEST(GetWithProgress, SaysThatAFolderIsMissing) {
    const TempDir folder;
    const Outcome outcome =
        runExample("get_with_progress", {webServer().url("/hello.txt"), folder.file("none/x")});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_THAT(outcome.error, HasSubstr("No such file or directory"));
}

TEST(PostStream, SendsStandardInputInChunksAndPrintsTheAnswer) {
    // What some systems take for line ends and the end of a text.
    std::string body("\r\n\n\r\x1a\0", 6);
    body.append(200000, 'x');
    const Outcome outcome = runExample("post_stream", {webServer().url("/echo"), "text/x-log"}, {}, body);
    EXPECT_EQ(outcome.exitStatus, 0) << outcome.error;
    EXPECT_THAT(outcome.output, HasSubstr("POST /echo HTTP/1.1\r\n"));
    EXPECT_THAT(outcome.output, HasSubstr("Transfer-Encoding: chunked\r\n"));
    EXPECT_THAT(outcome.output, HasSubstr("Content-Type: text/x-log\r\n"));
    EXPECT_THAT(outcome.output, HasSubstr("Accept: text/plain, application/json\r\n"));
    EXPECT_THAT(outcome.output, HasSubstr(body));
}

TEST(PostStream, SaysWhatFailed) {
    const Outcome outcome = runExample("post_stream", {webServer().url("/s403"), "text/plain"}, {}, "x");
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.error, HasSubstr("403"));
}

TEST(ParallelDownloads, WritesWhatItCanGet) {
    const TempDir folder;
    const std::string big = webServer().url("/big.bin");
    const std::string missing = webServer().url("/s404");
    const std::string hello = webServer().url("/hello.txt");
    const Outcome outcome =
        runExample("parallel_downloads", {big, folder.file(unicodeName), missing, folder.file("missing"),
                                          hello, folder.file("hello.txt")});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(withoutRunDetails(outcome.output), documentedOutput("docs/async.md", "parallel_downloads"));
    EXPECT_EQ(outcome.error, "");
    EXPECT_THAT(filesIn(folder.path()), ElementsAre(unicodeName, "hello.txt"));
    EXPECT_TRUE(folder.readFile(unicodeName) == NginxServer::bigContent());
    EXPECT_EQ(folder.readFile("hello.txt"), NginxServer::helloContent());
}

TEST(ParallelDownloads, SucceedsWhenAllDo) {
    const TempDir folder;
    std::vector<std::string> arguments;
    for (int i = 0; i < 20; ++i) {
        arguments.push_back(webServer().url("/big.bin"));
        arguments.push_back(folder.file(std::to_string(i)));
    }
    EXPECT_EQ(runExample("parallel_downloads", arguments).exitStatus, 0);
    EXPECT_EQ(filesIn(folder.path()).size(), 20U);
    for (int i = 0; i < 20; ++i)
        EXPECT_TRUE(folder.readFile(std::to_string(i)) == NginxServer::bigContent()) << i;
}

TEST(EventLoop, TellsOfEachTransferAsItEnds) {
    const Outcome outcome =
        runExample("event_loop", {webServer().url("/delay/0.5"), webServer().url("/hello.txt")});
    EXPECT_EQ(outcome, (Outcome{0, "HTTP/1.1 200 OK\nHTTP/1.1 200 OK\n", ""}));
    const RefusedPort port;
    const Outcome failed = runExample(
        "event_loop", {"http://127.0.0.1:" + std::to_string(port.port()), webServer().url("/s204")});
    EXPECT_EQ(failed.exitStatus, 1);
    EXPECT_THAT(failed.output, HasSubstr("HTTP/1.1 204 No Content\n"));
    EXPECT_THAT(failed.output, HasSubstr("Couldn't connect to server"));
}

TEST(ExplainError, TellsTheKindsOfFailuresApart) {
    const RefusedPort port;
    const std::vector<std::pair<std::string, std::string>> expected{
        {webServer().url("/s404"), "not there\n"},
        {webServer().url("/s403"), "the server refuses\n"},
        {webServer().url("/s503"), "try later\n"},
        {webServer().url("/basic/hello.txt"), "log in\n"},
        {webServer().httpsUrl("/hello.txt"), "not to be trusted\n"},
        {"http://127.0.0.1:" + std::to_string(port.port()) + "/", "try later\n"},
        {"gopher+x://127.0.0.1/", "something else\n"}};
    for (const auto& [url, kind] : expected) {
        const Outcome outcome = runExample("explain_error", {url});
        EXPECT_EQ(outcome.exitStatus, 1) << url;
        EXPECT_THAT(outcome.output, testing::StartsWith(kind)) << url;
        EXPECT_EQ(outcome.error, "") << url;
    }
    EXPECT_EQ(runExample("explain_error", {webServer().url("/hello.txt")}), (Outcome{0, "", ""}));
}

TEST(ExplainError, PrintsCodesAndParameters) {
    const Outcome outcome = runExample("explain_error", {webServer().url("/s404")});
    EXPECT_EQ(withoutRunDetails(outcome.output), documentedOutput("docs/errors.md", "explain_error"));
}

TEST(TransferLog, HoldsTheConversationAndNoPassword) {
    const testsupport::Environment login{{"HTTP_USER", NginxServer::userName()},
                                         {"HTTP_PASSWORD", NginxServer::password()}};
    const Outcome outcome = runExample("transfer_log", {webServer().url("/basic/hello.txt")}, login);
    EXPECT_EQ(outcome.exitStatus, 0) << outcome.error;
    EXPECT_EQ(withoutRunDetails(outcome.output),
              withoutRunDetails(documentedOutput("docs/transfer-log.md", "transfer_log")));
    EXPECT_THAT(outcome.output, HasSubstr("hello%20from%20the%20web%20server%0A"));
    EXPECT_THAT(outcome.output, HasSubstr("~stripped~"));
    EXPECT_THAT(outcome.output, testing::Not(HasSubstr("dXNlcjpzZWNyZXQ="))); // base64 of the login
    const Outcome refused = runExample("transfer_log", {webServer().url("/basic/hello.txt")});
    EXPECT_EQ(refused.exitStatus, 1);
    EXPECT_THAT(refused.output, HasSubstr("401 Unauthorized"));
    EXPECT_THAT(refused.error, HasSubstr("401"));
}

TEST(Examples, AreNotToldSecretsOnTheCommandLine) {
    for (const char* name : {"get_with_progress", "post_stream", "parallel_downloads", "explain_error",
                             "transfer_log", "choose_proxy", "s3_backup", "ftp_mirror", "send_mail"}) {
        const Outcome outcome = runExample(name, {});
        EXPECT_EQ(outcome.exitStatus, 2) << name;
        EXPECT_EQ(outcome.output, "") << name;
        EXPECT_THAT(outcome.error, testing::StartsWith("usage: " + std::string(name) + " "));
        for (const char* secret : {"PASSWORD", "SECRET", "KEY"})
            EXPECT_THAT(outcome.error, testing::Not(HasSubstr(secret))) << name;
    }
}
