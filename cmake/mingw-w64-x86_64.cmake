# Builds for 64-bit Windows with MinGW-w64 on Debian; programs of the build run under Wine.
#
# VANTRA_WINDOWS_PREFIX, a CMake or an environment variable, names the folder of the libraries built for Windows. By
# default it is the one that scripts/windows-deps.sh builds.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# The variant of the compiler whose std::thread and std::mutex stand on POSIX threads.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

if(NOT VANTRA_WINDOWS_PREFIX)
    set(VANTRA_WINDOWS_PREFIX "$ENV{VANTRA_WINDOWS_PREFIX}")
endif()
if(NOT VANTRA_WINDOWS_PREFIX)
    execute_process(COMMAND "${CMAKE_CURRENT_LIST_DIR}/../scripts/windows-deps.sh" --where
        OUTPUT_VARIABLE VANTRA_WINDOWS_PREFIX OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
endif()
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VANTRA_WINDOWS_PREFIX)

# Headers, libraries and packages for Windows only; programs of this machine.
set(CMAKE_FIND_ROOT_PATH "${VANTRA_WINDOWS_PREFIX}" /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} /nonexistent)

set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../scripts/wine-run.sh")
