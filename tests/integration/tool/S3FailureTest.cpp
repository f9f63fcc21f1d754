#include "S3Tool.h"
#include "System.h"

#include "support/MatchesPattern.h"
#include "support/Ports.h"
#include "support/ScriptedServer.h"

#include <gmock/gmock.h>

using namespace testsupport;
using namespace tooltest;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

const std::vector<std::vector<std::string>>& getVerbs() {
    static const std::vector<std::vector<std::string>> verbs = {
        {"ls", "s3://bucket"},
        {"get", "s3://bucket/k"},
        {"put", "s3://bucket/k", "-f", nullDevice()},
        {"head", "s3://bucket/k"},
        {"cp", "s3://bucket/k", "s3://bucket/l"},
        {"rm", "s3://bucket/k"},
        {"exists", "s3://bucket/k"},
    };
    return verbs;
}

std::vector<std::string> with(std::vector<std::string> arguments, const std::vector<std::string>& more) {
    arguments.insert(arguments.begin(), "s3");
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

std::string response(const std::string& status, const std::string& body) {
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\nConnection: close\r\n\r\n" + body;
}

std::string document(const std::string& code) {
    return "<Error><Code>" + code + "</Code><Message>Our message.</Message></Error>";
}

} // namespace

TEST(ToolS3Failure, OfAWrongSecretHasTheStoresCodeAndMessage) {
    for (const auto& verb : getVerbs()) {
        const Outcome outcome =
            runTool(with(verb, {"--endpoint", objectStore().url(), "--access-key", S3Server::accessKey(),
                                "--secret-key-file", wrongSecretKeyFile()}));
        EXPECT_EQ(outcome.exitStatus, 1) << verb[0];
        EXPECT_EQ(outcome.output, "") << verb[0];
        const bool isHead = verb[0] == "head" || verb[0] == "exists"; // whose answers have no body
        const std::string expected =
            isHead ? "HTTP/1.1 403 Forbidden\n" : "Amazon S3 error: .*\\(SignatureDoesNotMatch\\)\n";
        EXPECT_THAT(outcome.error, MatchesPattern("vantra: " + verb[1] + ": " + expected)) << verb[0];
    }
}

TEST(ToolS3Failure, OfAUserWithoutRightsIsTheStoresOwn) {
    const TempDir folder;
    const std::string secret = folder.writeFile("secret", S3Server::otherSecretKey());
    const Outcome outcome =
        runTool({"s3", "ls", "s3://bucket", "--endpoint", objectStore().url(), "--access-key",
                 S3Server::otherAccessKey(), "--secret-key-file", secret});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_THAT(outcome.error,
                MatchesPattern("vantra: s3://bucket: Amazon S3 error: .*\\(AccessDenied\\)\n"));
}

TEST(ToolS3Failure, OfAnUnknownBucketIsTheStoresOwn) {
    for (const auto& verb : std::vector<std::vector<std::string>>{{"ls", "s3://no-such-bucket"},
                                                                  {"get", "s3://no-such-bucket/k"}}) {
        const Outcome outcome = runS3(verb);
        EXPECT_EQ(outcome.exitStatus, 1);
        EXPECT_THAT(outcome.error,
                    MatchesPattern("vantra: " + verb[1] + ": Amazon S3 error: .*\\(NoSuchBucket\\)\n"));
    }
}

TEST(ToolS3Failure, LeavesNothingHalfWritten) {
    const TempDir folder;
    folder.writeFile("kept", "as it was");
    EXPECT_EQ(runS3({"get", "s3://bucket/missing", "-o", folder.file("kept")}).exitStatus, 1);
    EXPECT_EQ(runS3({"get", "s3://bucket/missing", "-o", folder.file("new")}).exitStatus, 1);
    ScriptedServer server;
    server.play(Script().expectRequest().send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf").close());
    EXPECT_EQ(runS3At(server.url(), {"get", "s3://bucket/k", "-o", folder.file("kept")}).exitStatus, 1);
    EXPECT_THAT(filesIn(folder.path()), ElementsAre("kept"));
    EXPECT_EQ(folder.readFile("kept"), "as it was");
}

TEST(ToolS3Failure, OfAFileThatCannotBeReadComesAheadOfAnyRequest) {
    const RefusedPort port;
    const std::string endpoint = "http://127.0.0.1:" + std::to_string(port.port());
    EXPECT_EQ(runS3At(endpoint, {"put", "s3://bucket/k", "-f", "/no/such/file"}),
              failed("Error opening file '" + nativeName("/no/such/file") + "': No such file or directory."));
    EXPECT_EQ(runTool({"s3", "ls", "s3://bucket", "--access-key", "a", "--secret-key-file", "/no/such/file"}),
              failed("Error opening file '" + nativeName("/no/such/file") + "': No such file or directory."));
}

TEST(ToolS3Failure, ThatMayPassIsTriedAgain) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(response("500 Error", document("InternalError"))));
    server.play(Script().expectRequest().send(response("503 Busy", "")));
    server.play(Script().expectRequest().send(response("200 OK", "content")));
    const Outcome outcome = runS3At(server.url(), {"get", "s3://bucket/k"});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.output, "content");
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ToolS3Failure, IsToldAfterTheLastTry) {
    for (const auto& verb : getVerbs()) {
        if (verb[0] == "head" || verb[0] == "exists") continue; // their answers have no body
        ScriptedServer server;
        server.play(Script().expectRequest().send(response("503 Busy", document("SlowDown"))));
        server.play(Script().expectRequest().send(response("503 Busy", document("SlowDown"))));
        std::vector<std::string> arguments = verb;
        arguments.insert(arguments.end(), {"--retries", "1"});
        const Outcome outcome = runS3At(server.url(), arguments);
        EXPECT_EQ(outcome.exitStatus, 1);
        EXPECT_EQ(outcome.output, "");
        EXPECT_THAT(outcome.error,
                    EndsWith("\nvantra: " + verb[1] + ": Amazon S3 error: Our message.(SlowDown)\n"));
        EXPECT_THAT(server.finish(), IsEmpty());
    }
}

TEST(ToolS3Failure, OfAConnectionIsTold) {
    const RefusedPort port;
    const std::string endpoint = "http://127.0.0.1:" + std::to_string(port.port());
    const Outcome outcome = runS3At(endpoint, {"rm", "s3://bucket/k", "--retries", "0"});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_THAT(outcome.error, testing::HasSubstr("\nvantra: s3://bucket/k: Couldn't connect to server: "));
}

TEST(ToolS3Failure, OfACopyInAnAnswerOfSuccessIsTold) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(response("200 OK", document("InternalError"))));
    EXPECT_EQ(runS3At(server.url(), {"cp", "s3://bucket/k", "s3://bucket/l"}),
              failed("s3://bucket/k: Amazon S3 error: Our message.(InternalError)"));
}

TEST(ToolS3Failure, OfAnAnswerThatIsNoListingIsTold) {
    for (const char* body : {"no XML", "<ListBucketResult><Contents>"}) {
        ScriptedServer server;
        server.play(Script().expectRequest().send(response("200 OK", body)));
        EXPECT_EQ(runS3At(server.url(), {"ls", "s3://bucket"}),
                  failed("Error parsing Amazon S3 'list objects' result: invalid XML."));
    }
}

TEST(ToolS3Failure, OfAListingThatGoesInCirclesIsTold) {
    const std::string page =
        "<ListBucketResult><IsTruncated>true</IsTruncated><Contents><Key>a</Key></Contents>"
        "</ListBucketResult>";
    ScriptedServer server;
    server.play(Script().expectRequest().send(response("200 OK", page)));
    server.play(Script().expectRequest().send(response("200 OK", page)));
    const std::string line = "           0  " + std::string(24, ' ') + "  a\n";
    EXPECT_EQ(runS3At(server.url(), {"ls", "s3://bucket"}),
              failedAfter(line + line, "s3://bucket: the store says that there is more, but not where."));
}

TEST(ToolS3Failure, OfAStoreThatIgnoresTheRangeIsTold) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(response("200 OK", "0123456789")));
    const Outcome outcome = runS3At(server.url(), {"get", "s3://bucket/k", "--range", "5-6"});
    EXPECT_EQ(outcome, failed(server.url("/bucket/k") + ": the server does not send the range asked for."));
}

TEST(ToolS3Usage, IsRefusedWithoutARequest) {
    const auto refusal = [](const std::string& address) {
        return runTool({"s3", "get", address, "--access-key", "a", "--secret-key-file", nullDevice()});
    };
    EXPECT_EQ(refusal("bucket/key"), refused("OBJECT: 'bucket/key' does not begin with s3://"));
    EXPECT_EQ(refusal("http://bucket/key"), refused("OBJECT: 'http://bucket/key' does not begin with s3://"));
    EXPECT_EQ(refusal("s3:///key"), refused("OBJECT: 's3:///key' names no bucket"));
    EXPECT_EQ(refusal("s3://bucket"),
              refused("OBJECT: 's3://bucket' names no object, as s3://BUCKET/KEY does"));
    EXPECT_EQ(refusal("s3://bucket/"),
              refused("OBJECT: 's3://bucket/' names no object, as s3://BUCKET/KEY does"));
    for (const char* endpoint : {"", "store.example", "ftp://store.example", "http://user@store.example",
                                 "http://store.example/?x=y"}) {
        EXPECT_EQ(runTool({"s3", "ls", "s3://b", "--access-key", "a", "--secret-key-file", nullDevice(),
                           "--endpoint", endpoint}),
                  refused("--endpoint: needs an http or https URL without login and query"));
    }
    EXPECT_EQ(runTool({"s3"}), refused("no verb was given; vantra s3 --help lists them"));
    EXPECT_EQ(runTool({"s3", "ls", "s3://b", "--secret-key-file", nullDevice()}),
              refused("--access-key is required"));
    EXPECT_EQ(runTool({"s3", "ls", "s3://b", "--access-key", "a"}), refused("--secret-key-file is required"));
    EXPECT_EQ(runTool({"s3", "put", "s3://b/k", "--access-key", "a", "--secret-key-file", "f"}),
              refused("--file is required"));
}

TEST(ToolS3Usage, HelpNamesTheVerbs) {
    const Outcome help = runTool({"s3", "--help"});
    EXPECT_EQ(help.exitStatus, 0);
    for (const char* verb : {"ls", "get", "put", "head", "cp", "rm", "exists"})
        EXPECT_THAT(help.output, testing::HasSubstr("\n  " + std::string(verb) + " "));
}
