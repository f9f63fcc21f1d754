/// @file vantra/URLEncoding.h
/// Percent-encoding (RFC 3986 §2.1) of URLs, query strings and form bodies.
///
///     String url = "https://store.example/find?" + encodeURLParams(params);
///
/// Characters outside ASCII are encoded as the bytes of their UTF-8 form, an unpaired surrogate as U+FFFD.
/// None of these functions fails on any text.
///
/// Thread safety: any thread may call any of them.
#pragma once

#include "vantra/Export.h"

#include <kel/Map.h>
#include <kel/Props.h>
#include <kel/String.h>

#include <map>

namespace vantra {

/// Keeps letters, digits, "-", ".", "_" and "~"; every other byte becomes "%" and two hexadecimal digits in
/// lower case ("/" becomes "%2f").
/// @param spaceAsPlus whether a blank becomes "+" instead of "%20", as in query strings and form bodies.
[[nodiscard]] VANTRA_API kel::String urlEscape(const kel::String& text, bool spaceAsPlus);

/// Replaces each "%" that two hexadecimal digits of either case follow by the byte they stand for; any other
/// "%" stays. The result is read as UTF-8, in which ill-formed bytes become U+FFFD; "%00" gives a NUL
/// character.
/// @param plusAsSpace whether "+" becomes a blank.
[[nodiscard]] VANTRA_API kel::String urlUnescape(const kel::String& text, bool plusAsSpace);

/// "key=value" for each entry, in key order and joined with "&", keys and values as urlEscape(text, true)
/// writes them. An empty value gives "key=", an empty map "".
[[nodiscard]] VANTRA_API kel::String encodeURLParams(const kel::TMap<kel::String, kel::String>& params);

/// Takes the parameters of a query string apart and adds them to `params`: they are separated by "&", the
/// first "=" ends a name, and both sides are read as urlUnescape(text, true) does. A parameter without "="
/// has an empty value, an empty one also an empty name; the last mention of a name counts, also over what
/// `params` held before.
/// @param query without the leading "?", which would become part of the first name. What follows a final "&"
/// is nothing, not an empty parameter.
VANTRA_API void decodeURLParams(const kel::String& query, kel::TMap<kel::String, kel::String>& params);

/// Escapes as kel::CURI::escape does, with "+" for a blank, for bodies of the type
/// "application/x-www-form-urlencoded".
/// @param flag whether the hexadecimal digits are in lower case (`lowerCaseHex` of kel::CURI::escape).
[[nodiscard]] VANTRA_API kel::String formURLEncode(const kel::String& text, bool flag);
/// "name=value" for each entry, in key order and joined with "&", names and values as the form for a single
/// text writes them.
[[nodiscard]] VANTRA_API kel::String formURLEncode(const std::map<kel::String, kel::String>& params,
                                                   bool flag);
/// The same for named texts.
[[nodiscard]] VANTRA_API kel::String formURLEncode(const kel::CProps& params, bool flag);

} // namespace vantra
