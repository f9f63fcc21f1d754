/// What the systems on which the command runs call or do in their own ways. posix/ and windows/ hold one
/// implementation each.
#pragma once

#include <cstddef>
#include <string>

namespace tooltest {

/// The name of the file that is always empty and takes everything.
std::string nullDevice();

/// The length of an argument that is longer than anybody would write, and that the system still passes on.
std::size_t longArgumentLength();

/// Whether the system's own decoder takes the bytes for UTF-8.
bool isUTF8(const std::string& bytes);

} // namespace tooltest
