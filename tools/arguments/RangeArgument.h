/// @file RangeArgument.h
/// The part of a file that a transfer fetches.
#pragma once

#include <vantra/NetRequest.h>

#include <kel/Int64.h>

#include <string>

namespace vantra::tool {

/// "A-B", the bytes from A to B inclusive, or "A-", all from A on; the first byte is 0.
class CRangeArgument {
public:
    /// @param option the option's name, for the error's text.
    /// @throws CUsageError for anything else, and for a B that is less than A.
    CRangeArgument(const std::string& option, const std::string& argument);

    void applyTo(CNetRequest& request) const;

    [[nodiscard]] kel::int64 getFirst() const noexcept { return first_; }
    /// The number of bytes, -1 for all that follow.
    [[nodiscard]] kel::int64 getLength() const noexcept { return length_; }
    /// Whether it is everything, so that an answer without a range is right too.
    [[nodiscard]] bool isWhole() const noexcept { return first_ == 0 && length_ == -1; }

private:
    kel::int64 first_ = 0;
    kel::int64 length_ = -1;
};

} // namespace vantra::tool
