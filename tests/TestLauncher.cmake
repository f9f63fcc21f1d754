# Runs the tests of a Windows build on the system that builds them: the programs under the emulator of the toolchain,
# and the servers that they use beside it. Between the two stands a launcher, which is a program of the building system
# and so is compiled by its compiler.
find_program(VANTRA_HOST_CXX NAMES c++ g++ clang++ NO_CMAKE_FIND_ROOT_PATH REQUIRED
    DOC "C++ compiler of the building system")

set(vantra_test_launcher ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/vantra_test_launcher)
set(launcher_sources
    HttpRequest.cpp
    Latch.cpp
    Script.cpp
    ScriptedConnection.cpp
    ScriptedRecord.cpp
    ScriptedServer.cpp
    SystemError.cpp
    launcher/Message.cpp
    launcher/main.cpp
    posix/Command.cpp
    posix/Event.cpp
    posix/FileDescriptor.cpp
    posix/FreePort.cpp
    posix/ProcessGroup.cpp
    posix/Sockets.cpp
    posix/Spawn.cpp
    posix/StartedProgram.cpp
    posix/TemporaryFolder.cpp)
list(TRANSFORM launcher_sources PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/support/)
file(GLOB launcher_headers CONFIGURE_DEPENDS support/*.h support/launcher/*.h support/posix/*.h)
add_custom_command(OUTPUT ${vantra_test_launcher}
    COMMAND ${VANTRA_HOST_CXX} -std=c++20 -O1 -Wall -Wextra -Werror -pthread -I ${CMAKE_CURRENT_SOURCE_DIR}
        ${launcher_sources} -o ${vantra_test_launcher}
    DEPENDS ${launcher_sources} ${launcher_headers}
    VERBATIM)
add_custom_target(vantra_test_launcher ALL DEPENDS ${vantra_test_launcher})

# For all tests from here on.
list(PREPEND CMAKE_CROSSCOMPILING_EMULATOR ${vantra_test_launcher})
