/// Stands between the library and what it starts: OpenSSL, libcurl and the base library's disposal at exit.
/// Each call is noted and passed on, or fails as the test wants it.
#pragma once

#include <curl/curl.h>

#include <kel/Base.h>

#include <functional>
#include <string>
#include <vector>

namespace globalinitseams {

/// What happened so far, in order: "OpenSSL", "curl_global_init(FLAGS)", "curl_global_cleanup",
/// "addDisposeFunc".
std::vector<std::string> getEvents();

/// Makes curl_global_init return `code` instead of running; CURLE_OK lets it run.
void setCurlGlobalInitResult(CURLcode code);
/// Makes OpenSSL's start throw kel::CError "OpenSSL initialization failed.".
void setOpenSSLFails();
/// Called by every start of OpenSSL before anything else; what it throws is how the start fails.
void setOpenSSLHook(std::function<void()> hook);
/// Called by every curl_global_init before anything else.
void setCurlGlobalInitHook(std::function<void()> hook);
/// Called by every kel::threadYield in place of yielding.
void setThreadYieldHook(std::function<void(bool sleepBriefly)> hook);

/// Writes what happens from now on to standard error, a word a line: "dispose" when the function given to the
/// disposer runs, "release" when the object goes, and each event.
void reportEventsOf(const kel::CBase& object);

} // namespace globalinitseams
