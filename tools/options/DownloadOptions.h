/// @file DownloadOptions.h
/// The options of a file to download.
#pragma once

#include "arguments/RangeArgument.h"

#include <kel/String.h>

#include <optional>

namespace CLI { // NOLINT(readability-identifier-naming)
class App;
}

namespace vantra::tool {

/// --output and --range. Lives as long as the parser, which fills it.
class CDownloadOptions {
public:
    CDownloadOptions() = default;
    CDownloadOptions(const CDownloadOptions&) = delete;
    CDownloadOptions& operator=(const CDownloadOptions&) = delete;

    /// Adds the options to a verb. To be called once.
    void addTo(CLI::App& verb);

    /// For openOutput().
    [[nodiscard]] const std::optional<kel::String>& getOutputName() const noexcept { return outputName_; }
    /// Nothing for the whole file.
    [[nodiscard]] const std::optional<CRangeArgument>& getRange() const noexcept { return range_; }

private:
    std::optional<kel::String> outputName_;
    std::optional<CRangeArgument> range_;
};

} // namespace vantra::tool
