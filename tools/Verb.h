/// @file Verb.h
/// What all verbs of the command line have in common.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace CLI { // NOLINT(readability-identifier-naming)
class App;
}

namespace vantra::tool {

/// A verb of the command line ("vantra get ..."). Its constructor adds it to the parser, which fills it in.
class IVerb {
public:
    IVerb(const IVerb&) = delete;
    IVerb& operator=(const IVerb&) = delete;
    virtual ~IVerb() = default;

    /// Whether the user gave it.
    [[nodiscard]] virtual bool isChosen() const = 0;

    /// Does it. To be called once, after the command line was parsed.
    /// @throws CUsageError for arguments that do not fit together; kel::CError when it fails.
    virtual void run() = 0;

protected:
    IVerb() = default;
};

/// A verb with the part of the parser that reads its arguments.
class CVerb : public IVerb {
public:
    [[nodiscard]] bool isChosen() const override;

protected:
    /// @param parent the program, or a group of verbs (see addVerbGroup).
    CVerb(CLI::App& parent, const std::string& name, const std::string& description);

    [[nodiscard]] CLI::App& getParser() noexcept { return parser_; }

private:
    CLI::App& parser_;
};

using VerbList = std::vector<std::unique_ptr<IVerb>>;

/// Adds the verbs of a program to its parser.
using VerbAdder = void (*)(CLI::App& program, VerbList& verbs);

/// Adds a group of verbs, which are called "vantra NAME VERB ...".
/// @return the parent for the verbs' constructors.
[[nodiscard]] CLI::App& addVerbGroup(CLI::App& program, const std::string& name,
                                     const std::string& description);

} // namespace vantra::tool
