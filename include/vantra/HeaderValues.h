/// @file vantra/HeaderValues.h
/// Small parsers for texts that arrive in headers.
///
/// Thread safety: any thread may call any of them.
#pragma once

#include "vantra/Export.h"

#include <kel/Map.h>
#include <kel/String.h>
#include <kel/Time.h>

namespace vantra {

/// Gives the disposition type of a "Content-Disposition" header (RFC 6266), trimmed and in lower case, and
/// adds its parameters to `params` under their lower-cased names; the last mention of a name counts, also
/// over what `params` held before.
///
/// Only quoted values are understood, and neither escapes nor encodings in them: `attachment; filename="a
/// b.txt"` gives "attachment" and "filename" -> "a b.txt". The first parameter of another form ends the scan.
/// Never fails.
VANTRA_API kel::String parseContentDispositionHeader(const kel::String& header,
                                                     kel::TMap<kel::String, kel::String>& params);

/// Reads a date as headers write it, "Sun, 06 Nov 1994 08:49:37 GMT", in any form that libcurl's
/// `curl_getdate` knows; UTC where no zone is told. The text counts up to its first NUL character. The last
/// second of 1969, which to libcurl means an error, is read as the one after it.
/// @throws kel::CError "Error parsing timestamp 'TEXT'." for anything else.
[[nodiscard]] VANTRA_API kel::CTime parseTimestamp(const kel::String& text);

/// A test of plausibility, not of grammar: a single "@" that is not the first character and is followed by a
/// ".", not necessarily at once, and no control character (U+0000 to U+001F), blank, double quote, "<" or ">"
/// anywhere. Characters outside ASCII are fine.
[[nodiscard]] VANTRA_API bool isValidEmailAddress(const kel::String& address);

} // namespace vantra
