/// @file mail/InputFile.h
/// What the user wants sent.
#pragma once

#include <kel/Buffer.h>
#include <kel/P.h>
#include <kel/String.h>

namespace vantra::tool {

/// Reads a file to its end.
/// @param name of the file; "-" for standard input.
/// @throws kel::CError if it cannot be read.
[[nodiscard]] kel::P<kel::TBuffer<unsigned char>> readInputFile(const kel::String& name);

} // namespace vantra::tool
