/// @file Input.h
/// Where bytes to send come from.
#pragma once

#include <kel/Buffer.h>
#include <kel/P.h>
#include <kel/Stream.h>
#include <kel/String.h>

#include <cstddef>
#include <limits>

namespace vantra::tool {

/// Opens what the user named with -f: "-" for standard input, otherwise a file. Its size is -1 where it
/// cannot be known ahead: of standard input, a pipe, and what the system makes up while it is read (files
/// below /proc).
///
/// Of a file just as many bytes are read as it had when it was opened; one that has become shorter since
/// gives an error. Only what has a size can be read a second time. Reading standard input gives up when the
/// user asked to stop (see Interrupt.h).
/// @throws kel::CError if it cannot be opened.
[[nodiscard]] kel::P<kel::IInStream> openInput(const kel::String& name);

/// Reads what openInput() opens to its end.
/// @param maxLength the most bytes that it may have.
/// @throws kel::CError if it cannot be read; "'NAME' is larger than N bytes, the most that can be sent."
[[nodiscard]] kel::P<kel::TBuffer<unsigned char>>
readInput(const kel::String& name, std::size_t maxLength = std::numeric_limits<std::size_t>::max());

} // namespace vantra::tool
