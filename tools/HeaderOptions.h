/// @file HeaderOptions.h
/// The option of headers to send.
#pragma once

#include "HeaderArgument.h"

#include <vantra/NetRequest.h>

#include <vector>

namespace CLI { // NOLINT(readability-identifier-naming)
class App;
}

namespace vantra::tool {

/// --header, any number of times. Lives as long as the parser, which fills it.
class CHeaderOptions {
public:
    CHeaderOptions() = default;
    CHeaderOptions(const CHeaderOptions&) = delete;
    CHeaderOptions& operator=(const CHeaderOptions&) = delete;

    /// Adds the option to a verb. To be called once.
    void addTo(CLI::App& verb);

    /// Whether the user gave one.
    [[nodiscard]] bool isGiven() const noexcept { return !headers_.empty(); }

    /// Whether the user gave one of that name, in any case.
    [[nodiscard]] bool hasHeader(const kel::String& name) const;

    /// Adds the headers to those that the request sends already.
    void applyTo(CNetRequest& request) const;

private:
    std::vector<HeaderArgument> headers_;
};

} // namespace vantra::tool
