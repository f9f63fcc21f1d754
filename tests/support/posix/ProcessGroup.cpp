#include "support/posix/ProcessGroup.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <memory>

namespace testsupport {

namespace {

/// What /proc/<process>/stat tells about a process (proc(5)).
struct ProcessStatus {
    char state = 'X';
    pid_t group = 0;
    long threadCount = 0;
};

ProcessStatus statusOf(const char* process) {
    char path[64];
    std::snprintf(path, sizeof path, "/proc/%s/stat", process);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path, "re"), &std::fclose);
    char line[1024] = "";
    if (!file || std::fgets(line, sizeof line, file.get()) == nullptr) return {};
    // The program's name stands in parentheses and may itself contain some.
    const char* afterName = std::strrchr(line, ')');
    ProcessStatus status;
    if (afterName == nullptr ||
        std::sscanf(afterName + 1, " %c %*d %d %*d %*d %*d %*u %*u %*u %*u %*u %*u %*u %*d %*d %*d %*d %ld",
                    &status.state, &status.group, &status.threadCount) != 3) {
        return {};
    }
    return status;
}

/// A process whose first thread has ended shows the same state as one that has ended altogether, but its
/// other threads still hold its files and ports.
bool isRunning(const ProcessStatus& status) {
    const bool hasEnded = status.state == 'Z' || status.state == 'X';
    return !hasEnded || status.threadCount > 1;
}

} // namespace

bool isGroupRunning(pid_t group) noexcept {
    if (::kill(-group, 0) != 0) return false;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir("/proc"), &::closedir);
    if (!folder) return false;
    while (const dirent* entry = ::readdir(folder.get())) {
        if (entry->d_name[0] < '0' || entry->d_name[0] > '9') continue;
        const ProcessStatus status = statusOf(entry->d_name);
        if (status.group == group && isRunning(status)) return true;
    }
    return false;
}

} // namespace testsupport
