/// @file HeaderOptions.h
/// The options of headers to send.
#pragma once

#include "arguments/HeaderArgument.h"

#include <vantra/NetRequest.h>

#include <kel/String.h>

#include <optional>
#include <vector>

namespace CLI { // NOLINT(readability-identifier-naming)
class App;
}

namespace vantra::tool {

/// --header, any number of times, and --header-file. Lives as long as the parser, which fills it.
class CHeaderOptions {
public:
    CHeaderOptions() = default;
    CHeaderOptions(const CHeaderOptions&) = delete;
    CHeaderOptions& operator=(const CHeaderOptions&) = delete;

    /// Adds the options to a verb. To be called once.
    void addTo(CLI::App& verb);

    /// Whether the user gave one.
    [[nodiscard]] bool isGiven() const noexcept { return !headers_.empty() || file_; }

    /// Whether the user gave one of that name, in any case. The first call reads the file.
    /// @throws kel::CError if it cannot be read or holds anything but headers.
    [[nodiscard]] bool hasHeader(const kel::String& name) const;

    /// Adds the headers to those that the request sends already. @throws as hasHeader().
    void applyTo(CNetRequest& request) const;

private:
    [[nodiscard]] const std::vector<HeaderArgument>& getHeaders() const;

    std::vector<HeaderArgument> headers_;
    std::optional<kel::String> file_;
    mutable std::optional<std::vector<HeaderArgument>> allHeaders_; // once they were asked for
};

} // namespace vantra::tool
