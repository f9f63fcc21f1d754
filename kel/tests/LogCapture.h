/// @file LogCapture.h
/// What was logged during a test.
#pragma once

#include "kel/Log.h"

#include <mutex>
#include <string>
#include <vector>

/// Keeps the entries as "LEVEL: TEXT: MESSAGE OF THE ERROR" while it lives; the handler before it returns
/// after.
class CLogCapture {
public:
    CLogCapture() : handler_(new CHandler()), before_(kel::setLogHandler(handler_)) {}
    CLogCapture(const CLogCapture&) = delete;
    CLogCapture& operator=(const CLogCapture&) = delete;
    ~CLogCapture() { kel::setLogHandler(before_); }

    [[nodiscard]] std::vector<std::string> getLines() const { return handler_->getLines(); }

private:
    class CHandler : public kel::CBase, public kel::ILogHandler {
    public:
        void handleLogEntry(const kel::CLogEntry& entry) override {
            kel::String line = kel::logLevelToString(entry.level) + ": " + entry.text;
            if (entry.error) line += ": " + entry.error->getMessage();
            const std::lock_guard lock(mutex_);
            lines_.push_back(line.toUTF8());
        }
        std::vector<std::string> getLines() {
            const std::lock_guard lock(mutex_);
            return lines_;
        }

    private:
        std::mutex mutex_;
        std::vector<std::string> lines_;
    };

    kel::P<CHandler> handler_;
    kel::P<kel::ILogHandler> before_;
};
