#include "support/TempDir.h"

#include "support/FileDescriptor.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace testsupport {

TempDir::TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vantra-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throwErrno("make the temporary folder " + pattern);
    path_ = pattern;
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TempDir::file(std::string_view name) const { return path_ + "/" + std::string(name); }

std::string TempDir::writeFile(std::string_view name, std::string_view content) const {
    std::string target = file(name);
    std::filesystem::create_directories(std::filesystem::path(target).parent_path());
    std::ofstream stream(target, std::ios::binary | std::ios::trunc);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    stream.close();
    if (!stream) throw std::runtime_error("cannot write " + target);
    return target;
}

std::string TempDir::readFile(std::string_view name) const { return readWholeFile(file(name)); }

std::string readWholeFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) throw std::runtime_error("cannot open " + path);
    std::string content{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (stream.bad()) throw std::runtime_error("cannot read " + path);
    return content;
}

} // namespace testsupport
