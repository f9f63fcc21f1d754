# vantra_startable_program(VARIABLE TARGET)
# Stores the path by which a test starts the program of a target. For a Windows program that is a script, which starts it
# under the toolchain's emulator.
set(program_emulator ${CMAKE_CROSSCOMPILING_EMULATOR})
function(vantra_startable_program variable target)
    if(NOT WIN32)
        set(${variable} $<TARGET_FILE:${target}> PARENT_SCOPE)
        return()
    endif()
    set(script ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/start-${target})
    list(JOIN program_emulator " " emulator)
    file(GENERATE OUTPUT ${script}
        CONTENT "#!/bin/sh\nexec ${emulator} $<TARGET_FILE:${target}> \"$@\"\n"
        FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
    set(${variable} ${script} PARENT_SCOPE)
endfunction()
