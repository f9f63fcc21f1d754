/// @file Endpoint.h
/// The base URL of an object store.
#pragma once

#include <kel/String.h>

#include <optional>

namespace vantra {

/// The URL of a store as CS3Client keeps it, scheme in lower case and a "/" at the end; nothing if it is not
/// "http" or "https", a host, optionally a port and a path in escaped form.
[[nodiscard]] std::optional<kel::String> parseEndpoint(const kel::String& url);

} // namespace vantra
