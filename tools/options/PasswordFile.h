/// @file PasswordFile.h
/// A password that does not stand on the command line, where other users of the machine could read it.
#pragma once

#include <kel/String.h>

namespace vantra::tool {

/// Reads the one line of a file, without its line end (LF or CR LF).
/// @param file its name; "-" for standard input.
/// @throws kel::CError if it cannot be read, holds more than one line, more than 4096 bytes, a control
/// character or text that is not UTF-8.
[[nodiscard]] kel::String readPasswordFile(const kel::String& file);

} // namespace vantra::tool
