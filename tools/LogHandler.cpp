#include "LogHandler.h"

#include "display/TerminalText.h"

namespace vantra::tool {

void CLogHandler::handleLogEntry(const kel::CLogEntry& entry) {
    kel::String text = kel::logLevelToString(entry.level) + ": " + entry.text;
    if (entry.error) text += ": " + entry.error->getMessage();
    writeMessage(text);
}

} // namespace vantra::tool
