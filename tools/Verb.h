/// @file Verb.h
/// What all verbs of the command line have in common.
#pragma once

#include "JSONObject.h"

#include <kel/Error.h>

#include <memory>
#include <optional>
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

    /// To be called behind run(): tells programs of the result, if they asked for it.
    /// @param failure what run() has thrown; null for nothing.
    /// @throws kel::CError if that cannot be written.
    virtual void report(const kel::CError* failure) = 0;

    /// Whether the user wants to read of errors alone.
    [[nodiscard]] virtual bool isQuiet() const = 0;

protected:
    IVerb() = default;
};

/// A verb with the part of the parser that reads its arguments, and the options that every verb has: --json
/// and --quiet.
class CVerb : public IVerb {
public:
    [[nodiscard]] bool isChosen() const override;
    /// With --json writes getResult() to standard output unless it is empty; in case of a failure with the
    /// member "error", its message.
    void report(const kel::CError* failure) override;
    [[nodiscard]] bool isQuiet() const override { return quiet_; }

protected:
    /// @param parent the program, or a group of verbs (see addVerbGroup).
    /// @param examples command lines for the help.
    CVerb(CLI::App& parent, const std::string& name, const std::string& description,
          const std::vector<std::string>& examples = {});

    [[nodiscard]] CLI::App& getParser() noexcept { return parser_; }

    /// Whether standard output is to hold JSON and nothing else.
    [[nodiscard]] bool wantsJSON() const noexcept { return json_; }
    /// What report() writes; for run() to fill.
    [[nodiscard]] CJSONObject& getResult() noexcept { return result_; }
    /// Adds the file for what is received to the result, as "output".
    /// @param outputName see openOutput().
    /// @throws CUsageError for --json when standard output is to hold the body already.
    void setOutput(const std::optional<kel::String>& outputName);

    /// Whether progress is to be shown: to a user who sees standard error, and did not ask for quiet.
    [[nodiscard]] bool showsProgress() const;

private:
    CLI::App& parser_;
    bool json_ = false;
    bool quiet_ = false;
    CJSONObject result_;
};

using VerbList = std::vector<std::unique_ptr<IVerb>>;

/// Adds the verbs of a program to its parser.
using VerbAdder = void (*)(CLI::App& program, VerbList& verbs);

/// Adds a group of verbs, which are called "vantra NAME VERB ...".
/// @return the parent for the verbs' constructors.
[[nodiscard]] CLI::App& addVerbGroup(CLI::App& program, const std::string& name,
                                     const std::string& description);

} // namespace vantra::tool
