/// The parts of a header line, without copying it. Private to the library.
#pragma once

#include <string_view>

namespace vantra {

struct HeaderLineParts {
    std::wstring_view name;
    std::wstring_view value;
};

/// Splits at the first ":" and trims both parts.
/// @throws kel::CInvalidArgError as CNetHeaders::splitEntry.
HeaderLineParts splitHeaderLine(std::wstring_view line);

} // namespace vantra
