/// @file QuietXMLLog.h
/// Keeps wxWidgets from reporting bad XML to its own log.
#pragma once

#include <optional>

#include <wx/log.h>

namespace vantra {

/// While one lives, wxWidgets logs nothing on this thread; where wxWidgets was never initialised, it knows of
/// no threads and logs nothing on any. An error in an answer is thrown, and what the application's log is to
/// say of it is not for wxWidgets to decide.
///
/// Thread safety: each object belongs to one thread; any number of threads may have one.
class QuietXMLLog {
public:
    QuietXMLLog();
    QuietXMLLog(const QuietXMLLog&) = delete;
    QuietXMLLog& operator=(const QuietXMLLog&) = delete;
    ~QuietXMLLog();

private:
    std::optional<wxLogNull> ofThread_;
};

} // namespace vantra
