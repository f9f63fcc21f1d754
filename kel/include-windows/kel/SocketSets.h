/// @file kel/SocketSets.h
/// Declares fd_set.
#pragma once

#include <winsock2.h>
