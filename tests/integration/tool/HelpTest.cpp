#include "VerbTable.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace tooltest;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

TEST(ToolHelp, KnowsEveryVerb) {
    std::vector<std::string> names;
    for (const Verb& verb : allVerbs()) names.push_back(verb.name());
    EXPECT_THAT(names, testing::ElementsAre("get", "get-all", "put", "post", "proxy", "ftp ls", "ftp stat",
                                            "ftp get", "ftp put", "ftp mkdir", "ftp rmdir", "ftp rm",
                                            "ftp mv", "ftp rmtree", "mail send", "mail test", "s3 ls",
                                            "s3 get", "s3 put", "s3 head", "s3 cp", "s3 rm", "s3 exists"));
    EXPECT_THAT(allGroups(), testing::ElementsAre("ftp", "mail", "s3"));
}

TEST(ToolHelp, HasUsageOptionsAndExamplesForEveryVerb) {
    for (const Verb& verb : allVerbs()) {
        EXPECT_THAT(verb.help, HasSubstr("\nUsage: vantra " + verb.name() + " [OPTIONS]"));
        EXPECT_THAT(verb.examples, testing::AllOf(SizeIs(testing::Ge(1U)), SizeIs(testing::Le(3U))))
            << verb.name();
        for (const std::string& example : verb.examples)
            EXPECT_THAT(example, HasSubstr("vantra " + verb.name()));
        std::vector<std::string> options;
        for (const Verb::Option& option : verb.options) options.push_back(option.name);
        EXPECT_THAT(options, testing::IsSupersetOf({"--help", "--json", "--quiet"})) << verb.name();
        EXPECT_THAT(options, Not(testing::Contains("--password"))) << verb.name();
        EXPECT_THAT(options, Not(testing::Contains("--secret-key"))) << verb.name();
    }
}

TEST(ToolHelp, IsTheSameForBothNamesOfItsOption) {
    for (const Verb& verb : {allVerbs().front(), allVerbs().back()}) {
        std::vector<std::string> words = verb.words;
        words.emplace_back("-h");
        EXPECT_EQ(runTool(words), succeeded(verb.help));
    }
}

/// The connection is refused, so nothing else is wrong with them.
TEST(ToolHelp, GivesExamplesThatWork) {
    const ExampleFolder folder;
    for (const Verb& verb : allVerbs())
        for (const std::string& example : verb.examples) {
            const Outcome outcome = folder.runShell(example);
            EXPECT_EQ(outcome.exitStatus, verb.name() == "proxy" ? 0 : 1) << example << "\n" << outcome.error;
            EXPECT_EQ(outcome.error.find("127.0.0.1") != std::string::npos, verb.name() != "proxy")
                << example << "\n"
                << outcome.error;
        }
}

TEST(ToolHelp, EndsQuietlyWhenNobodyReadsIt) {
    const std::string intoClosedPipe =
        "trap '' PIPE; { sleep 0.1; \"$TOOL\" \"$@\"; echo \"tool $?\" >&2; } | true";
    const Outcome expected{0, "", "tool 1\n"};
    EXPECT_EQ(runScript(intoClosedPipe, {"--help"}), expected);
    EXPECT_EQ(runScript(intoClosedPipe, {"--version"}), expected);
    EXPECT_EQ(runScript(intoClosedPipe, {"s3", "--help"}), expected);
    EXPECT_EQ(runScript(intoClosedPipe, {"get", "--help"}), expected);
    EXPECT_EQ(runScript(intoClosedPipe, {"proxy", "--json"}), expected);
}

TEST(ToolHelp, IsAnErrorWhenItCannotBeWritten) {
    const std::string message = "Error writing to standard output: No space left on device.";
    EXPECT_EQ(runScript("\"$TOOL\" --version > /dev/full", {}), failed(message));
    EXPECT_EQ(runScript("\"$TOOL\" mail send --help > /dev/full", {}), failed(message));
    EXPECT_EQ(runScript("\"$TOOL\" proxy --json > /dev/full", {}), failed(message));
}
