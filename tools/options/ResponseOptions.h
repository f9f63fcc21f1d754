/// @file ResponseOptions.h
/// The options of what becomes of a response.
#pragma once

#include "arguments/URLArgument.h"
#include "files/Output.h"

#include <kel/String.h>

#include <memory>
#include <optional>

namespace CLI { // NOLINT(readability-identifier-naming)
class App;
}

namespace vantra::tool {

/// --output and --include. Lives as long as the parser, which fills it.
class CResponseOptions {
public:
    CResponseOptions() = default;
    CResponseOptions(const CResponseOptions&) = delete;
    CResponseOptions& operator=(const CResponseOptions&) = delete;

    /// Adds the options to a verb. To be called once.
    void addTo(CLI::App& verb);

    /// @throws CUsageError if an option does not fit the address.
    void checkFor(const CURLArgument& url) const;

    [[nodiscard]] const std::optional<kel::String>& getOutputName() const noexcept { return outputName_; }
    [[nodiscard]] bool getIncludeHeaders() const noexcept { return includeHeaders_; }

    /// The place for the body. @throws kel::CError if it cannot be opened.
    [[nodiscard]] std::unique_ptr<IOutput> open() const;

private:
    std::optional<kel::String> outputName_;
    bool includeHeaders_ = false;
};

} // namespace vantra::tool
