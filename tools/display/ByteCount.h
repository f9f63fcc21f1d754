/// @file ByteCount.h
/// Numbers of bytes for people.
#pragma once

#include <kel/Int64.h>
#include <kel/String.h>

namespace vantra::tool {

/// "512 B", "1.5 KiB", "20.0 MiB" and so on up to EiB, in powers of 1024, rounded to one decimal.
/// @param count not negative.
[[nodiscard]] kel::String formatByteCount(kel::int64 count);

} // namespace vantra::tool
