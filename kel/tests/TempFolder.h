/// @file TempFolder.h
/// A folder of its own for a test.
#pragma once

#include "kel/Path.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

/// An empty folder that goes with all its content when the test is over.
class CTempFolder {
public:
    CTempFolder() {
        std::random_device random;
        do path_ = std::filesystem::temp_directory_path() / ("kel-test-" + std::to_string(random()));
        while (!std::filesystem::create_directory(path_));
    }
    CTempFolder(const CTempFolder&) = delete;
    CTempFolder& operator=(const CTempFolder&) = delete;
    ~CTempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    [[nodiscard]] const std::filesystem::path& getStdPath() const noexcept { return path_; }
    [[nodiscard]] kel::CPath getPath() const { return kel::CPath(kel::String(path_.c_str())); }
    /// The path of a file in the folder, with slashes as the system has them.
    [[nodiscard]] kel::CPath operator/(const char* name) const { return getPath() / name; }

    void writeFile(const char* name, const std::string& content) const {
        std::ofstream(at(name), std::ios::binary) << content;
    }
    [[nodiscard]] std::string readFile(const char* name) const {
        std::ifstream file(at(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

private:
    /// By a name in UTF-8.
    [[nodiscard]] std::filesystem::path at(const char* name) const {
        return path_ / kel::CPath(kel::String(name)).toStdPath();
    }

    std::filesystem::path path_;
};
