/// @file kel/Log.h
/// Diagnostics. A host application puts a handler of its own in place; without one each entry is a line on
/// standard error.
#pragma once

#include "kel/Base.h"
#include "kel/Error.h"
#include "kel/P.h"
#include "kel/String.h"
#include "kel/Time.h"

namespace kel {

class CXMLElement;

/// How much an entry matters.
enum class LogLevel { Info, Warning, Error };

/// "info", "warning", "error". @throws CInvalidArgError for a value that is no level.
[[nodiscard]] KEL_API String logLevelToString(LogLevel level);

/// One diagnostic message.
struct KEL_API CLogEntry {
    /// Made now, with neither an error nor a detail.
    CLogEntry(LogLevel entryLevel, String entryText);
    CLogEntry(const CLogEntry&);
    CLogEntry& operator=(const CLogEntry&);
    ~CLogEntry();

    LogLevel level;         ///< how much it matters
    String text;            ///< for people, without a line end
    CTime time;             ///< when it was made
    PC<CError> error;       ///< the exception it speaks of, or null
    PC<CXMLElement> detail; ///< structured data that belongs to it, or null
};

/// Receives every entry. Called on the thread that logs, several threads at once; must not throw (what it
/// throws is dropped). It may log and replace handlers itself.
class KEL_API ILogHandler : public virtual IBase {
public:
    /// Takes one entry. @param entry is valid during the call only.
    virtual void handleLogEntry(const CLogEntry& entry) = 0;
};

/// Installs a handler for the process (a reference is kept); null puts the default back: one line per entry
/// on standard error, "LEVEL: TEXT: MESSAGE OF THE ERROR", in UTF-8 with control characters other than tabs
/// written as "\n", "\r" or "\xHH"; the XML of a detail follows on lines of its own. Returns the handler that
/// was installed before, or null. The handler in place at the end of the process is never released.
KEL_API P<ILogHandler> setLogHandler(ILogHandler* handler);

/// @{
/// Each hands one entry to the handler. `error` and `detail` may be null. None of them throws.
KEL_API void logEntry(const CLogEntry& entry) noexcept;
KEL_API void logInfo(const String& text) noexcept;
KEL_API void logInfo(const std::exception* error, const String& text,
                     const CXMLElement* detail = nullptr) noexcept;
KEL_API void logWarning(const String& text) noexcept;
KEL_API void logWarning(const std::exception* error, const String& text,
                        const CXMLElement* detail = nullptr) noexcept;
KEL_API void logError(const String& text) noexcept;
KEL_API void logError(const std::exception* error, const String& text,
                      const CXMLElement* detail = nullptr) noexcept;
/// @}

} // namespace kel
