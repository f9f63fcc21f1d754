/// @file support/ServerUser.h
/// The user as whom the servers of the tests run.
#pragma once

#include <string>

namespace testsupport {

struct ServerUser {
    std::string id;
    std::string groupId;
    std::string name; ///< empty if it has none

    bool isRoot() const { return id == "0"; }
};

/// Who runs what a ChildProcess starts.
const ServerUser& serverUser();

} // namespace testsupport
