# The package for Windows, a .zip of the install tree, which runs and can be built against wherever it is unpacked:
#   bin        the DLLs and those that they need, the command, resources/vantra/ca-bundle.crt
#   include    our headers, libcurl's and those of wxWidgets
#   lib        import libraries, wxWidgets' configuration header, the CMake package
install(FILES ${VANTRA_SHIPPED_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
install(FILES ${VANTRA_ROOT_CERT_BUNDLE} DESTINATION ${CMAKE_INSTALL_BINDIR}/resources/vantra COMPONENT runtime)

# The string class of wxWidgets crosses the DLL's boundary, types of libcurl are named in the headers.
get_target_property(curl_headers CURL::libcurl INTERFACE_INCLUDE_DIRECTORIES)
install(DIRECTORY ${curl_headers}/curl DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(DIRECTORY ${curl_headers}/wx DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
    REGEX "/(aui|gtk1?|html|motif|osx|propgrid|qt|ribbon|richtext|stc|univ|x11|dfb|xrc|persist)$" EXCLUDE)
get_target_property(wx_dll wx::base LOCATION)
get_filename_component(wx_library_folder ${wx_dll} DIRECTORY)
install(DIRECTORY ${wx_library_folder}/baseu/ DESTINATION ${CMAKE_INSTALL_LIBDIR}/wxWidgets COMPONENT development)
install(FILES ${wx_library_folder}/libwxbase32u.a DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)

# The terms of what the package holds of others, from the packages of this system that bring the same sources.
foreach(package IN ITEMS libssl-dev libcurl4-openssl-dev libexpat1 libwxbase3.2-1 libstdc++6 mingw-w64-common ca-certificates)
    install(FILES /usr/share/doc/${package}/copyright
        DESTINATION ${CMAKE_INSTALL_DATADIR}/licenses RENAME ${package}.txt COMPONENT runtime)
endforeach()

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME ${PROJECT_NAME})
set(CPACK_PACKAGE_FILE_NAME ${PROJECT_NAME}-${PROJECT_VERSION}-windows-x64)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_ARCHIVE_COMPONENT_INSTALL OFF)
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
