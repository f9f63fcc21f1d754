#include "kel/Log.h"
#include "kel/XMLElement.h"

#include <gtest/gtest.h>

#include <functional>
#include <mutex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using kel::CBase;
using kel::CError;
using kel::CLogEntry;
using kel::CTime;
using kel::CXMLElement;
using kel::ILogHandler;
using kel::LogLevel;
using kel::P;
using kel::setLogHandler;
using kel::String;

/// Keeps every entry.
class CRecorder : public CBase, public ILogHandler {
public:
    void handleLogEntry(const CLogEntry& entry) override {
        const std::lock_guard lock(mutex_);
        entries_.push_back(entry);
    }

    [[nodiscard]] std::vector<CLogEntry> getEntries() const {
        const std::lock_guard lock(mutex_);
        return entries_;
    }

private:
    mutable std::mutex mutex_;
    std::vector<CLogEntry> entries_;
};

/// Calls a function for every entry.
class CCaller : public CBase, public ILogHandler {
public:
    explicit CCaller(std::function<void(const CLogEntry&)> function) : function_(std::move(function)) {}
    void handleLogEntry(const CLogEntry& entry) override { function_(entry); }

private:
    std::function<void(const CLogEntry&)> function_;
};

/// Puts a handler in place for as long as it lives.
class CInstalledHandler {
public:
    explicit CInstalledHandler(ILogHandler* handler) : previous_(setLogHandler(handler)) {}
    CInstalledHandler(const CInstalledHandler&) = delete;
    CInstalledHandler& operator=(const CInstalledHandler&) = delete;
    ~CInstalledHandler() { setLogHandler(previous_); }

private:
    P<ILogHandler> previous_;
};

template <class Log>
std::string captureStandardError(Log log) {
    const CInstalledHandler installed(nullptr);
    testing::internal::CaptureStderr();
    log();
    return testing::internal::GetCapturedStderr();
}

TEST(Log, NamesItsLevels) {
    EXPECT_EQ(kel::logLevelToString(LogLevel::Info), "info");
    EXPECT_EQ(kel::logLevelToString(LogLevel::Warning), "warning");
    EXPECT_EQ(kel::logLevelToString(LogLevel::Error), "error");
    EXPECT_THROW(static_cast<void>(kel::logLevelToString(static_cast<LogLevel>(17))), kel::CInvalidArgError);
}

TEST(Log, StampsAnEntryWithThePresent) {
    const auto previous = CTime::setNowFunction([] { return CTime::fromMicroseconds(123456789); });
    const CLogEntry entry(LogLevel::Info, "text");
    CTime::setNowFunction(previous);
    EXPECT_EQ(entry.level, LogLevel::Info);
    EXPECT_EQ(entry.text, "text");
    EXPECT_EQ(entry.time, CTime::fromMicroseconds(123456789));
    EXPECT_EQ(entry.error.get(), nullptr);
    EXPECT_EQ(entry.detail.get(), nullptr);
}

TEST(Log, HandsTextsOfEveryLevelToTheHandler) {
    const P<CRecorder> recorder = new CRecorder();
    const CInstalledHandler installed(recorder);
    kel::logInfo("one");
    kel::logWarning("two");
    kel::logError("three");
    const std::vector<CLogEntry> entries = recorder->getEntries();
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].level, LogLevel::Info);
    EXPECT_EQ(entries[0].text, "one");
    EXPECT_EQ(entries[1].level, LogLevel::Warning);
    EXPECT_EQ(entries[1].text, "two");
    EXPECT_EQ(entries[2].level, LogLevel::Error);
    EXPECT_EQ(entries[2].text, "three");
    for (const CLogEntry& entry : entries) {
        EXPECT_EQ(entry.error.get(), nullptr);
        EXPECT_EQ(entry.detail.get(), nullptr);
    }
}

TEST(Log, HandsErrorsAndDetailsToTheHandler) {
    const P<CRecorder> recorder = new CRecorder();
    const CInstalledHandler installed(recorder);
    const P<CXMLElement> detail = new CXMLElement("detail");
    const CError own("own", "curl", 5);
    const std::runtime_error foreign("foreign");
    kel::logInfo(&own, "one", detail);
    kel::logWarning(&foreign, "two");
    kel::logError(nullptr, "three", detail);
    const std::vector<CLogEntry> entries = recorder->getEntries();
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].level, LogLevel::Info);
    EXPECT_EQ(entries[0].error->getMessage(), "own");
    EXPECT_EQ(entries[0].error->getCode(), 5);
    EXPECT_EQ(entries[0].detail.get(), detail.get());
    EXPECT_EQ(entries[1].level, LogLevel::Warning);
    EXPECT_EQ(entries[1].error->getMessage(), "foreign");
    EXPECT_EQ(entries[1].detail.get(), nullptr);
    EXPECT_EQ(entries[2].level, LogLevel::Error);
    EXPECT_EQ(entries[2].error.get(), nullptr);
    EXPECT_EQ(entries[2].detail.get(), detail.get());
}

TEST(Log, HandsAWholeEntryToTheHandler) {
    const P<CRecorder> recorder = new CRecorder();
    const CInstalledHandler installed(recorder);
    CLogEntry entry(LogLevel::Warning, "text");
    entry.time = CTime::fromMicroseconds(42);
    kel::logEntry(entry);
    ASSERT_EQ(recorder->getEntries().size(), 1u);
    EXPECT_EQ(recorder->getEntries()[0].time, CTime::fromMicroseconds(42));
}

TEST(Log, ReturnsTheHandlerThatWasThereBefore) {
    const P<CRecorder> first = new CRecorder();
    const P<CRecorder> second = new CRecorder();
    const CInstalledHandler installed(nullptr);
    EXPECT_EQ(setLogHandler(first).get(), nullptr);
    EXPECT_EQ(setLogHandler(second).get(), static_cast<ILogHandler*>(first));
    kel::logInfo("for the second");
    EXPECT_EQ(setLogHandler(nullptr).get(), static_cast<ILogHandler*>(second));
    EXPECT_EQ(setLogHandler(nullptr).get(), nullptr);
    EXPECT_EQ(first->getEntries().size(), 0u);
    EXPECT_EQ(second->getEntries().size(), 1u);
}

TEST(Log, KeepsItsHandlerAlive) {
    int calls = 0;
    const CInstalledHandler installed(new CCaller([&calls](const CLogEntry&) { ++calls; }));
    kel::logInfo("still there");
    EXPECT_EQ(calls, 1);
}

TEST(Log, DropsWhatAHandlerThrows) {
    int calls = 0;
    const CInstalledHandler installed(new CCaller([&calls](const CLogEntry&) {
        if (++calls == 1) throw CError("from the handler");
        throw 42;
    }));
    kel::logError("one");
    kel::logError("two");
    EXPECT_EQ(calls, 2);
}

TEST(Log, LetsAHandlerLog) {
    std::vector<String> texts;
    const CInstalledHandler installed(new CCaller([&texts](const CLogEntry& entry) {
        texts.push_back(entry.text);
        if (texts.size() < 3) kel::logInfo("about: " + entry.text);
    }));
    kel::logInfo("text");
    EXPECT_EQ(texts, (std::vector<String>{"text", "about: text", "about: about: text"}));
}

TEST(Log, LetsAHandlerReplaceItself) {
    const P<CRecorder> recorder = new CRecorder();
    const CInstalledHandler installed(
        new CCaller([&recorder](const CLogEntry&) { setLogHandler(recorder); }));
    kel::logInfo("one");
    kel::logInfo("two");
    ASSERT_EQ(recorder->getEntries().size(), 1u);
    EXPECT_EQ(recorder->getEntries()[0].text, "two");
}

TEST(Log, TakesEntriesFromSeveralThreadsWhileHandlersChange) {
    constexpr int threadCount = 4;
    constexpr int entriesPerThread = 500;
    const P<CRecorder> first = new CRecorder();
    const P<CRecorder> second = new CRecorder();
    const CInstalledHandler installed(first);
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i)
        threads.emplace_back([] {
            for (int j = 0; j < entriesPerThread; ++j) kel::logInfo("text");
        });
    for (int i = 0; i < 100; ++i) setLogHandler(i % 2 == 0 ? second : first);
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(first->getEntries().size() + second->getEntries().size(),
              static_cast<std::size_t>(threadCount * entriesPerThread));
}

TEST(DefaultLog, WritesOneLineForAnEntry) {
    EXPECT_EQ(captureStandardError([] { kel::logInfo("text"); }), "info: text\n");
    EXPECT_EQ(captureStandardError([] { kel::logWarning(L"Stra\u00DFe"); }), "warning: Stra\xC3\x9F"
                                                                             "e\n");
}

TEST(DefaultLog, WritesTheMessageOfTheErrorBehindTheText) {
    const CError error("It failed.");
    EXPECT_EQ(captureStandardError([&error] { kel::logError(&error, "text"); }), "error: text: It failed.\n");
}

TEST(DefaultLog, WritesTheDetailOnLinesOfItsOwn) {
    const P<CXMLElement> detail = new CXMLElement("detail");
    detail->addChild(new CXMLElement("part"));
    const CError error("It failed.");
    EXPECT_EQ(captureStandardError([&] { kel::logError(&error, "text", detail); }),
              "error: text: It failed.\n<detail>\n  <part/>\n</detail>\n");
}

TEST(DefaultLog, ShowsControlCharactersInsteadOfSendingThem) {
    const CError error("second\r\nerror: forged");
    EXPECT_EQ(captureStandardError([&error] {
                  kel::logError(&error, String::fromLatin1(std::string_view("\x1B[2J\0\t\x7F\x9B", 8)));
              }),
              "error: \\x1b[2J\\x00\t\\x7f\\x9b: second\\r\\nerror: forged\n");
}

TEST(DefaultLog, DoesNotMixTheLinesOfSeveralThreads) {
    constexpr int threadCount = 4;
    constexpr int linesPerThread = 200;
    const std::string written = captureStandardError([] {
        std::vector<std::thread> threads;
        for (int i = 0; i < threadCount; ++i)
            threads.emplace_back([i] {
                const String text = String(std::wstring(100, static_cast<wchar_t>(L'a' + i)));
                for (int j = 0; j < linesPerThread; ++j) kel::logInfo(text);
            });
        for (std::thread& thread : threads) thread.join();
    });
    std::istringstream lines(written);
    std::multiset<std::string> seen;
    for (std::string line; std::getline(lines, line);) seen.insert(line);
    std::multiset<std::string> expected;
    for (int i = 0; i < threadCount; ++i)
        for (int j = 0; j < linesPerThread; ++j)
            expected.insert("info: " + std::string(100, static_cast<char>('a' + i)));
    EXPECT_EQ(seen, expected);
}

} // namespace
