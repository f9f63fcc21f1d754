/// @file Verb.h
/// What all verbs of the command line have in common.
#pragma once

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

} // namespace vantra::tool
