#include "files/OutputFile.h"

#include <algorithm>
#include <string>
#include <string_view>

#include <windows.h>

namespace vantra::tool {

namespace fs = std::filesystem;

namespace {

/// For the name of a device, whichever folder that is sought in, it begins with \\.\ then. Empty on failure.
std::wstring getFullPath(const fs::path& path) {
    std::wstring text(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length =
            ::GetFullPathNameW(path.c_str(), static_cast<DWORD>(text.size()), text.data(), nullptr);
        const bool isWhole = length < text.size();
        text.resize(length);
        if (isWhole) return text;
    }
}

bool namesDevice(const fs::path& path) {
    constexpr std::wstring_view devices = L"\\\\.\\";
    constexpr std::size_t driveLength = 2;
    const std::wstring text = getFullPath(path);
    if (!text.starts_with(devices)) return false;
    // A drive is a device too, and has ordinary files.
    return text.size() <= devices.size() + driveLength || text[devices.size() + 1] != L':';
}

/// On every file system in use. The system would not tell before the file is made.
bool isTooLong(const fs::path& name) {
    constexpr std::size_t longestName = 255;
    return name.native().size() > longestName;
}

bool isForbidden(wchar_t c) {
    constexpr std::wstring_view marks = L"<>:\"|?*";
    return c < L' ' || marks.find(c) != std::wstring_view::npos;
}

} // namespace

bool isSpecialFile(const fs::path& path) {
    if (namesDevice(path)) return true;
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    return fs::exists(status) && !fs::is_regular_file(status);
}

std::error_code checkFileName(const fs::path& path) {
    if (std::any_of(path.begin(), path.end(), &isTooLong))
        return std::make_error_code(std::errc::filename_too_long);
    const std::wstring name = path.filename().native();
    if (std::any_of(name.begin(), name.end(), &isForbidden))
        return std::make_error_code(std::errc::invalid_argument);
    return {};
}

bool areSamePath(const fs::path& left, const fs::path& right) {
    return ::CompareStringOrdinal(left.c_str(), -1, right.c_str(), -1, TRUE) == CSTR_EQUAL;
}

} // namespace vantra::tool
