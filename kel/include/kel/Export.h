/// @file kel/Export.h
/// Marks what the base library exports; everything else stays hidden.
#pragma once

#if defined(_WIN32)
#if defined(KEL_BUILDING)
#define KEL_API __declspec(dllexport)
#else
#define KEL_API __declspec(dllimport)
#endif
#else
/// Before the name of a class or function: it is part of the library's interface.
#define KEL_API __attribute__((visibility("default")))
#endif
