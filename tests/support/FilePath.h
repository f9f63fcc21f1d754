/// @file support/FilePath.h
/// File names in UTF-8, as everywhere in the tests, for std::filesystem, which on Windows takes others for
/// texts in the system's code page.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace testsupport {

inline std::filesystem::path pathOf(std::string_view name) {
    return std::filesystem::path(std::u8string(name.begin(), name.end()));
}

/// The way back.
inline std::string nameOf(const std::filesystem::path& path) {
    const std::u8string name = path.generic_u8string();
    return std::string(name.begin(), name.end());
}

/// A name with the separators of the system, as libraries and programs show it.
inline std::string nativeName(std::string_view name) {
    const std::u8string text = pathOf(name).make_preferred().u8string();
    return std::string(text.begin(), text.end());
}

} // namespace testsupport
