/// @file OutputFile.h
/// The door to what the system makes of the path of a file that is to be written. posix/ and windows/ hold
/// one implementation each.
#pragma once

#include <filesystem>
#include <system_error>

namespace vantra::tool {

/// Whether the path names something that exists and is no ordinary file, such as a folder, a named pipe, or
/// /dev/null and NUL.
[[nodiscard]] bool isSpecialFile(const std::filesystem::path& path);

/// Why the system lets no file have this name, whether its folder is there or not: it is too long, or has
/// characters that it must not have. No error for any other name.
[[nodiscard]] std::error_code checkFileName(const std::filesystem::path& path);

/// Whether two absolute paths without links are one to the system, which may take no notice of upper and
/// lower case.
[[nodiscard]] bool areSamePath(const std::filesystem::path& left, const std::filesystem::path& right);

} // namespace vantra::tool
