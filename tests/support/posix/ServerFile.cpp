#include "support/ServerFile.h"

#include "support/TempDir.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace testsupport {

void writeServerFile(const std::string& path, std::string_view content) {
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream << content;
    stream.close();
    if (!stream) throw std::runtime_error("cannot write " + path);
}

std::string readServerFile(const std::string& path) { return readWholeFile(path); }

void makeServerFolder(const std::string& path) { std::filesystem::create_directories(path); }

bool existsOnServer(const std::string& path) { return std::filesystem::exists(path); }

std::vector<std::string> namesInServerFolder(const std::string& path) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path))
        names.push_back(entry.path().filename().string());
    std::ranges::sort(names);
    return names;
}

void setServerFileTime(const std::string& path, std::chrono::sys_seconds time) {
    std::filesystem::last_write_time(path, std::chrono::file_clock::from_sys(time));
}

} // namespace testsupport
