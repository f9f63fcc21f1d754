/// @file support/ResetConnection.h
/// How a client sees a reset by a ScriptedServer.
#pragma once

namespace testsupport {

/// Whether the reset may look like an orderly end: Wine ends a connection in order just before it resets it.
bool resetMayLookLikeAnEnd();

} // namespace testsupport
