#include "display/ProgressDisplay.h"

#include "display/ByteCount.h"
#include "display/TerminalText.h"

#include <algorithm>

namespace vantra::tool {

using kel::CMutexLock;
using kel::CTime;
using kel::CTimeSpan;
using kel::int64;
using kel::String;

namespace {

constexpr int64 drawInterval = 100'000; // microseconds
constexpr int64 rateWindow = 5'000'000; // microseconds
constexpr int64 sampleInterval = 200'000;

int64 microsecondsBetween(const CTime& earlier, const CTime& later) {
    return (later - earlier).getMicroseconds();
}

String padLeft(const String& text, std::size_t width) {
    return String(std::wstring(width - std::min(width, text.length()), L' ')) + text;
}

String toShownText(const String& text) { return String::fromUTF8Lax(toTerminalLine(text)); }

} // namespace

CProgressDisplay::CProgressDisplay(bool visible) : lines_(visible) {}

CProgressDisplay::~CProgressDisplay() = default;

void CProgressDisplay::setSummary(const String& text) {
    if (!isVisible()) return;
    const CMutexLock lock(mutex_);
    summary_ = text.isEmpty() ? text : toShownText(text);
    drawIfDue();
}

CProgressDisplay::Iterator CProgressDisplay::add(const String& name) {
    const CMutexLock lock(mutex_);
    transfers_.emplace_back();
    transfers_.back().name = toShownText(name);
    transfers_.back().samples.push_back({CTime::now(), 0});
    return std::prev(transfers_.end());
}

void CProgressDisplay::update(Iterator transfer, int64 done, int64 total) {
    const CMutexLock lock(mutex_);
    const CTime now = CTime::now();
    std::deque<Sample>& samples = transfer->samples;
    // A redirect starts over, and a clock may be set back.
    if (done < transfer->done || now < samples.back().time) samples.clear();
    transfer->done = done;
    transfer->total = total;
    if (samples.size() < 2 || microsecondsBetween(samples[samples.size() - 2].time, now) >= sampleInterval)
        samples.push_back({now, done});
    else
        samples.back() = {now, done};
    while (samples.size() > 2 && microsecondsBetween(samples.front().time, now) > rateWindow)
        samples.pop_front();
    drawIfDue();
}

void CProgressDisplay::remove(Iterator transfer) {
    const CMutexLock lock(mutex_);
    transfers_.erase(transfer);
    if (transfers_.empty())
        draw(CTime::now());
    else
        drawIfDue();
}

void CProgressDisplay::drawIfDue() {
    const CTime now = CTime::now();
    const int64 passed = microsecondsBetween(lastDrawn_, now);
    if (passed < 0 || passed >= drawInterval) draw(now);
}

void CProgressDisplay::draw(const CTime& now) {
    lastDrawn_ = now;
    std::vector<String> texts;
    for (const Transfer& transfer : transfers_) texts.push_back(describe(transfer));
    if (!summary_.isEmpty()) texts.push_back(summary_);
    lines_.show(texts);
}

/// Bytes per second.
int64 CProgressDisplay::getRate(const Transfer& transfer) {
    const Sample& first = transfer.samples.front();
    const Sample& last = transfer.samples.back();
    const int64 passed = microsecondsBetween(first.time, last.time);
    if (passed <= 0) return 0;
    return static_cast<int64>(static_cast<double>(last.done - first.done) * 1e6 /
                              static_cast<double>(passed));
}

/// The name comes last, because the end is what a narrow terminal cuts.
String CProgressDisplay::describe(const Transfer& transfer) {
    constexpr std::size_t countWidth = 10; // "1023.9 KiB"
    const String done = padLeft(formatByteCount(transfer.done), countWidth);
    const String rate = padLeft(formatByteCount(getRate(transfer)), countWidth) + "/s";
    if (transfer.total <= 0)
        return padLeft(done, countWidth + 5) + padLeft(rate, rate.length() + countWidth + 4) + "  " +
               transfer.name;
    const int64 percent =
        static_cast<int64>(static_cast<double>(transfer.done) * 100 / static_cast<double>(transfer.total));
    return padLeft(String::fromInt(std::min<int64>(percent, 100)), 3) + "% " + done + " / " +
           padLeft(formatByteCount(transfer.total), countWidth) + " " + rate + "  " + transfer.name;
}

CProgressLine::CProgressLine(CProgressDisplay& display, const String& name) : display_(display) {
    if (display_.isVisible()) transfer_ = display_.add(name);
}

CProgressLine::~CProgressLine() {
    if (!display_.isVisible()) return;
    try {
        display_.remove(transfer_);
    } catch (...) {
        // Drawing ran out of memory; the line itself is gone.
    }
}

void CProgressLine::update(int64 done, int64 total) noexcept {
    if (!display_.isVisible()) return;
    try {
        display_.update(transfer_, done, total);
    } catch (...) {
        // What the user does not see now comes with the next update.
    }
}

} // namespace vantra::tool
