#include "s3/QuietXMLLog.h"

#include <mutex>

#include <wx/thread.h>

namespace vantra {

namespace {

/// The one switch for all threads of a process without an initialised wxWidgets: off from the first thread
/// that asks for quiet until the last one is done.
class SharedSwitch {
public:
    static SharedSwitch& get() {
        static auto& instance = *new SharedSwitch(); // may be asked for at the end of the process
        return instance;
    }

    void turnOff() {
        const std::lock_guard lock(mutex_);
        if (count_++ == 0) before_ = wxLog::EnableLogging(false);
    }

    void turnBack() {
        const std::lock_guard lock(mutex_);
        if (--count_ == 0) wxLog::EnableLogging(before_);
    }

private:
    std::mutex mutex_;
    int count_ = 0;
    bool before_ = true;
};

bool isWxInitialized() { return wxThread::GetMainId() != 0; }

} // namespace

QuietXMLLog::QuietXMLLog() {
    if (isWxInitialized()) {
        ofThread_.emplace();
    } else {
        SharedSwitch::get().turnOff();
    }
}

QuietXMLLog::~QuietXMLLog() {
    if (!ofThread_) SharedSwitch::get().turnBack();
}

} // namespace vantra
