/// @file mail/ContentType.h
/// Kinds of files.
#pragma once

#include <kel/String.h>

namespace vantra::tool {

/// The media type that a file of this name usually has, by its ending; "application/octet-stream" for endings
/// that are not known.
[[nodiscard]] kel::String guessContentType(const kel::String& fileName);

} // namespace vantra::tool
