/// @file FileName.h
/// Names of files that servers choose.
#pragma once

#include "arguments/URLArgument.h"

#include <kel/Map.h>
#include <kel/String.h>

namespace vantra::tool {

/// A name that is safe to create in a folder on every platform: what follows the last "/" or "\"; with "_"
/// for control characters and any of <>:"|?*, and for a "." at the start, so that nothing comes to be hidden;
/// without blanks and dots at the end; with "_" ahead of the name of a Windows device ("NUL", "com1.txt");
/// and cut to 200 bytes of UTF-8 ahead of its extension. "index.html" if nothing is left.
[[nodiscard]] kel::String makeSafeFileName(const kel::String& name);

/// The safe form of the last part of the URL's path, percent-decoded.
[[nodiscard]] kel::String getFileNameFromURL(const CURLArgument& url);

/// The safe form of the "filename" in the header "Content-Disposition"; empty if there is none.
[[nodiscard]] kel::String getFileNameFromHeaders(const kel::TMap<kel::String, kel::String>& responseHeaders);

/// "name (2).txt" for "name.txt" and 2; the name itself for 1.
[[nodiscard]] kel::String numberFileName(const kel::String& name, int number);

} // namespace vantra::tool
