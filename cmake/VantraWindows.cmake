# What only builds for Windows need.

enable_language(RC)

# A DLL has the plain name: vantra.dll. The import library keeps its prefix.
set(CMAKE_SHARED_LIBRARY_PREFIX "")

# How many sockets a set for select() holds, 64 without this. Not below the number that libcurl was built with (see
# scripts/windows-deps.sh), since libcurl fills the sets.
add_compile_definitions(FD_SETSIZE=1024)

# Names from the Windows headers that would stand for something else in ours.
add_compile_definitions(WIN32_LEAN_AND_MEAN NOMINMAX)

# vantra_gather_shipped_dlls(): sets VANTRA_SHIPPED_DLLS to the DLLs of the compiler and of wxWidgets that ours need, and
# puts them beside the programs of the build.
function(vantra_gather_shipped_dlls)
    set(dlls "")
    foreach(name IN ITEMS libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
            OUTPUT_VARIABLE dll OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
        if(NOT IS_ABSOLUTE "${dll}")
            message(FATAL_ERROR "The compiler's ${name} was not found.")
        endif()
        list(APPEND dlls ${dll})
    endforeach()
    foreach(target IN LISTS wxWidgets_LIBRARIES)
        if(TARGET ${target})
            get_target_property(dll ${target} LOCATION)
            list(APPEND dlls ${dll})
        endif()
    endforeach()
    file(COPY ${dlls} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
    set(VANTRA_SHIPPED_DLLS ${dlls} PARENT_SCOPE)
endfunction()

# The root certificates that vantra ships: those of the system that builds it. Beside the DLL of the build, too.
set(VANTRA_ROOT_CERTIFICATES /etc/ssl/certs/ca-certificates.crt CACHE FILEPATH
    "Root certificates (PEM) to ship as vantra/ca-bundle.crt")
if(NOT EXISTS "${VANTRA_ROOT_CERTIFICATES}")
    message(FATAL_ERROR "There are no root certificates to ship in '${VANTRA_ROOT_CERTIFICATES}': install "
        "ca-certificates, or name a file by -DVANTRA_ROOT_CERTIFICATES.")
endif()
set(VANTRA_ROOT_CERT_BUNDLE ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/resources/vantra/ca-bundle.crt)
configure_file(${VANTRA_ROOT_CERTIFICATES} ${VANTRA_ROOT_CERT_BUNDLE} COPYONLY)

# vantra_add_version_resource(TARGET DESCRIPTION): what Windows shows of a DLL or a program.
function(vantra_add_version_resource target description)
    set(VANTRA_FILE_NAME $<TARGET_FILE_NAME:${target}>)
    set(VANTRA_FILE_DESCRIPTION ${description})
    get_target_property(type ${target} TYPE)
    if(type STREQUAL EXECUTABLE)
        set(VANTRA_FILE_TYPE VFT_APP)
    else()
        set(VANTRA_FILE_TYPE VFT_DLL)
    endif()
    configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc.in @ONLY)
    file(GENERATE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc
        INPUT ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc.in)
    target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
endfunction()

# vantra_hasten_test(TARGET LIBRARY...): the Windows build starts from nothing more often than the others and has hundreds
# of tests' sources. They are optimised less than the product; and as compiling one is mostly reading the same headers
# again, those of the test framework and of the library are read once for the tests of the shared library and once for
# those of its objects. A test that links libcurl beside the shared library needs other macros and reads its own.
function(vantra_hasten_test target)
    target_compile_options(${target} PRIVATE -O1)
    if("CURL::libcurl" IN_LIST ARGN)
        return()
    endif()
    foreach(library IN ITEMS vantra vantra_objects)
        if(library IN_LIST ARGN)
            set(headers ${library}_test_headers)
            if(NOT TARGET ${headers})
                file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/test-headers.cpp CONTENT "// The headers alone.\n")
                add_library(${headers} OBJECT ${CMAKE_BINARY_DIR}/test-headers.cpp)
                target_compile_options(${headers} PRIVATE -O1)
                target_link_libraries(${headers} PRIVATE ${library} vantra_warnings GTest::gtest GTest::gmock)
                target_precompile_headers(${headers} PRIVATE <vantra/vantra.h> <gmock/gmock.h> <gtest/gtest.h>)
            endif()
            target_compile_options(${target} PRIVATE
                # For ccache, which else would not see what the headers were.
                -fpch-preprocess
                # The compiler forgets which of the headers are the system's, and warns of these.
                -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread)
            target_precompile_headers(${target} REUSE_FROM ${headers})
        endif()
    endforeach()
endfunction()
