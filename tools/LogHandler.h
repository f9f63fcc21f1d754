/// @file LogHandler.h
/// Where the library's diagnostics go.
#pragma once

#include <kel/Log.h>

namespace vantra::tool {

/// Writes each entry to standard error as one line, "vantra: LEVEL: TEXT: MESSAGE OF THE ERROR".
///
/// Thread safety: any thread may call it.
class CLogHandler : public kel::CBase, public kel::ILogHandler {
public:
    void handleLogEntry(const kel::CLogEntry& entry) override;
};

/// Drops them.
class CSilentLogHandler : public kel::CBase, public kel::ILogHandler {
public:
    void handleLogEntry(const kel::CLogEntry& /*entry*/) override {}
};

} // namespace vantra::tool
