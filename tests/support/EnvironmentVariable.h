/// @file support/EnvironmentVariable.h
/// The environment of the test itself.
#pragma once

namespace testsupport {

void removeEnvironmentVariable(const char* name);

} // namespace testsupport
