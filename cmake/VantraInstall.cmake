# What `cmake --install` puts where. VantraDebs.cmake makes a package of each component:
#   runtime      the shared libraries vantra and kel
#   development  headers, the CMake package and the pkg-config file
#   tools        the `vantra` command with its manual page and completion for bash
# kel's types are part of vantra's interface, and an error that vantra throws has to be the type that the application
# catches: kel is a shared library, so that it is in a process once, and its headers are installed with vantra's. Both
# are of one version, from one build, and in one package. Nobody outside needs sigil: it is linked into vantra, which
# exports none of it, and not installed.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(VANTRA_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/vantra)

install(TARGETS vantra kel vantra_wx
    EXPORT vantra
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS vantra_command RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
install(FILES tools/vantra.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
install(FILES tools/completion/vantra.bash RENAME vantra
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tools)

install(
    DIRECTORY
        include/vantra
        ${CMAKE_BINARY_DIR}/include/vantra
        kel/include/kel
        kel/include-${VANTRA_PLATFORM}/kel
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT development
    FILES_MATCHING PATTERN "*.h")

# Beside each other, wherever the tree is moved to. A distribution that installs into the system's folders turns it
# off with CMAKE_SKIP_INSTALL_RPATH.
if(NOT WIN32)
    file(RELATIVE_PATH from_bin_to_lib ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(vantra kel PROPERTIES INSTALL_RPATH $ORIGIN)
    set_target_properties(vantra_command PROPERTIES INSTALL_RPATH $ORIGIN/${from_bin_to_lib})
endif()

# find_package(vantra CONFIG)
install(EXPORT vantra
    FILE vantraTargets.cmake NAMESPACE vantra:: DESTINATION ${VANTRA_CMAKE_DIR} COMPONENT development)
configure_package_config_file(cmake/vantraConfig.cmake.in ${CMAKE_BINARY_DIR}/package/vantraConfig.cmake
    INSTALL_DESTINATION ${VANTRA_CMAKE_DIR})
# Below 1.0 a minor version may break what the one before promised.
write_basic_package_version_file(${CMAKE_BINARY_DIR}/package/vantraConfigVersion.cmake
    VERSION ${PROJECT_VERSION} COMPATIBILITY SameMinorVersion)
install(
    FILES
        ${CMAKE_BINARY_DIR}/package/vantraConfig.cmake
        ${CMAKE_BINARY_DIR}/package/vantraConfigVersion.cmake
    DESTINATION ${VANTRA_CMAKE_DIR}
    COMPONENT development)

if(WIN32)
    include(cmake/VantraWindowsPackage.cmake)
    return()
endif()

# pkg-config. wxWidgets has no file of its own for it, so what its headers need is written out.
set(VANTRA_WX_CFLAGS "")
foreach(folder IN LISTS wxWidgets_INCLUDE_DIRS)
    string(APPEND VANTRA_WX_CFLAGS " -isystem ${folder}")
endforeach()
foreach(definition IN LISTS wxWidgets_DEFINITIONS)
    string(APPEND VANTRA_WX_CFLAGS " -D${definition}")
endforeach()
# Relative to the file itself, so that an installed tree can be moved.
file(RELATIVE_PATH VANTRA_PC_TO_HEADERS
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_FULL_INCLUDEDIR})
configure_file(cmake/vantra.pc.in ${CMAKE_BINARY_DIR}/package/vantra.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/package/vantra.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
