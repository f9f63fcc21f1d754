#include "System.h"

#include <windows.h>

namespace tooltest {

std::string nullDevice() { return "NUL"; }

/// A command line holds 32767 characters.
std::size_t longArgumentLength() { return 30000; }

bool isUTF8(const std::string& bytes) {
    return bytes.empty() || ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(),
                                                  static_cast<int>(bytes.size()), nullptr, 0) > 0;
}

} // namespace tooltest
