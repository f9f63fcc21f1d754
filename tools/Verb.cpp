#include "Verb.h"

#include <CLI/CLI.hpp>

namespace vantra::tool {

namespace {

CLI::App& addCommand(CLI::App& parent, const std::string& name, const std::string& description) {
    CLI::App& command = *parent.add_subcommand(name, description);
    command.group("Verbs");
    return command;
}

} // namespace

CVerb::CVerb(CLI::App& parent, const std::string& name, const std::string& description)
    : parser_(addCommand(parent, name, description)) {}

bool CVerb::isChosen() const { return parser_.parsed(); }

CLI::App& addVerbGroup(CLI::App& program, const std::string& name, const std::string& description) {
    CLI::App& group = addCommand(program, name, description);
    group.require_subcommand(0, 1); // that one is needed is said where the verbs are run, in better words
    group.footer("vantra " + name + " VERB --help tells a verb's options.");
    return group;
}

} // namespace vantra::tool
