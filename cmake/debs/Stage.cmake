# Run by CPack once the components are staged, before it packs them: adds the documents of each Debian package,
# compresses manual pages, and looks up which packages the binaries depend on. CPack could do the last itself, but
# then makes scripts that run ldconfig instead of the trigger, and does not know of packages made together.
cmake_minimum_required(VERSION 3.25)

set(sources ${CPACK_VANTRA_SOURCE_DIR}/cmake/debs)

# run(WHAT COMMAND [ARGUMENT...]): fails if the command does. Leaves its output in `output`.
macro(run what)
    execute_process(COMMAND ${ARGN}
        RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE errors OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "${what} failed (${status}): ${errors}")
    endif()
endmacro()

# Says when, or with SOURCE_DATE_EPOCH in the environment that.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(STRINGS /etc/os-release codename REGEX "^VERSION_CODENAME=")
string(REPLACE "VERSION_CODENAME=" "" codename "${codename}")
if(NOT codename)
    message(FATAL_ERROR "/etc/os-release names no version of Debian")
endif()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} COMPONENT)
    set(package ${CPACK_DEBIAN_${COMPONENT}_PACKAGE_NAME})
    set(stage ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component})

    set(documents ${stage}${CPACK_VANTRA_DOCDIR}/${package})
    configure_file(${sources}/copyright ${documents}/copyright COPYONLY)
    configure_file(${sources}/changelog.in ${documents}/changelog.Debian @ONLY)
    configure_file(${CPACK_VANTRA_SOURCE_DIR}/CHANGELOG.md ${documents}/changelog COPYONLY)

    file(GLOB_RECURSE pages LIST_DIRECTORIES FALSE ${stage}${CPACK_VANTRA_MANDIR}/*)
    # As Debian does: the best compression, and neither name nor time in the result.
    run("Compressing" gzip -9nf ${documents}/changelog.Debian ${documents}/changelog ${pages})

    file(GLOB programs ${stage}/usr/bin/*)
    file(GLOB libraries ${stage}${CPACK_VANTRA_LIBDIR}/*.so.*)
    set(binaries ${programs})
    foreach(library IN LISTS libraries)
        if(NOT IS_SYMLINK ${library})
            list(APPEND binaries ${library})
        endif()
    endforeach()
    if(binaries)
        # The tool wants to be in a source package.
        set(scratch ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/shlibdeps)
        file(WRITE ${scratch}/debian/control "")
        run("dpkg-shlibdeps" ${CMAKE_COMMAND} -E chdir ${scratch}
            dpkg-shlibdeps -O -L${CPACK_VANTRA_DEB_SHLIBS} -x${package}
            -l${CPACK_TEMPORARY_INSTALL_DIRECTORY}/runtime${CPACK_VANTRA_LIBDIR} ${binaries})
        file(REMOVE_RECURSE ${scratch})
        string(REGEX REPLACE "^shlibs:Depends=" "" depends "${output}")
        set(CPACK_DEBIAN_${COMPONENT}_PACKAGE_DEPENDS "${depends}")
    endif()
endforeach()
