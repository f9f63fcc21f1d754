/// @file HiddenPassword.h
/// Keeping passwords out of what is shown.
#pragma once

#include <kel/String.h>

namespace vantra::tool {

/// The text with "~stripped~" for the password of each URL in it that holds one: what stands between the
/// first ":" behind "://" and the last "@" ahead of the host's end. Behind "'", too: a proxy's address needs
/// no scheme, and libcurl quotes it when it refuses it.
[[nodiscard]] kel::String hidePasswords(const kel::String& text);

} // namespace vantra::tool
