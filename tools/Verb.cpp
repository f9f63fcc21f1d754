#include "Verb.h"

#include "arguments/HiddenPassword.h"
#include "Errors.h"
#include "files/Output.h"
#include "files/Terminal.h"

#include <CLI/CLI.hpp>

namespace vantra::tool {

namespace {

CLI::App& addCommand(CLI::App& parent, const std::string& name, const std::string& description) {
    CLI::App& command = *parent.add_subcommand(name, description);
    command.group("Verbs");
    return command;
}

std::string makeFooter(const std::vector<std::string>& examples) {
    if (examples.empty()) return {};
    std::string text = examples.size() == 1 ? "Example:" : "Examples:";
    for (const std::string& example : examples) text += "\n  " + example;
    return text;
}

} // namespace

CVerb::CVerb(CLI::App& parent, const std::string& name, const std::string& description,
             const std::vector<std::string>& examples)
    : parser_(addCommand(parent, name, description)) {
    constexpr const char* group = "Reporting";
    parser_
        .add_flag("--json", json_,
                  "Write the result to standard output as JSON, in\nUTF-8, an object a line; see the manual")
        ->group(group);
    parser_.add_flag("--quiet", quiet_, "Show no progress and no notes, errors alone")->group(group);
    parser_.footer(makeFooter(examples));
}

bool CVerb::isChosen() const { return parser_.parsed(); }

void CVerb::report(const kel::CError* failure) {
    if (!json_) return;
    if (failure) result_.setText("error", hidePasswords(failure->getMessage()));
    if (result_.isEmpty()) return;
    const std::unique_ptr<IOutput> output = openOutput(std::nullopt);
    output->write(result_.toLine(output->isTerminal()));
    output->commit();
}

void CVerb::setOutput(const std::optional<kel::String>& outputName) {
    const kel::String name = outputName.value_or("-");
    if (json_ && name == "-")
        throw CUsageError("--json: needs --output with a file, since both go to standard output otherwise");
    result_.setText("output", name);
}

bool CVerb::showsProgress() const { return !quiet_ && isStandardErrorTerminal(); }

CLI::App& addVerbGroup(CLI::App& program, const std::string& name, const std::string& description) {
    CLI::App& group = addCommand(program, name, description);
    group.require_subcommand(0, 1); // that one is needed is said where the verbs are run, in better words
    group.footer("vantra " + name + " VERB --help tells a verb's options.");
    return group;
}

} // namespace vantra::tool
