// What the verbs for object stores write with --json.
#include "S3Tool.h"

#include "support/MatchesPattern.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

using namespace testsupport;
using namespace tooltest;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

/// The output of a run that succeeds.
std::string runJSON(std::vector<std::string> arguments, std::string_view standardInput = {}) {
    arguments.emplace_back("--json");
    const Outcome outcome = runS3(arguments, standardInput);
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.error, "");
    return outcome.output;
}

} // namespace

TEST(ToolS3JSON, TellsOfUploadsAndDownloads) {
    TempDir folder;
    const std::string file = folder.file("out");
    EXPECT_THAT(
        runJSON({"put", "s3://bucket/json/\xC3\xBC \"x\"", "-f", "-"}, "content"),
        MatchesPattern(
            "\\{\"object\":\"s3://bucket/json/\xC3\xBC \\\\\"x\\\\\"\",\"file\":\"-\",\"status\":20[0-9],"
            "\"finalUrl\":\"http://.*\",\"headers\":\\{.*\\},\"sent\":7,\"received\":[0-9]+,"
            "\"seconds\":[0-9.e-]+\\}\n"));
    EXPECT_THAT(runJSON({"get", "s3://bucket/json/\xC3\xBC \"x\"", "-o", file, "--range", "1-3"}),
                testing::AllOf(HasSubstr("\"output\":\"" + file + "\",\"status\":206,"),
                               HasSubstr(",\"received\":3,"), HasSubstr("\"content-length\":\"3\"")));
    EXPECT_EQ(folder.readFile("out"), "ont");
}

TEST(ToolS3JSON, ListsObjectsAndPrefixes) {
    putObject("s3://bucket/jsonlist/a/b", "12");
    putObject("s3://bucket/jsonlist/c", "");
    EXPECT_THAT(runJSON({"ls", "s3://bucket/jsonlist/", "--delimiter", "/"}),
                MatchesPattern("\\{\"prefix\":\"jsonlist/a/\"\\}\n"
                               "\\{\"key\":\"jsonlist/"
                               "c\",\"size\":0,\"modified\":\"20[-0-9]+T[:.0-9]+Z\",\"etag\":\".+\"\\}\n"));
    EXPECT_EQ(runJSON({"ls", "s3://bucket/jsonlist/nothing"}), "");
}

TEST(ToolS3JSON, TellsOfOneObject) {
    putObject("s3://bucket/jsonone", "12");
    EXPECT_THAT(runJSON({"head", "s3://bucket/jsonone"}),
                testing::AllOf(StartsWith("{\"object\":\"s3://bucket/jsonone\",\"status\":200,"),
                               HasSubstr("\"content-length\":\"2\""), EndsWith("}\n")));
    EXPECT_EQ(runJSON({"cp", "s3://bucket/jsonone", "s3://bucket/jsontwo"}),
              "{\"source\":\"s3://bucket/jsonone\",\"target\":\"s3://bucket/jsontwo\"}\n");
    EXPECT_EQ(runJSON({"exists", "s3://bucket/jsontwo"}),
              "{\"object\":\"s3://bucket/jsontwo\",\"exists\":true}\n");
    EXPECT_EQ(runJSON({"rm", "s3://bucket/jsontwo"}), "{\"object\":\"s3://bucket/jsontwo\"}\n");
    const std::string message = "s3://bucket/jsontwo: there is no such object.";
    EXPECT_EQ(
        runS3({"exists", "s3://bucket/jsontwo", "--json"}),
        failedAfter("{\"object\":\"s3://bucket/jsontwo\",\"exists\":false,\"error\":\"" + message + "\"}\n",
                    message));
}
