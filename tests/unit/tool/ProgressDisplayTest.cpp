#include "display/ProgressDisplay.h"
#include "display/TerminalText.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

using kel::CTime;
using kel::CTimeSpan;
using kel::String;
using namespace vantra::tool;

namespace {

constexpr const char* off = "\x1b[?7l";
constexpr const char* on = "\x1b[?7h";

CTime present = CTime::fromMicroseconds(1'000'000'000);

void passMilliseconds(int milliseconds) { present = present + CTimeSpan::fromMilliseconds(milliseconds); }

/// Standard error is no terminal here, so that the size is the usual one of 80 by 24.
class ProgressDisplay : public testing::Test {
protected:
    ProgressDisplay() : clock_(CTime::setNowFunction([] { return present; })) {}
    ~ProgressDisplay() override { CTime::setNowFunction(clock_); }

    static std::string written(const std::function<void()>& action) {
        testing::internal::CaptureStderr();
        action();
        return testing::internal::GetCapturedStderr();
    }

private:
    CTime::NowFunction clock_;
};

/// What replaces so many rows by the lines.
std::string redraw(int rows, const std::string& lines) {
    const std::string erase = rows == 0 ? "" : "\x1b[" + std::to_string(rows) + "A\x1b[J";
    return lines.empty() ? erase : erase + off + lines + on;
}

} // namespace

TEST_F(ProgressDisplay, ShowsHowFarATransferIs) {
    CProgressDisplay display(true);
    std::optional<CProgressLine> line(std::in_place, display, "file.bin");
    EXPECT_EQ(written([&] { line->update(0, 4096); }),
              redraw(0, "  0%        0 B /    4.0 KiB        0 B/s  file.bin\n"));
    passMilliseconds(500);
    EXPECT_EQ(written([&] { line->update(1024, 4096); }),
              redraw(1, " 25%    1.0 KiB /    4.0 KiB    2.0 KiB/s  file.bin\n"));
    passMilliseconds(500);
    EXPECT_EQ(written([&] { line->update(4096, 4096); }),
              redraw(1, "100%    4.0 KiB /    4.0 KiB    4.0 KiB/s  file.bin\n"));
    EXPECT_EQ(written([&] { line.reset(); }), redraw(1, ""));
}

TEST_F(ProgressDisplay, ShowsNoShareOfAnUnknownTotal) {
    CProgressDisplay display(true);
    CProgressLine line(display, "file.bin");
    passMilliseconds(1000);
    for (const int total : {0, -1}) {
        passMilliseconds(1000);
        EXPECT_TRUE(written([&] { line.update(2048, total); }).ends_with("/s  file.bin\n" + std::string(on)));
    }
    EXPECT_EQ(written([&] { display.setSummary(""); }), "");
    passMilliseconds(1000);
    EXPECT_EQ(written([&] { line.update(4096, 0); }),
              redraw(1, "        4.0 KiB                 1.0 KiB/s  file.bin\n"));
}

TEST_F(ProgressDisplay, IsDrawnAtMostTenTimesASecond) {
    CProgressDisplay display(true);
    CProgressLine line(display, "file.bin");
    EXPECT_NE(written([&] { line.update(1, 10); }), "");
    passMilliseconds(99);
    EXPECT_EQ(written([&] { line.update(2, 10); }), "");
    passMilliseconds(1);
    EXPECT_NE(written([&] { line.update(3, 10); }), "");
}

TEST_F(ProgressDisplay, CountsTheRateOverTheLastSeconds) {
    CProgressDisplay display(true);
    CProgressLine line(display, "x");
    std::string last;
    for (int i = 1; i <= 100; ++i) { // ten seconds, in the first five of which nothing comes
        passMilliseconds(100);
        last = written([&] { line.update(i <= 50 ? 0 : (i - 50) * 100, 10000); });
    }
    EXPECT_TRUE(last.ends_with(" 50%    4.9 KiB /    9.8 KiB     1000 B/s  x\n" + std::string(on))) << last;
}

TEST_F(ProgressDisplay, StartsOverWithARedirectAndWhenTheClockIsSetBack) {
    CProgressDisplay display(true);
    CProgressLine line(display, "x");
    passMilliseconds(1000);
    written([&] { line.update(5000, 5000); });
    passMilliseconds(1000);
    EXPECT_EQ(written([&] { line.update(10, 100); }),
              redraw(1, " 10%       10 B /      100 B        0 B/s  x\n"));
    passMilliseconds(-3'600'000);
    EXPECT_EQ(written([&] { line.update(20, 100); }),
              redraw(1, " 20%       20 B /      100 B        0 B/s  x\n"));
    passMilliseconds(1000);
    EXPECT_EQ(written([&] { line.update(30, 100); }),
              redraw(1, " 30%       30 B /      100 B       10 B/s  x\n"));
}

TEST_F(ProgressDisplay, EndsWithTheSummary) {
    CProgressDisplay display(true);
    CProgressLine first(display, "a");
    CProgressLine second(display, "b");
    EXPECT_EQ(written([&] { display.setSummary("1 of 3 done"); }),
              redraw(0, "            0 B                     0 B/s  a\n"
                        "            0 B                     0 B/s  b\n"
                        "1 of 3 done\n"));
}

TEST_F(ProgressDisplay, KeepsTheSummaryWhereNotAllLinesFit) {
    CProgressDisplay display(true);
    std::vector<std::unique_ptr<CProgressLine>> lines;
    for (int i = 0; i < 30; ++i) lines.push_back(std::make_unique<CProgressLine>(display, "name"));
    const std::string text = written([&] { display.setSummary("the end"); });
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 23);
    EXPECT_TRUE(text.ends_with("name\nthe end\n" + std::string(on)));
}

TEST_F(ProgressDisplay, CutsLongNamesAndShowsNoControlCharacters) {
    CProgressDisplay display(true);
    std::string name = "\x1b[2Jn\u00E4me\n";
    CProgressLine line(display, String(name.c_str()) + String(std::wstring(100, L'x')));
    EXPECT_EQ(written([&] { line.update(0, 0); }),
              redraw(0, "            0 B                     0 B/s  \xEF\xBF\xBD[2Jn\u00E4me " +
                            std::string(28, 'x') + "\n"));
}

TEST_F(ProgressDisplay, LetsMessagesPassAbove) {
    CProgressDisplay display(true);
    CProgressLine line(display, "x");
    const std::string shown = "            0 B                     0 B/s  x\n";
    EXPECT_EQ(written([&] { line.update(0, 0); }), redraw(0, shown));
    EXPECT_EQ(written([&] { writeMessage("look"); }), "\x1b[1A\x1b[Jvantra: look\n" + (off + shown + on));
}

TEST_F(ProgressDisplay, WritesNothingWhereNobodySeesIt) {
    EXPECT_EQ(written([&] {
                  CProgressDisplay display(false);
                  CProgressLine line(display, "x");
                  passMilliseconds(1000);
                  line.update(1, 2);
                  display.setSummary("1 of 3 done");
              }),
              "");
}
