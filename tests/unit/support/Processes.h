/// @file unit/support/Processes.h
/// A look at processes from outside.
#pragma once

#include <fstream>
#include <string>
#include <sys/types.h>

/// Whether a process runs. One that has ended and that its parent has not waited for does not.
inline bool isProcessAlive(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string line;
    if (!std::getline(file, line)) return false;
    const char state = line.at(line.rfind(')') + 2);
    return state != 'Z' && state != 'X';
}
