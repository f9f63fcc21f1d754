#include "support/TempDir.h"

#include "support/FilePath.h"
#include "support/TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace testsupport {

TempDir::TempDir() : path_(makeTemporaryFolder()) {}

TempDir::~TempDir() { removeFolder(path_); }

std::string TempDir::file(std::string_view name) const { return path_ + "/" + std::string(name); }

std::string TempDir::writeFile(std::string_view name, std::string_view content) const {
    std::string target = file(name);
    const std::filesystem::path path = pathOf(target);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    stream.close();
    if (!stream) throw std::runtime_error("cannot write " + target);
    return target;
}

std::string TempDir::readFile(std::string_view name) const { return readWholeFile(file(name)); }

std::string readWholeFile(const std::string& path) {
    std::ifstream stream(pathOf(path), std::ios::binary);
    if (!stream) throw std::runtime_error("cannot open " + path);
    std::string content{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (stream.bad()) throw std::runtime_error("cannot read " + path);
    return content;
}

} // namespace testsupport
