/// @file vantra/Export.h
/// Marks what the library exports; everything else stays hidden.
#pragma once

#if defined(_WIN32)
#if defined(VANTRA_BUILDING)
#define VANTRA_API __declspec(dllexport)
#else
#define VANTRA_API __declspec(dllimport)
#endif
#else
/// Before the name of a class or function: it is part of the library's interface.
#define VANTRA_API __attribute__((visibility("default")))
#endif
