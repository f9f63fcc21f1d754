# What every target of the tree shares: language, warnings, sanitizers, dependencies, and how a test is added.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)

# The folder of the platform doors' one side.
if(WIN32)
    set(VANTRA_PLATFORM windows)
else()
    set(VANTRA_PLATFORM posix)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

add_library(vantra_warnings INTERFACE)
target_compile_options(vantra_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<BOOL:${VANTRA_WERROR}>:-Werror>)

# For the shared libraries: the debug information of a class is whole wherever the class is used. Otherwise gcc leaves
# out the members that a file does not use, and scripts/check-api.sh sees a part of the interface only.
add_library(vantra_whole_classes INTERFACE)
if(NOT VANTRA_SANITIZE)
    target_compile_options(vantra_whole_classes INTERFACE
        $<$<AND:$<CONFIG:Debug>,$<CXX_COMPILER_ID:GNU>>:-femit-class-debug-always>)
endif()

if(VANTRA_SANITIZE)
    add_compile_options(-fsanitize=${VANTRA_SANITIZE} -fno-omit-frame-pointer)
    if(VANTRA_SANITIZE MATCHES undefined)
        # libstdc++'s and OpenSSL's own casts of functions are not ours to mend.
        add_compile_options(-fno-sanitize-recover=all)
    endif()
    add_link_options(-fsanitize=${VANTRA_SANITIZE})
endif()

if(WIN32)
    include(VantraWindows)
endif()

find_package(Threads REQUIRED)
find_package(OpenSSL 3.0 REQUIRED)
find_package(CURL 7.88 REQUIRED)
find_package(wxWidgets 3.2 REQUIRED COMPONENTS base xml)

# wxWidgets as one target, its headers as system headers so that their warnings are not ours. An installed package
# looks for wxWidgets anew.
add_library(vantra_wx INTERFACE)
target_include_directories(vantra_wx SYSTEM INTERFACE "$<BUILD_INTERFACE:${wxWidgets_INCLUDE_DIRS}>")
target_compile_definitions(vantra_wx INTERFACE "$<BUILD_INTERFACE:${wxWidgets_DEFINITIONS}>")
target_link_libraries(vantra_wx INTERFACE "$<BUILD_INTERFACE:${wxWidgets_LIBRARIES}>")

if(WIN32)
    # OpenSSL is static here, and the package does not tell what that needs of the system.
    set_property(TARGET OpenSSL::Crypto APPEND PROPERTY INTERFACE_LINK_LIBRARIES ws2_32 crypt32)
    vantra_gather_shipped_dlls()
endif()

if(BUILD_TESTING)
    find_package(GTest REQUIRED)
    include(GoogleTest)
endif()

# vantra_add_test(NAME SOURCES file... LIBRARIES target... [LABELS label...] [TIMEOUT seconds] [SERIAL])
# A GoogleTest program, run as one CTest test: the cases share what is costly to start.
function(vantra_add_test name)
    cmake_parse_arguments(arg "SERIAL" "TIMEOUT" "SOURCES;LIBRARIES;LABELS" ${ARGN})
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 300)
    endif()
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} vantra_warnings GTest::gtest GTest::gmock GTest::gtest_main)
    if(WIN32)
        vantra_hasten_test(${name} ${arg_LIBRARIES})
    endif()
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT} LABELS "${arg_LABELS}")
    if(arg_SERIAL)
        set_tests_properties(${name} PROPERTIES RUN_SERIAL ON)
    endif()
endfunction()
