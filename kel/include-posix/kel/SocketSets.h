/// @file kel/SocketSets.h
/// Declares fd_set.
#pragma once

#include <sys/select.h>
