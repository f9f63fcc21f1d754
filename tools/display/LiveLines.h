/// @file LiveLines.h
/// Lines at the end of standard error that change while work goes on.
#pragma once

#include <kel/String.h>

#include <string_view>
#include <vector>

namespace vantra::tool {

/// Shows lines on the terminal and replaces them by others. One at a time.
///
/// Thread safety: any thread may call show(); writeAboveLiveLines() may be called at the same time.
class CLiveLines {
public:
    /// @param visible false for an object that shows nothing; see isStandardErrorTerminal().
    explicit CLiveLines(bool visible) noexcept : visible_(visible) {}
    CLiveLines(const CLiveLines&) = delete;
    CLiveLines& operator=(const CLiveLines&) = delete;
    /// Removes the lines.
    ~CLiveLines();

    [[nodiscard]] bool isVisible() const noexcept { return visible_; }

    /// Shows these lines, which hold no control characters, in place of those shown before, each cut to the
    /// width of the terminal. Of more than fit on it those ahead of the last one are left out.
    void show(const std::vector<kel::String>& lines);

private:
    bool visible_;
};

/// Writes whole lines to standard error, ahead of the live lines if there are any. Any thread.
void writeAboveLiveLines(std::string_view lines) noexcept;

} // namespace vantra::tool
