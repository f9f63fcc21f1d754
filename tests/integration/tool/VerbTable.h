/// All verbs of the `vantra` command, as its help lists them.
#pragma once

#include "Tool.h"

#include "support/TempDir.h"

#include <functional>
#include <string>
#include <vector>

namespace tooltest {

/// What the help of a verb says.
struct Verb {
    struct Option {
        std::string shortName; ///< such as "-o"; empty if it has none
        std::string name;      ///< such as "--output"
        std::string valueType; ///< such as "FILE"; empty for a flag
    };

    std::vector<std::string> words; ///< such as {"ftp", "ls"}
    std::string help;               ///< all of it
    std::vector<Option> options;    ///< "--help" included
    std::vector<std::string> examples;

    /// The words with blanks between them.
    std::string name() const;
};

/// The verbs without the groups.
const std::vector<Verb>& allVerbs();
/// The groups.
const std::vector<std::string>& allGroups();

/// A folder in which all that the examples name is there, and an environment in which whatever they would
/// reach refuses the connection.
class ExampleFolder {
public:
    ExampleFolder();

    const std::string& path() const { return folder_.path(); }

    /// Runs the program here.
    Outcome run(const std::vector<std::string>& arguments) const;
    /// Runs a bash command here that calls the program by its name.
    Outcome runShell(const std::string& command) const;

private:
    Outcome runCommand(const std::vector<std::string>& command) const;

    testsupport::TempDir folder_;
};

/// The arguments of the verb's first example, with "--quiet": failures are one line then.
std::vector<std::string> exampleArguments(const Verb& verb);
/// The same with this value for the option.
std::vector<std::string> exampleArguments(const Verb& verb, const Verb::Option& option,
                                          const std::string& value);

/// Exit status 1 or 2, nothing on standard output, and one line on standard error that begins with "vantra:
/// ", is UTF-8 and not very long, and has no control character in it.
void expectCleanFailure(const Outcome& outcome, const std::string& what);

/// Calls a function with all numbers below the count, several at a time: waiting for processes is most of
/// what such tests do.
void forEachInParallel(std::size_t count, const std::function<void(std::size_t)>& action);

} // namespace tooltest
