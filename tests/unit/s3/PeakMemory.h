/// @file PeakMemory.h
/// The door to the memory of the process. posix/ and windows/ hold one implementation each.
#pragma once

namespace vantra::test {

/// The most memory that the process has had so far, in KiB.
long getPeakKiB();

} // namespace vantra::test
