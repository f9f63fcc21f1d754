/// @file LogOption.h
/// The option of a transfer log.
#pragma once

#include "transfer/TransferLog.h"

#include <kel/String.h>

#include <memory>
#include <optional>

namespace CLI { // NOLINT(readability-identifier-naming)
class App;
}

namespace vantra::tool {

/// --log. Lives as long as the parser, which fills it.
class CLogOption {
public:
    CLogOption() = default;
    CLogOption(const CLogOption&) = delete;
    CLogOption& operator=(const CLogOption&) = delete;

    /// Adds the option to a verb. To be called once.
    void addTo(CLI::App& verb);

    /// @param outputName the file for the body, if any.
    /// @throws CUsageError if the log is to be the same file.
    void checkFor(const std::optional<kel::String>& outputName) const;

    /// The log to write, or null when the user wants none.
    /// @throws kel::CError if the file cannot be created.
    [[nodiscard]] std::unique_ptr<CTransferLog>
    open(CTransferLog::Kind kind = CTransferLog::Kind::OneTransfer) const;

private:
    std::optional<kel::String> file_;
};

} // namespace vantra::tool
