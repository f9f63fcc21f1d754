# The product. Its objects are compiled once, for the shared library and for the unit tests, which also reach what
# the library does not export.

if(WIN32)
    set(VANTRA_PROXY_SOURCES proxy/windows/SystemProxy.cpp)
else()
    set(VANTRA_PROXY_SOURCES proxy/posix/GSettings.cpp proxy/posix/SystemProxy.cpp)
endif()

add_library(vantra_objects OBJECT
    async/AsyncNetRequestManager.cpp
    async/AsyncNetRequestThread.cpp
    foundation/CURLError.cpp
    foundation/GlobalInit.cpp
    foundation/RootCertBundle.cpp
    ftp/Commands.cpp
    ftp/FactLine.cpp
    ftp/FTPClient.cpp
    ftp/FTPClientOperations.cpp
    ftp/FTPDirEntry.cpp
    ftp/FTPGetInfoResult.cpp
    ftp/FTPListDirResult.cpp
    http/HeaderAssembler.cpp
    http/HeaderValues.cpp
    http/HTTPContentRange.cpp
    http/HTTPStatusLine.cpp
    http/NetHeaders.cpp
    http/NetStringList.cpp
    http/ServerInfo.cpp
    http/URLEncoding.cpp
    mail/Attachment.cpp
    mail/Boundary.cpp
    mail/MimeMessage.cpp
    mail/MultiPartMimeMessage.cpp
    mail/SMTPClient.cpp
    mail/SMTPParams.cpp
    mail/TransferEncoding.cpp
    proxy/DesktopProxy.cpp
    proxy/ProxySettings.cpp
    ${VANTRA_PROXY_SOURCES}
    request/LogCredentials.cpp
    request/NetRequest.cpp
    request/NetRequestAsync.cpp
    request/NetRequestCallbacks.cpp
    request/NetRequestData.cpp
    request/NetRequestErrors.cpp
    request/NetRequestEscape.cpp
    request/NetRequestFTP.cpp
    request/NetRequestPerform.cpp
    request/NetRequestResponseLines.cpp
    request/NetRequestSettings.cpp
    request/NetRequestVerboseLog.cpp
    s3/AnswerDocument.cpp
    s3/Endpoint.cpp
    s3/QuietXMLLog.cpp
    s3/S3Client.cpp
    s3/S3Error.cpp
    s3/S3Execution.cpp
    s3/S3ObjectEnum.cpp
    s3/S3Operations.cpp
    s3/S3Results.cpp
    s3/S3Signing.cpp)
configure_file(include/vantra/Version.h.in ${CMAKE_BINARY_DIR}/include/vantra/Version.h @ONLY)
target_compile_definitions(vantra_objects PRIVATE VANTRA_BUILDING)
target_include_directories(vantra_objects
    PUBLIC
        $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>
        $<BUILD_INTERFACE:${CMAKE_BINARY_DIR}/include>
    PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(vantra_objects PUBLIC kel CURL::libcurl PRIVATE sigil vantra_warnings vantra_whole_classes)
if(WIN32)
    # Who links the objects themselves must not look for them in the DLL.
    target_compile_definitions(vantra_objects INTERFACE VANTRA_STATIC)
    target_link_libraries(vantra_objects PUBLIC winhttp)
else()
    target_link_libraries(vantra_objects PUBLIC ${CMAKE_DL_LIBS})
endif()
set_target_properties(vantra_objects PROPERTIES POSITION_INDEPENDENT_CODE ON)

# The version script keeps instantiations of other libraries' templates from being exported along with ours.
add_library(vantra SHARED)
target_link_libraries(vantra PRIVATE vantra_objects sigil PUBLIC kel)
target_include_directories(vantra PUBLIC
    $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>
    $<BUILD_INTERFACE:${CMAKE_BINARY_DIR}/include>)
set_target_properties(vantra PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
if(WIN32)
    # libcurl is inside of the DLL. Its callers need the headers alone.
    target_link_libraries(vantra PRIVATE CURL::libcurl)
    target_include_directories(vantra SYSTEM PUBLIC $<BUILD_INTERFACE:$<TARGET_PROPERTY:CURL::libcurl,INTERFACE_INCLUDE_DIRECTORIES>>)
    vantra_add_version_resource(vantra "${PROJECT_DESCRIPTION}")
else()
    target_link_libraries(vantra PUBLIC CURL::libcurl)
    target_link_options(vantra PRIVATE -Wl,--version-script=${CMAKE_CURRENT_SOURCE_DIR}/cmake/vantra.map)
    set_target_properties(vantra PROPERTIES LINK_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/cmake/vantra.map)
endif()
