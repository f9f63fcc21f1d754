#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>

#include <string>

using namespace vantra::tool;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

std::string ran; // the verb that ran last

/// A verb that only tells that it ran.
class CTellingVerb : public CVerb {
public:
    CTellingVerb(CLI::App& parent, const std::string& name)
        : CVerb(parent, name, "Tell of " + name), name_(name) {}
    void run() override { ran = name_; }

private:
    std::string name_;
};

void addTestVerbs(CLI::App& program, VerbList& verbs) {
    verbs.push_back(std::make_unique<CTellingVerb>(program, "alone"));
    CLI::App& group = addVerbGroup(program, "store", "Work with a store");
    verbs.push_back(std::make_unique<CTellingVerb>(group, "list"));
    verbs.push_back(std::make_unique<CTellingVerb>(group, "alone"));
}

struct Outcome {
    int exitStatus;
    std::string output;
    std::string error;
};

Outcome run(std::vector<std::string> arguments) {
    ran.clear();
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int exitStatus = runCommandLine(std::move(arguments), &addTestVerbs);
    return {exitStatus, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

} // namespace

TEST(CommandLine, RunsTheVerbThatWasGiven) {
    EXPECT_EQ(run({"alone"}).exitStatus, 0);
    EXPECT_EQ(ran, "alone");
}

TEST(CommandLine, RunsAVerbOfAGroup) {
    EXPECT_EQ(run({"store", "list"}).exitStatus, 0);
    EXPECT_EQ(ran, "list");
}

TEST(CommandLine, SaysWhereTheMissingVerbIsListed) {
    const Outcome program = run({});
    EXPECT_EQ(program.exitStatus, 2);
    EXPECT_EQ(program.error, "vantra: no verb was given; vantra --help lists them\n");
    const Outcome group = run({"store"});
    EXPECT_EQ(group.exitStatus, 2);
    EXPECT_EQ(group.error, "vantra: no verb was given; vantra store --help lists them\n");
    EXPECT_EQ(ran, "");
}

TEST(CommandLine, RefusesAVerbThatTheGroupDoesNotHave) {
    const Outcome outcome = run({"store", "sell"});
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_EQ(outcome.error, "vantra: The following argument was not expected: sell\n");
}

TEST(CommandLine, HelpsWithAGroup) {
    const Outcome outcome = run({"store", "--help"});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.error, "");
    EXPECT_THAT(outcome.output, StartsWith("Work with a store\nUsage: vantra store [OPTIONS] [VERB]\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\nVerbs:\n  list                        Tell of list\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\nvantra store VERB --help tells a verb's options.\n"));
}
