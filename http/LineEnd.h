/// @file LineEnd.h
/// Texts that go into a line of their own, such as a header or an FTP command. Private to the library.
#pragma once

#include <string_view>

namespace vantra {

/// Whether a text would end its line and begin another one, or be cut off: it holds a CR, LF or NUL.
inline bool hasLineEnd(std::wstring_view text) noexcept {
    constexpr std::wstring_view ends(L"\r\n\0", 3);
    return text.find_first_of(ends) != std::wstring_view::npos;
}

} // namespace vantra
