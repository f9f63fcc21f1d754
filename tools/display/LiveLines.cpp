#include "display/LiveLines.h"

#include "files/StandardFiles.h"
#include "files/Terminal.h"

#include <kel/Mutex.h>

#include <algorithm>
#include <string>

namespace vantra::tool {

using kel::CMutexLock;
using kel::String;

namespace {

// Without automatic wrapping a line stays one row, however wide its characters are.
constexpr const char* wrapOff = "\x1b[?7l";
constexpr const char* wrapOn = "\x1b[?7h";

/// What stands on the terminal.
struct Shown {
    kel::CMutex mutex; // guards the members below and the order of what is written
    std::string text;
    std::size_t rows = 0;
};

Shown& shown() {
    static Shown instance;
    return instance;
}

String cutToWidth(const String& line, int columns) {
    return String::fromUTF32(
        std::u32string_view(line.toUTF32()).substr(0, static_cast<std::size_t>(columns)));
}

/// From the row below the lines to their first one, and clears all from there.
std::string eraseRows(std::size_t rows) {
    return rows == 0 ? std::string() : "\x1b[" + std::to_string(rows) + "A\x1b[J";
}

void replaceShown(Shown& state, std::string text, std::size_t rows) {
    writeStandardError(eraseRows(state.rows) + text);
    state.text = std::move(text);
    state.rows = rows;
}

} // namespace

CLiveLines::~CLiveLines() {
    if (!visible_) return;
    try {
        show({});
    } catch (...) {
        // The lines stay; there is no better place to tell of it.
    }
}

// It changes what the terminal shows. NOLINTNEXTLINE(readability-make-member-function-const)
void CLiveLines::show(const std::vector<String>& lines) {
    if (!visible_) return;
    const TerminalSize size = getStandardErrorSize();
    const auto maxRows =
        static_cast<std::size_t>(std::max(size.rows - 1, 1)); // the cursor has one of its own
    const std::size_t rows = std::min(lines.size(), maxRows);
    std::string text = rows == 0 ? "" : wrapOff;
    for (std::size_t row = 0; row < rows; ++row) {
        const String& line = row + 1 < rows ? lines[row] : lines.back();
        text += cutToWidth(line, size.columns).toUTF8() + "\n";
    }
    if (rows != 0) text += wrapOn;
    Shown& state = shown();
    const CMutexLock lock(state.mutex);
    replaceShown(state, std::move(text), rows);
}

void writeAboveLiveLines(std::string_view lines) noexcept {
    try {
        Shown& state = shown();
        const CMutexLock lock(state.mutex);
        // In one piece with the text where there is nothing to move, which is every case but that of a
        // terminal.
        if (state.rows == 0)
            writeStandardError(lines);
        else
            writeStandardError(eraseRows(state.rows) + std::string(lines) + state.text);
    } catch (...) {
        writeStandardError(lines);
    }
}

} // namespace vantra::tool
