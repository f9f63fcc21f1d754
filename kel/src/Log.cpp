#include "kel/Log.h"

#include "kel/Number.h"
#include "kel/XMLElement.h"

#include <cstdio>
#include <mutex>
#include <string>

namespace kel {

namespace {

struct HandlerSlot {
    std::mutex mutex;
    P<ILogHandler> handler;
};

/// Lives until the very end of the process, since destructors of other process-wide objects log too.
HandlerSlot& getHandlerSlot() {
    static auto& slot = *new HandlerSlot();
    return slot;
}

P<ILogHandler> getHandler() {
    HandlerSlot& slot = getHandlerSlot();
    const std::lock_guard lock(slot.mutex);
    return slot.handler;
}

bool isControlCharacter(wchar_t c) noexcept {
    const auto code = static_cast<char32_t>(c);
    return code < U' ' || (code >= 0x7F && code < 0xA0);
}

/// What servers sent may be part of the text: it must not be able to forge a line or to steer a terminal.
String escapeControlCharacters(const String& text) {
    String escaped;
    for (const wchar_t c : text.view()) {
        if (!isControlCharacter(c) || c == L'\t') {
            escaped += c;
        } else if (c == L'\n') {
            escaped.append(L"\\n");
        } else if (c == L'\r') {
            escaped.append(L"\\r");
        } else {
            const auto code = static_cast<unsigned char>(c);
            escaped.append(L"\\x").append(hexEncode(&code, 1).view());
        }
    }
    return escaped;
}

void writeToStandardError(const CLogEntry& entry) {
    String line = logLevelToString(entry.level) + ": " + escapeControlCharacters(entry.text);
    if (entry.error) line += ": " + escapeControlCharacters(entry.error->getMessage());
    line += L'\n';
    if (entry.detail) line += entry.detail->toXML() + "\n";
    const std::string bytes = line.toUTF8();
    // One call, so that the entries of several threads do not mix.
    std::fwrite(bytes.data(), 1, bytes.size(), stderr);
}

void logAtLevel(LogLevel level, const std::exception* error, const String& text,
                const CXMLElement* detail) noexcept {
    try {
        CLogEntry entry(level, text);
        if (error) entry.error = CStdExceptionError::exceptionToError(*error);
        entry.detail = detail;
        logEntry(entry);
    } catch (...) {
        // Whoever logs is in the middle of other work, which must not fail for the lack of a log entry.
    }
}

} // namespace

String logLevelToString(LogLevel level) {
    switch (level) {
    case LogLevel::Info:
        return "info";
    case LogLevel::Warning:
        return "warning";
    case LogLevel::Error:
        return "error";
    }
    throw CInvalidArgError("logLevelToString",
                           "invalid log level: " + String::fromInt(static_cast<int>(level)));
}

CLogEntry::CLogEntry(LogLevel entryLevel, String entryText)
    : level(entryLevel), text(std::move(entryText)), time(CTime::now()) {}

CLogEntry::CLogEntry(const CLogEntry&) = default;

CLogEntry& CLogEntry::operator=(const CLogEntry&) = default;

CLogEntry::~CLogEntry() = default;

P<ILogHandler> setLogHandler(ILogHandler* handler) {
    P<ILogHandler> other = handler;
    HandlerSlot& slot = getHandlerSlot();
    const std::lock_guard lock(slot.mutex);
    std::swap(slot.handler, other);
    return other;
}

void logEntry(const CLogEntry& entry) noexcept {
    try {
        // Called without the mutex, so that a handler may log and may replace itself.
        if (const P<ILogHandler> handler = getHandler())
            handler->handleLogEntry(entry);
        else
            writeToStandardError(entry);
    } catch (...) {
        // A log that fails has no place to report it to.
    }
}

void logInfo(const String& text) noexcept { logAtLevel(LogLevel::Info, nullptr, text, nullptr); }

void logInfo(const std::exception* error, const String& text, const CXMLElement* detail) noexcept {
    logAtLevel(LogLevel::Info, error, text, detail);
}

void logWarning(const String& text) noexcept { logAtLevel(LogLevel::Warning, nullptr, text, nullptr); }

void logWarning(const std::exception* error, const String& text, const CXMLElement* detail) noexcept {
    logAtLevel(LogLevel::Warning, error, text, detail);
}

void logError(const String& text) noexcept { logAtLevel(LogLevel::Error, nullptr, text, nullptr); }

void logError(const std::exception* error, const String& text, const CXMLElement* detail) noexcept {
    logAtLevel(LogLevel::Error, error, text, detail);
}

} // namespace kel
