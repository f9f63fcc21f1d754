/// @file vantra/HTTPStatusLine.h
/// Splits an HTTP status line (RFC 9112 §4).
///
/// Thread safety: any thread may call any of them.
#pragma once

#include "vantra/Export.h"

#include <kel/String.h>

namespace vantra {

/// Gives the status code, the text between the first and the second blank as a number, and the reason, which
/// is the trimmed rest. "HTTP/2 200" gives 200 and "". Any integer counts as a code, of one that is too large
/// for an `int` the lower 32 bits.
/// @throws kel::CError "Invalid HTTP status line: 'LINE'" when the line does not start with "HTTP/" (in any
/// case) or holds no blank; kel::parseInt64's error when the code is no integer. The outputs are unchanged
/// then.
VANTRA_API void parseHTTPStatusLine(const kel::String& line, int& statusCode, kel::String& info);

/// The code alone; errors as above.
VANTRA_API int getStatusCodeFromHTTPStatusLine(const kel::String& line);

/// The reason alone; errors as above.
VANTRA_API kel::String getInfoFromHTTPStatusLine(const kel::String& line);

} // namespace vantra
