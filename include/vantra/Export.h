/// @file vantra/Export.h
/// Marks what the library exports; everything else stays hidden. VANTRA_STATIC is for programs that link the
/// library's objects themselves.
#pragma once

#if defined(_WIN32)
#if defined(VANTRA_BUILDING)
#define VANTRA_API __declspec(dllexport)
#elif defined(VANTRA_STATIC)
#define VANTRA_API
#else
#define VANTRA_API __declspec(dllimport)
#endif
#else
/// Before the name of a class or function: it is part of the library's interface.
#define VANTRA_API __attribute__((visibility("default")))
#endif
