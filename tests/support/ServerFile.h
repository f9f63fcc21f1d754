/// @file support/ServerFile.h
/// Files as the servers of the tests see them, which may have names that the test's own system does not
/// allow, such as "a?b".
///
///     writeServerFile(server.file("/a?b"), "content");
///     EXPECT_THAT(namesInServerFolder(server.file("/")), ElementsAre("a?b", "readonly"));
///
/// All paths are absolute and in UTF-8. Each function throws a std::runtime_error if it cannot do its work.
/// Thread safety: any thread may call them.
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace testsupport {

/// Writes a file, byte for byte, replacing an older one. Its folder has to be there.
void writeServerFile(const std::string& path, std::string_view content);

/// Reads a file, byte for byte.
std::string readServerFile(const std::string& path);

/// Makes a folder and those above it that are missing.
void makeServerFolder(const std::string& path);

/// Whether there is a file or folder.
bool existsOnServer(const std::string& path);

/// The names in a folder, hidden ones included, sorted.
std::vector<std::string> namesInServerFolder(const std::string& path);

/// Sets when a file was last changed.
void setServerFileTime(const std::string& path, std::chrono::sys_seconds time);

} // namespace testsupport
