/// @file MultiDouble.h
/// Plays libcurl's multi interface, and the waits around it, in programs linked with --wrap for them.
///
///     MultiDouble multi;
///     CAsyncNetRequestManager manager;
///     manager.addRequest(multi.make("first"));
///     multi.finish("first", CURLE_OK);
///     EXPECT_EQ(manager.handleEvents(nullptr), 1);
///     EXPECT_THAT(multi.takeCalls(), ElementsAre("init", "add first", "perform", "info", "remove first",
///     "info"));
#pragma once

#include <curl/curl.h>

#include "Doubles.h"

#include <kel/P.h>
#include <kel/Thread.h>

#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace vantra::test {

/// Records what happens from its construction to its destruction. Handles are attached to and detached from
/// real multi handles; everything else is played: transfers run without end unless finish() ends them,
/// libcurl has neither a timer nor a socket unless a test gives it one, and no wait takes any time. Only one
/// may exist at a time.
///
/// Thread safety: any thread may call any member.
class MultiDouble {
public:
    MultiDouble();
    MultiDouble(const MultiDouble&) = delete;
    MultiDouble& operator=(const MultiDouble&) = delete;
    ~MultiDouble();

    /// A request by this name. The caller gets the only reference.
    kel::P<CTestRequest> make(const std::string& name);
    /// Gives a request of the test's own a name.
    void name(const CNetRequest& request, const std::string& name);

    /// The calls since the last time: "init", "add NAME", "perform", "fdset", "timeout", "info", "remove
    /// NAME", "cleanup"; "sleep MS", "select COUNT MS". A call that fails is not there.
    std::vector<std::string> takeCalls();
    /// Of those only "add NAME" and "remove NAME".
    std::vector<std::string> takeHandleCalls();
    /// The timeouts of the waits for a signal since the last time.
    std::vector<int> takeSignalWaits();
    /// Writes something down among the calls.
    void note(const std::string& text);

    /// Ends the transfer of the request by this name: it no longer runs, and a message tells the result.
    void finish(const std::string& name, CURLcode result);
    /// Leaves a message about a request's handle, and lets the request run on.
    void postMessage(const std::string& name, CURLMSG kind);
    /// The next such call ("perform", "remove NAME", ...) fails; "init" then gives null.
    void failNext(const std::string& call, CURLMcode code);
    void setTimer(long milliseconds);
    /// The socket to watch for reading; -1 (the default) for none.
    void setSocket(int socket);

    // Called by the functions that stand in for libcurl's and the waits.
    static MultiDouble* getActive();
    CURLM* onInit(CURLM* (*real)());
    void onCleanup() { note("cleanup"); }
    CURLMcode onAdd(CURLM* multi, CURL* handle);
    CURLMcode onRemove(CURLM* multi, CURL* handle);
    CURLMcode onPerform(int* running);
    CURLMcode onSockets(fd_set* read, int* greatest);
    CURLMcode onTimeout(long* milliseconds);
    CURLMsg* onMessage(int* left);
    void onSignalWait(int milliseconds);

private:
    CURL* handleOf(const std::string& name) const;
    std::string nameOf(const CURL* handle) const;
    CURLMcode takeFailure(const std::string& call);

    mutable std::mutex mutex_;
    std::map<const CURL*, std::string> names_;
    std::vector<std::string> calls_;
    std::vector<int> signalWaits_;
    std::map<std::string, CURLMcode> failures_;
    std::vector<const CURL*> running_; // attached, and not finished
    std::deque<CURLMsg> messages_;
    CURLMsg current_{}; // the one handed out last; libcurl's is gone with the handle
    long timerMs_ = -1;
    int socket_ = -1;
    kel::CThread::SleepFunction previousSleep_;
};

} // namespace vantra::test
