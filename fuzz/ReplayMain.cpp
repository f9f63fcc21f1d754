/// Runs a fuzz target on each file of the folders it is given, without libFuzzer. An input on which something
/// does not hold ends the process; its name is the last one written.

#include "fuzz/Fuzz.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

std::vector<std::filesystem::path> listFiles(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.is_regular_file()) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    if (files.empty()) throw std::runtime_error("no inputs in " + folder.string());
    return files;
}

/// Read into memory of exactly its size, so that a sanitizer notices a look beyond the end.
std::vector<std::uint8_t> readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file) throw std::runtime_error("cannot read " + path.string());
    bytes.shrink_to_fit();
    return bytes;
}

} // namespace

int main(int argumentCount, char** arguments) {
    try {
        if (argumentCount < 2) throw std::runtime_error("usage: " + std::string(arguments[0]) + " FOLDER...");
        for (int i = 1; i < argumentCount; ++i) {
            for (const auto& file : listFiles(arguments[i])) {
                std::cerr << file.filename().string() << std::endl;
                const std::vector<std::uint8_t> bytes = readFile(file);
                LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
            }
        }
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
}
