/// @file ProgressDisplay.h
/// How far transfers are, on the user's terminal.
///
///     CProgressDisplay display(isStandardErrorTerminal());
///     CProgressLine line(display, "file.bin");
///     line.update(1024, 4096); // as often as one likes
#pragma once

#include "display/LiveLines.h"

#include <kel/Int64.h>
#include <kel/Mutex.h>
#include <kel/String.h>
#include <kel/Time.h>

#include <deque>
#include <list>

namespace vantra::tool {

/// A line on standard error for each running transfer, and one for all of them if a summary is set. The lines
/// go when their transfers end. It is drawn at most ten times a second.
///
/// Thread safety: any thread may call any member, and those of the lines.
class CProgressDisplay {
public:
    /// @param visible false for one that shows nothing and costs nothing.
    explicit CProgressDisplay(bool visible);
    CProgressDisplay(const CProgressDisplay&) = delete;
    CProgressDisplay& operator=(const CProgressDisplay&) = delete;
    /// To be called after the lines are gone.
    ~CProgressDisplay();

    [[nodiscard]] bool isVisible() const noexcept { return lines_.isVisible(); }

    /// A text for the last line, such as "3 of 10 done"; empty (the default) for none.
    void setSummary(const kel::String& text);

private:
    friend class CProgressLine;

    struct Sample {
        kel::CTime time;
        kel::int64 done;
    };
    struct Transfer {
        kel::String name;
        kel::int64 done = 0;
        kel::int64 total = 0;
        std::deque<Sample> samples; // of the last seconds, for the rate
    };
    using Iterator = std::list<Transfer>::iterator;

    [[nodiscard]] Iterator add(const kel::String& name);
    void update(Iterator transfer, kel::int64 done, kel::int64 total);
    void remove(Iterator transfer);
    void draw(const kel::CTime& now);
    void drawIfDue();
    [[nodiscard]] static kel::int64 getRate(const Transfer& transfer);
    [[nodiscard]] static kel::String describe(const Transfer& transfer);

    kel::CMutex mutex_; // guards all below
    CLiveLines lines_;
    std::list<Transfer> transfers_;
    kel::String summary_;
    kel::CTime lastDrawn_;
};

/// The line of one transfer in a display, from construction to destruction.
class CProgressLine {
public:
    /// @param display must outlive the line.
    CProgressLine(CProgressDisplay& display, const kel::String& name);
    CProgressLine(const CProgressLine&) = delete;
    CProgressLine& operator=(const CProgressLine&) = delete;
    ~CProgressLine();

    /// @param done bytes so far. @param total bytes in all, 0 or less when it is not known.
    void update(kel::int64 done, kel::int64 total) noexcept;

private:
    CProgressDisplay& display_;
    CProgressDisplay::Iterator transfer_; // of a visible display only
};

} // namespace vantra::tool
