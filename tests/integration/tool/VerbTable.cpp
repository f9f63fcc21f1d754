#include "VerbTable.h"

#include "System.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace tooltest {

namespace {

std::vector<std::string> splitLines(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

std::string readHelp(std::vector<std::string> words) {
    words.emplace_back("--help");
    const Outcome outcome = runTool(words);
    if (outcome.exitStatus != 0) throw std::runtime_error("no help: " + outcome.error);
    return outcome.output;
}

/// The first words of the lines below "Verbs:".
std::vector<std::string> readVerbNames(const std::string& help) {
    static const std::regex entry("  ([a-z0-9-]+) +[A-Z].*");
    std::vector<std::string> names;
    bool isBelow = false;
    std::smatch found;
    for (const std::string& line : splitLines(help)) {
        if (line == "Verbs:")
            isBelow = true;
        else if (line.empty())
            isBelow = false;
        else if (isBelow && std::regex_match(line, found, entry))
            names.push_back(found[1]);
    }
    return names;
}

std::vector<Verb::Option> readOptions(const std::string& help) {
    static const std::regex entry("  (?:(-[a-z]),)?(--[a-z-]+)(?: ('[^']*'|[A-Za-z][^ ]*))?(?: .*)?");
    std::vector<Verb::Option> options;
    std::smatch found;
    for (const std::string& line : splitLines(help))
        if (std::regex_match(line, found, entry)) options.push_back({found[1], found[2], found[3]});
    return options;
}

std::vector<std::string> readExamples(const std::string& help) {
    std::vector<std::string> examples;
    bool isBelow = false;
    for (const std::string& line : splitLines(help)) {
        if (line == "Example:" || line == "Examples:") {
            isBelow = true;
        } else if (isBelow && !examples.empty() && examples.back().ends_with('\\')) {
            examples.back().back() = ' ';
            examples.back() += line;
        } else if (isBelow && !line.empty()) {
            examples.push_back(line.substr(line.find_first_not_of(' ')));
        }
    }
    return examples;
}

Verb readVerb(const std::vector<std::string>& words) {
    Verb verb;
    verb.words = words;
    verb.help = readHelp(words);
    verb.options = readOptions(verb.help);
    verb.examples = readExamples(verb.help);
    return verb;
}

struct Table {
    std::vector<Verb> verbs;
    std::vector<std::string> groups;
};

const Table& table() {
    static const Table instance = [] {
        Table table;
        for (const std::string& name : readVerbNames(readHelp({}))) {
            const std::vector<std::string> inGroup = readVerbNames(readHelp({name}));
            if (inGroup.empty())
                table.verbs.push_back(readVerb({name}));
            else
                table.groups.push_back(name);
            for (const std::string& verb : inGroup) table.verbs.push_back(readVerb({name, verb}));
        }
        return table;
    }();
    return instance;
}

} // namespace

std::string Verb::name() const { return words.size() == 1 ? words[0] : words[0] + " " + words[1]; }

const std::vector<Verb>& allVerbs() { return table().verbs; }

const std::vector<std::string>& allGroups() { return table().groups; }

ExampleFolder::ExampleFolder() {
    for (const char* name : {"pw.txt", "key.txt", "notes.txt", "notes.pdf", "order.json"})
        folder_.writeFile(name, "content\n");
    for (const char* name : {"downloads", "notes"}) std::filesystem::create_directory(folder_.file(name));
    // By a program of the system that the shell runs on; the test's own may have no links.
    EXPECT_EQ(testsupport::runCommand({"ln", "-s", toolPath(), folder_.file("vantra")}).exitStatus, 0);
}

Outcome ExampleFolder::run(const std::vector<std::string>& arguments) const {
    std::vector<std::string> command{toolPath()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runCommand(command);
}

Outcome ExampleFolder::runShell(const std::string& command) const {
    return runCommand({"bash", "-c", "PATH=$PWD:$PATH\n" + command});
}

Outcome ExampleFolder::runCommand(const std::vector<std::string>& command) const {
    testsupport::CommandOptions options;
    options.workingDirectory = folder_.path();
    options.environment = toolEnvironment();
    for (const char* variable : {"http_proxy", "https_proxy", "ftp_proxy", "all_proxy"})
        options.environment[variable] = "http://127.0.0.1:1";
    return testsupport::outcomeOf(testsupport::runCommand(command, {}, options));
}

std::vector<std::string> exampleArguments(const Verb& verb) {
    std::istringstream stream(verb.examples.at(0));
    std::vector<std::string> words;
    for (std::string word; stream >> word;) words.push_back(word);
    const auto program = std::find(words.begin(), words.end(), "vantra");
    if (program == words.end())
        throw std::runtime_error("an example without the program: " + verb.examples[0]);
    std::vector<std::string> arguments(program + 1, words.end());
    arguments.insert(arguments.begin() + static_cast<std::ptrdiff_t>(verb.words.size()), "--quiet");
    return arguments;
}

std::vector<std::string> exampleArguments(const Verb& verb, const Verb::Option& option,
                                          const std::string& value) {
    std::vector<std::string> arguments = exampleArguments(verb);
    const auto found = std::find_if(arguments.begin(), arguments.end(), [&](const std::string& word) {
        return word == option.name || word == option.shortName;
    });
    if (found != arguments.end()) {
        *(found + 1) = value;
        return arguments;
    }
    if (option.name == "--password-file") arguments.insert(arguments.end(), {"--user", "jane"});
    arguments.insert(arguments.end(), {option.name, value});
    return arguments;
}

void expectCleanFailure(const Outcome& outcome, const std::string& what) {
    constexpr std::size_t longestLine = 20000;
    const auto isControl = [](unsigned char c) { return c < ' ' || c == 0x7F; };
    std::string line = outcome.error;
    EXPECT_TRUE(outcome.exitStatus == 1 || outcome.exitStatus == 2) << what << ": " << outcome.exitStatus;
    EXPECT_EQ(outcome.output, "") << what;
    EXPECT_TRUE(line.starts_with("vantra: ") && line.ends_with("\n")) << what << ": " << line;
    if (!line.empty()) line.pop_back();
    EXPECT_TRUE(std::none_of(line.begin(), line.end(), isControl)) << what << ": " << line;
    EXPECT_LT(line.size(), longestLine) << what;
    EXPECT_TRUE(isUTF8(line)) << what << ": " << line;
}

void forEachInParallel(std::size_t count, const std::function<void(std::size_t)>& action) {
    constexpr int threadCount = 4;
    std::atomic<std::size_t> next{0};
    const auto work = [&] {
        for (std::size_t i = next++; i < count; i = next++) action(i);
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) threads.emplace_back(work);
    for (std::thread& thread : threads) thread.join();
}

} // namespace tooltest
