/// Stands in for the system's header of this name: as much of it as the library uses, with the system's own
/// declarations.
#pragma once

#include <cstdint>

using BOOL = int;
using DWORD = std::uint32_t;
using HGLOBAL = void*;
using LPWSTR = wchar_t*;

extern "C" HGLOBAL GlobalFree(HGLOBAL memory);
