/// @file Output.h
/// Where received bytes go.
#pragma once

#include <kel/String.h>

#include <memory>
#include <optional>
#include <string_view>

namespace vantra::tool {

/// A destination of bytes. One thread at a time.
class IOutput {
public:
    IOutput(const IOutput&) = delete;
    IOutput& operator=(const IOutput&) = delete;
    virtual ~IOutput() = default;

    /// @throws kel::CError if not all could be written; CClosedPipeError if nobody reads standard output any
    /// more.
    virtual void write(std::string_view bytes) = 0;

    /// Whether the user sees the bytes on a terminal, so that nothing else should be shown there meanwhile.
    [[nodiscard]] virtual bool isTerminal() const noexcept { return false; }

    /// To be called once everything is written; without it the destructor undoes what can be undone.
    /// @throws kel::CError
    virtual void commit() = 0;

protected:
    IOutput() = default;
};

/// Opens what the user named with -o: nothing or "-" for standard output, otherwise a file, which appears
/// under its name only when it is complete (see CNewFile). What exists and is no ordinary file (a device, a
/// pipe) is written to directly.
/// @throws kel::CError if it cannot be opened.
[[nodiscard]] std::unique_ptr<IOutput> openOutput(const std::optional<kel::String>& name);

} // namespace vantra::tool
