# The Debian packages, one for each component of VantraInstall.cmake, made by scripts/make-debs.sh:
#   libvantra0     runtime
#   libvantra-dev  development
#   vantra-tools   tools
# What has to be looked up in the staged files, cmake/debs/Stage.cmake adds.

# Nothing of the packages is searched for outside of the system's folders.
if(NOT CMAKE_INSTALL_PREFIX STREQUAL /usr OR NOT CMAKE_SKIP_INSTALL_RPATH)
    message(FATAL_ERROR "VANTRA_DEBS needs CMAKE_INSTALL_PREFIX=/usr and CMAKE_SKIP_INSTALL_RPATH=ON: cmake --preset debs")
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "The vantra authors")
set(CPACK_PACKAGE_CONTACT "The vantra authors <vantra@example.org>")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/debs)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/cmake/debs/Stage.cmake)

set(CPACK_COMPONENTS_ALL runtime development tools)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE vantra)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(VANTRA_DEB_VERSION ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})

# Otherwise the summary of all packages; each description begins with its own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(about_vantra
    "vantra runs client-side transfers over HTTP(S), FTP(S) and SMTP(S) on top of\n\
libcurl, one at a time or hundreds of them on one thread. It has clients for\n\
S3-compatible stores, FTP servers and mail.\n.")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libvantra0)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
# The certificates that servers are verified with, and the desktop's settings of its proxies.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS ca-certificates)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SUGGESTS libglib2.0-0)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
    "client-side networking library on libcurl\n${about_vantra}\n\
This package contains the shared libraries: vantra, and kel, its base library.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libvantra-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
# wxWidgets' base headers and wx-config, by which it is found, are in no smaller package.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "libvantra0 (= ${VANTRA_DEB_VERSION}), libcurl4-openssl-dev (>= 7.88), libwxgtk3.2-dev")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "pkg-config, cmake")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "client-side networking library on libcurl (development files)\n${about_vantra}\n\
This package contains what programs that use vantra are built with: the\n\
headers, a CMake package and a pkg-config file.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME vantra-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION net)
set(CPACK_DEBIAN_TOOLS_DESCRIPTION
    "command for transfers over HTTP, FTP, mail and S3\n${about_vantra}\n\
This package contains the command vantra, which fetches, sends and lists files\n\
on web servers, FTP servers and S3-compatible stores, and sends mail.")

# Below 1.0 a minor version may break what the one before promised, under the same SONAME.
math(EXPR VANTRA_NEXT_MINOR "${PROJECT_VERSION_MINOR} + 1")
set(VANTRA_DEB_SHLIBS ${CMAKE_BINARY_DIR}/package/shlibs)
configure_file(cmake/debs/shlibs.in ${VANTRA_DEB_SHLIBS} @ONLY)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    ${VANTRA_DEB_SHLIBS} ${CMAKE_CURRENT_SOURCE_DIR}/cmake/debs/triggers)

# For Stage.cmake, to which the variables named CPACK_... go.
set(CPACK_VANTRA_DEB_VERSION ${VANTRA_DEB_VERSION})
set(CPACK_VANTRA_DEB_SHLIBS ${VANTRA_DEB_SHLIBS})
set(CPACK_VANTRA_SOURCE_DIR ${CMAKE_CURRENT_SOURCE_DIR})
set(CPACK_VANTRA_LIBDIR ${CMAKE_INSTALL_FULL_LIBDIR})
set(CPACK_VANTRA_DOCDIR ${CMAKE_INSTALL_FULL_DATADIR}/doc)
set(CPACK_VANTRA_MANDIR ${CMAKE_INSTALL_FULL_MANDIR})
include(CPack)
