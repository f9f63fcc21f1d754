#include "support/Command.h"
#include "support/Signal.h"
#include "support/TempDir.h"

#include <chrono>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

using namespace testsupport;

namespace {

CommandResult shell(const std::string& script, std::string_view input = {},
                    const CommandOptions& options = {}) {
    return runCommand({"sh", "-c", script}, input, options);
}

} // namespace

TEST(RunCommand, BringsBothOutputsAndTheExitStatus) {
    const CommandResult result = shell("echo out; echo err >&2; exit 3");
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_EQ(result.standardOutput, "out\n");
    EXPECT_EQ(result.standardError, "err\n");
}

TEST(RunCommand, PassesArgumentsUnchanged) {
    EXPECT_EQ(runCommand({"printf", "%s|", "a b", "", "*", "gr\xc3\xbc\xc3\x9f"}).standardOutput,
              "a b||*|gr\xc3\xbc\xc3\x9f|");
}

TEST(RunCommand, FeedsMoreThanAPipeHolds) {
    const std::string input(5'000'000, 'x');
    EXPECT_EQ(runCommand({"cat"}, input).standardOutput, input);
}

TEST(RunCommand, DoesNotMindAProgramThatIgnoresItsInput) {
    const std::string input(5'000'000, 'x');
    EXPECT_EQ(runCommand({"true"}, input).exitStatus, 0);
}

TEST(RunCommand, ShowsASignalAsAShellDoes) {
    EXPECT_EQ(shell("kill -TERM $$").exitStatus, exitStatusAfter(Signal::terminate));
}

TEST(RunCommand, UsesTheFolderAndTheEnvironmentGiven) {
    const TempDir folder;
    CommandOptions options;
    options.workingDirectory = folder.path();
    options.environment = {{"ADDED", "value"}, {"HOME", std::nullopt}};
    const CommandResult result = shell("pwd; echo \"$ADDED\" \"${HOME-none}\"", {}, options);
    EXPECT_EQ(result.standardOutput, folder.path() + "\nvalue none\n");
}

TEST(RunCommand, KillsAProgramThatTakesTooLong) {
    CommandOptions options;
    options.limit = std::chrono::milliseconds(200);
    const auto start = std::chrono::steady_clock::now();
    try {
        shell("echo begun; echo trouble >&2; sleep 1000", {}, options);
        FAIL() << "the program came to an end";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "sh was killed because it ran for longer than 200 ms; its output: begun\n"
                                   "; its error output: trouble\n");
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST(RunCommand, DoesNotWaitForWhatTheProgramLeftBehind) {
    const CommandResult result = shell("sleep 1000 & echo done");
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.standardOutput, "done\n");
}

TEST(RunCommand, LimitsAProgramThatHasClosedItsOutputs) {
    CommandOptions options;
    options.limit = std::chrono::milliseconds(200);
    EXPECT_THROW(shell("exec >&- 2>&-; sleep 1000", {}, options), std::runtime_error);
}

TEST(RunCommand, ReportsAProgramThatDoesNotExist) {
    try {
        runCommand({"no-such-program"});
        FAIL() << "started a program that does not exist";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "the program no-such-program is not installed");
    }
    try {
        runCommand({"/no/such/program"});
        FAIL() << "started a program that does not exist";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "cannot start /no/such/program: No such file or directory");
    }
}
