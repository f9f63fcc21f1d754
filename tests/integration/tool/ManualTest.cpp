// The manual page and the completion for bash know what the help knows.
#include "VerbTable.h"

#include "support/TempDir.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <regex>
#include <set>
#include <sstream>

using namespace testsupport;
using namespace tooltest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

const std::string manualFile = VANTRA_TOOL_FOLDER "/vantra.1";
const std::string completionFile = VANTRA_TOOL_FOLDER "/completion/vantra.bash";

std::set<std::string> readWords(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), std::istream_iterator<std::string>()};
}

/// What completion offers in place of the last word.
std::set<std::string> complete(const std::vector<std::string>& words, const std::string& folder = "/") {
    CommandOptions options;
    options.workingDirectory = folder;
    std::vector<std::string> command{"bash",
                                     "--norc",
                                     "-c",
                                     ". \"$1\"; shift; COMP_WORDS=(vantra \"$@\"); COMP_CWORD=$#; _vantra; "
                                     "printf '%s\\n' \"${COMPREPLY[@]}\"",
                                     "bash",
                                     completionFile};
    command.insert(command.end(), words.begin(), words.end());
    const CommandResult result = runCommand(command, {}, options);
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.standardError, "");
    return readWords(result.standardOutput);
}

std::set<std::string> optionNames(const Verb& verb) {
    std::set<std::string> names;
    for (const Verb::Option& option : verb.options) names.insert(option.name);
    return names;
}

} // namespace

TEST(ToolManual, IsWellFormed) {
    const CommandResult result = runCommand({"mandoc", "-T", "lint", "-W", "warning", manualFile});
    EXPECT_EQ(result.standardOutput, "");
    EXPECT_EQ(result.standardError, "");
    EXPECT_EQ(result.exitStatus, 0);
}

TEST(ToolManual, DescribesEveryVerbAndOption) {
    const std::string manual = readWholeFile(manualFile);
    for (const Verb& verb : allVerbs()) {
        EXPECT_TRUE(
            std::regex_search(manual, std::regex("\n\\.Ss vantra " + verb.name() + "( (Ar|Op|Li) .*)?\n")))
            << verb.name();
        for (const Verb::Option& option : verb.options) {
            const std::string start =
                option.shortName.empty() ? "" : "Fl " + option.shortName.substr(1) + " , ";
            const std::regex item("\n\\.It (.* )?" + start + "Fl " + option.name.substr(1) + "( .*)?\n");
            EXPECT_TRUE(std::regex_search(manual, item)) << verb.name() << " " << option.name;
        }
    }
}

TEST(ToolManual, DescribesNoOptionThatThereIsNot) {
    const std::string manual = readWholeFile(manualFile);
    std::set<std::string> known{"--version"};
    for (const Verb& verb : allVerbs()) known.merge(optionNames(verb));
    static const std::regex flag("Fl (-[a-z-]+)");
    for (std::sregex_iterator found(manual.begin(), manual.end(), flag); found != std::sregex_iterator();
         ++found)
        EXPECT_EQ(known.count("-" + found->str(1)), 1U) << found->str(1);
}

TEST(ToolCompletion, OffersTheVerbs) {
    std::set<std::string> verbs{"--help", "--version"};
    for (const Verb& verb : allVerbs()) verbs.insert(verb.words.front());
    EXPECT_EQ(complete({""}), verbs);
    EXPECT_EQ(complete({"get"}), (std::set<std::string>{"get", "get-all"}));
    for (const std::string& group : allGroups()) {
        std::set<std::string> inGroup{"--help"};
        for (const Verb& verb : allVerbs())
            if (verb.words.front() == group) inGroup.insert(verb.words.back());
        EXPECT_EQ(complete({group, ""}), inGroup);
    }
}

TEST(ToolCompletion, OffersTheOptionsOfEveryVerb) {
    for (const Verb& verb : allVerbs()) {
        std::vector<std::string> words = verb.words;
        words.emplace_back("--");
        EXPECT_EQ(complete(words), optionNames(verb)) << verb.name();
    }
    EXPECT_EQ(complete({"s3", "ls", "s3://bucket", "--pre"}), (std::set<std::string>{"--prefix"}));
    EXPECT_THAT(complete({"fetch", "--"}), IsEmpty());
}

TEST(ToolCompletion, OffersFilesWhereAnOptionNamesOne) {
    TempDir folder;
    folder.writeFile("notes.txt", "");
    const std::set<std::string> expected{"notes.txt"};
    for (const Verb& verb : allVerbs())
        for (const Verb::Option& option : verb.options) {
            if (option.valueType != "FILE") continue;
            std::vector<std::string> words = verb.words;
            words.insert(words.end(), {option.name, "n"});

            EXPECT_EQ(complete(words, folder.path()), expected) << verb.name() << " " << option.name;
        }
    EXPECT_EQ(complete({"put", "-f", ""}, folder.path()), expected);
    EXPECT_EQ(complete({"ftp", "put", "ftp://h/", "no"}, folder.path()), expected);
    EXPECT_THAT(complete({"get", "--timeout", "n"}, folder.path()), IsEmpty());
    EXPECT_THAT(complete({"get-all", "-d", "n"}, folder.path()), IsEmpty());
}

TEST(ToolCompletion, OffersTheValuesOfAChoice) {
    EXPECT_EQ(complete({"ftp", "ls", "--tls", ""}), (std::set<std::string>{"none", "explicit", "implicit"}));
    EXPECT_EQ(complete({"mail", "test", "--tls", "s"}), (std::set<std::string>{"ssl", "starttls"}));
    EXPECT_EQ(complete({"mail", "test", "--tls", "=", "s"}), (std::set<std::string>{"ssl", "starttls"}));
    EXPECT_EQ(complete({"ftp", "rm", "--cwd", "="}), (std::set<std::string>{"steps", "direct", "none"}));
    EXPECT_EQ(complete({"get", "--proxy", "s"}), (std::set<std::string>{"system"}));
}
