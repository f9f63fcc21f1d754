/// @file FTPFacts.h
/// What holds of everything that is read from fact lines.
#pragma once

#include "fuzz/Fuzz.h"
#include "vantra/FTPDirEntry.h"

#include <string_view>

namespace fuzz {

/// Whether an error is one of those about a text that is no fact line.
inline bool isFactLineError(const kel::CError& error) {
    const kel::String& message = error.getMessage();
    return isIntegerError(error) || message.startsWith(L"Invalid FTP dir entry: '") ||
           message.startsWith(L"Invalid FTP time value: '") || message.startsWith(L"Invalid number: '.");
}

inline void checkFactLineError(const kel::CError& error) {
    check(isFactLineError(error), "an error is about the line, a number or a time");
    check(error.getCode() == -1 && error.getCodeDomain().isEmpty() && error.getParams().isEmpty(),
          "an error carries nothing but its message");
}

inline bool areEqual(const vantra::CFTPDirEntry& one, const vantra::CFTPDirEntry& other) {
    return one.getType() == other.getType() && one.getName() == other.getName() &&
           one.getSize() == other.getSize() && one.getModifiedTime() == other.getModifiedTime();
}

} // namespace fuzz
