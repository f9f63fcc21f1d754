/// Stands between the library and libcurl's string lists: appending can fail, and releasing is noted.
#pragma once

#include <curl/curl.h>

#include <cstddef>
#include <vector>

namespace slistseams {

/// For the life of the object every append fails as it does without memory.
class FailingAppend {
public:
    FailingAppend();
    FailingAppend(const FailingAppend&) = delete;
    FailingAppend& operator=(const FailingAppend&) = delete;
    ~FailingAppend();
};

/// For the life of the object releasing a list throws std::runtime_error "no release", after it is released.
class ThrowingRelease {
public:
    ThrowingRelease();
    ThrowingRelease(const ThrowingRelease&) = delete;
    ThrowingRelease& operator=(const ThrowingRelease&) = delete;
    ~ThrowingRelease();
};

/// Notes what happens during its life.
class Recorder {
public:
    Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;
    ~Recorder();

    /// The heads of the lists that were released, null left out.
    [[nodiscard]] const std::vector<const curl_slist*>& getReleased() const noexcept { return released_; }
    /// How many nodes libcurl had to pass to find the ends of lists.
    [[nodiscard]] std::size_t getNodesPassed() const noexcept { return nodesPassed_; }

    void onAppend(const curl_slist* list);
    void onRelease(const curl_slist* list);

private:
    std::vector<const curl_slist*> released_;
    std::size_t nodesPassed_ = 0;
};

} // namespace slistseams
