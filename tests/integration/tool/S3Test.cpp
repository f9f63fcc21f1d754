#include "S3Tool.h"

#include "support/MatchesPattern.h"
#include "support/NginxServer.h"

#include <gmock/gmock.h>

#include <regex>

using namespace testsupport;
using namespace tooltest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// A listing with the times, which nobody knows ahead, replaced.
std::string withoutTimes(const std::string& listing) {
    static const std::regex time("20..-..-..T..:..:..\\....Z");
    return std::regex_replace(listing, time, "<the time>");
}

} // namespace

TEST(ToolS3, PutsAndGetsAnObject) {
    const TempDir folder;
    const std::string content = NginxServer::bigContent();
    const std::string file = folder.writeFile("upload.bin", content);
    EXPECT_EQ(runS3({"put", "s3://bucket/a/b c.bin", "-f", file, "--content-type", "image/x-test"}),
              succeeded(""));
    EXPECT_EQ(runS3({"get", "s3://bucket/a/b c.bin"}), succeeded(content));
    EXPECT_EQ(runS3({"get", "s3://bucket/a/b c.bin", "-o", folder.file("copy.bin")}), succeeded(""));
    EXPECT_EQ(folder.readFile("copy.bin"), content);
    EXPECT_THAT(runS3({"head", "s3://bucket/a/b c.bin"}).output, HasSubstr("content-type: image/x-test\n"));
}

TEST(ToolS3, TakesFileNamesAndKeysWithAnyLetters) {
    const TempDir folder;
    const std::string name = "Gr\u00f6\u00dfe \u65e5\u672c \u20ac \U0001F418.bin";
    const std::string content("\0\r\n\xff\x1a more", 10);
    EXPECT_EQ(runS3({"put", "s3://bucket/any/" + name, "-f", folder.writeFile(name, content)}),
              succeeded(""));
    EXPECT_EQ(runS3({"get", "s3://bucket/any/" + name, "-o", folder.file("copy " + name)}), succeeded(""));
    EXPECT_EQ(folder.readFile("copy " + name), content);
    EXPECT_THAT(runS3({"ls", "s3://bucket/any/"}).output, HasSubstr(name));
}

TEST(ToolS3, PutsStandardInputAndNothing) {
    putObject("s3://bucket/from input", "read to its end");
    EXPECT_EQ(runS3({"get", "s3://bucket/from input"}), succeeded("read to its end"));
    putObject("s3://bucket/nothing", "");
    EXPECT_EQ(runS3({"get", "s3://bucket/nothing"}), succeeded(""));
}

TEST(ToolS3, GetsARange) {
    putObject("s3://bucket/range", "0123456789");
    EXPECT_EQ(runS3({"get", "s3://bucket/range", "--range", "2-5"}), succeeded("2345"));
    EXPECT_EQ(runS3({"get", "s3://bucket/range", "--range", "7-"}), succeeded("789"));
    EXPECT_EQ(runS3({"get", "s3://bucket/range", "--range", "0-"}), succeeded("0123456789"));
    const Outcome behind = runS3({"get", "s3://bucket/range", "--range", "10-"});
    EXPECT_EQ(behind.exitStatus, 1);
    EXPECT_EQ(behind.output, "");
    EXPECT_THAT(behind.error,
                MatchesPattern("vantra: s3://bucket/range: Amazon S3 error: .*\\(InvalidRange\\)\n"));
}

TEST(ToolS3, ShowsHeaders) {
    putObject("s3://bucket/headers", "0123456789");
    const Outcome head = runS3({"head", "s3://bucket/headers"});
    EXPECT_EQ(head.exitStatus, 0);
    EXPECT_THAT(head.output, HasSubstr("content-length: 10\n"));
    EXPECT_THAT(head.output, HasSubstr("etag: \"781e5e245d69b566979b86e28d23f2c7\"\n"));
    EXPECT_EQ(runS3({"head", "s3://bucket/none"}), failed("s3://bucket/none: HTTP/1.1 404 Not Found"));
}

TEST(ToolS3, SaysWhetherAnObjectExists) {
    putObject("s3://bucket/there", "x");
    EXPECT_EQ(runS3({"exists", "s3://bucket/there"}), succeeded(""));
    EXPECT_EQ(runS3({"exists", "s3://bucket/not there"}),
              failed("s3://bucket/not there: there is no such object."));
}

TEST(ToolS3, CopiesAndRemovesAnObject) {
    putObject("s3://bucket/old/one", "copied");
    EXPECT_EQ(runS3({"cp", "s3://bucket/old/one", "s3://bucket/new one"}), succeeded(""));
    EXPECT_EQ(runS3({"get", "s3://bucket/new one"}), succeeded("copied"));
    EXPECT_EQ(runS3({"rm", "s3://bucket/new one"}), succeeded(""));
    EXPECT_EQ(runS3({"exists", "s3://bucket/new one"}).exitStatus, 1);
    EXPECT_EQ(runS3({"exists", "s3://bucket/old/one"}).exitStatus, 0);
    EXPECT_THAT(runS3({"cp", "s3://bucket/none", "s3://bucket/new"}).error,
                MatchesPattern("vantra: s3://bucket/none: Amazon S3 error: .*\\(NoSuchKey\\)\n"));
    EXPECT_EQ(runS3({"cp", "s3://bucket/a", "s3://other/b"}),
              refused("TARGET: must be in the bucket of SOURCE"));
}

TEST(ToolS3, ListsSizeTimeAndKey) {
    for (const char* key : {"a", "b/1", "b/2", "c d", "\xf0\x9f\x98\x80"})
        putObject("s3://listed/" + std::string(key), key);
    const Outcome all = runS3({"ls", "s3://listed"});
    EXPECT_EQ(all.exitStatus, 0);
    EXPECT_EQ(all.error, "");
    EXPECT_EQ(withoutTimes(all.output), "           1  <the time>  a\n"
                                        "           3  <the time>  b/1\n"
                                        "           3  <the time>  b/2\n"
                                        "           3  <the time>  c d\n"
                                        "           4  <the time>  \xf0\x9f\x98\x80\n");
    EXPECT_EQ(runS3({"ls", "s3://listed/"}).output, all.output);
}

TEST(ToolS3, ListsWhatPrefixAndDelimiterSay) {
    for (const char* key : {"a", "b/1", "b/2", "c d"}) putObject("s3://listed/" + std::string(key), key);
    const auto list = [](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "ls");
        return withoutTimes(runS3(arguments).output);
    };
    EXPECT_EQ(list({"s3://listed", "--prefix", "b/"}), "           3  <the time>  b/1\n"
                                                       "           3  <the time>  b/2\n");
    EXPECT_EQ(list({"s3://listed/b/"}), list({"s3://listed", "--prefix", "b/"}));
    EXPECT_EQ(list({"s3://listed", "--prefix", "none"}), "");
    const std::string blanks(23, ' ');
    const std::string folders = list({"s3://listed", "--delimiter", "/"});
    EXPECT_THAT(folders, HasSubstr("           1  <the time>  a\n           -  -" + blanks +
                                   "  b/\n"
                                   "           3  <the time>  c d\n"));
    EXPECT_EQ(list({"s3://listed", "--delimiter", "/", "--page-size", "1"}), folders);
    EXPECT_EQ(runS3({"ls", "s3://listed/b", "--prefix", "b"}),
              refused("--prefix: BUCKET names a prefix already"));
}

TEST(ToolS3, ListsAllPages) {
    std::string expected;
    for (int number = 10; number < 33; ++number) {
        putObject("s3://paged/" + std::to_string(number), "x");
        expected += "           1  <the time>  " + std::to_string(number) + "\n";
    }
    EXPECT_EQ(withoutTimes(runS3({"ls", "s3://paged"}).output), expected);
    EXPECT_EQ(withoutTimes(runS3({"ls", "s3://paged", "--page-size", "5"}).output), expected);
    EXPECT_EQ(withoutTimes(runS3({"ls", "s3://paged", "--page-size", "1"}).output), expected);
}

TEST(ToolS3, TakesTheSecretFromStandardInput) {
    putObject("s3://bucket/secretly", "x");
    const std::vector<std::string> arguments = {"s3",
                                                "get",
                                                "s3://bucket/secretly",
                                                "--endpoint",
                                                objectStore().url(),
                                                "--access-key",
                                                S3Server::accessKey(),
                                                "--secret-key-file",
                                                "-"};
    EXPECT_EQ(runTool(arguments, S3Server::secretKey() + "\n"), succeeded("x"));
    EXPECT_EQ(
        runTool({"s3", "put", "s3://bucket/k", "-f", "-", "--access-key", "a", "--secret-key-file", "-"}),
        refused("--file: standard input holds the secret key already"));
}

TEST(ToolS3, GoesOverTLS) {
    NginxOptions options;
    options.reverseProxies.emplace_back().upstreamPort = objectStore().port();
    const NginxServer server(options);
    putObject("s3://bucket/tls", "encrypted");
    const std::vector<std::string> arguments = {"s3",
                                                "get",
                                                "s3://bucket/tls",
                                                "--endpoint",
                                                NginxServer::httpsUrl(server.ports().reverseProxies.at(0)),
                                                "--access-key",
                                                S3Server::accessKey(),
                                                "--secret-key-file",
                                                secretKeyFile()};
    const auto with = [&](const std::vector<std::string>& more) {
        std::vector<std::string> all = arguments;
        all.insert(all.end(), more.begin(), more.end());
        return runTool(all);
    };
    EXPECT_EQ(with({"--cacert", server.caFile()}), succeeded("encrypted"));
    EXPECT_EQ(with({"--insecure"}), succeeded("encrypted"));
    EXPECT_EQ(with({}).exitStatus, 1);
}

TEST(ToolS3, WritesALogWithoutTheSignature) {
    const TempDir folder;
    putObject("s3://bucket/logged", "body of it");
    EXPECT_EQ(runS3({"get", "s3://bucket/logged", "--log", folder.file("get.xml")}), succeeded("body of it"));
    const std::string log = folder.readFile("get.xml");
    EXPECT_THAT(log, HasSubstr("GET /bucket/logged HTTP/1.1"));
    EXPECT_THAT(log, HasSubstr("body%20of%20it"));
    EXPECT_THAT(log, testing::Not(HasSubstr("AWS test")));
    runS3({"ls", "s3://bucket", "--page-size", "1", "--prefix", "logged", "--log", folder.file("ls.xml")});
    EXPECT_THAT(folder.readFile("ls.xml"), HasSubstr("<NetRequests>"));
    EXPECT_THAT(folder.readFile("ls.xml"), HasSubstr("GET /bucket?prefix=logged&amp;max-keys=1 HTTP/1.1"));
}
