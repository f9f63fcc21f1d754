#include <curl/curl.h>

#include "vantra/FTPClient.h"

#include "ftp/Commands.h"
#include "http/LineEnd.h"

#include <kel/Buffer.h>
#include <kel/Error.h>
#include <kel/MemoryStream.h>
#include <kel/MTRand.h>
#include <kel/Mutex.h>
#include <kel/URI.h>

#include <limits>

namespace vantra {

using kel::CError;
using kel::CInvalidArgError;
using kel::int64;
using kel::P;
using kel::String;
using kel::TBuffer;

namespace {

constexpr int64 maxInt64 = std::numeric_limits<int64>::max();

/// A directory's path as a URL must end for libcurl to take it for one.
String withSlash(const String& dirPath) { return dirPath.endsWith(L"/") ? dirPath : dirPath + "/"; }

/// The path of a file in the directory that nobody has.
String makeDummyPath(const String& dirPath) {
    const kel::CMutexLock lock(kel::CMTRand::getGlobalMutex());
    return dirPath + "/__dummy" + String::fromUInt(kel::CMTRand::getGlobal().rand64());
}

void setUploadOf(CNetRequest& request, const TBuffer<unsigned char>* bytes) {
    request.setUpload(true);
    request.setSendDataStream(new kel::CMemoryInStream(bytes));
}

} // namespace

CFTPClient::CFTPClient(const String& host, const String& user, const String& password, ConnectType type)
    : host_(host), user_(user), password_(password), connectType_(type) {}

CFTPClient::CFTPClient(const CFTPClient&) = default;
CFTPClient::CFTPClient(CFTPClient&&) noexcept = default;
CFTPClient& CFTPClient::operator=(const CFTPClient&) = default;
CFTPClient& CFTPClient::operator=(CFTPClient&&) noexcept = default;
CFTPClient::~CFTPClient() = default;

String CFTPClient::cwdTypeToString(CWDType type) {
    switch (type) {
    case CWDInvalid:
        return "CWDInvalid";
    case CWDSteps:
        return "CWDSteps";
    case CWDDirect:
        return "CWDDirect";
    case CWDNone:
        return "CWDNone";
    }
    throw CError("Unknown CWDType: " + String::fromInt(type));
}

String CFTPClient::escapePath(const String& path) { return kel::CURI::escape(path, false, "/"); }

void CFTPClient::beginPrepareRequest(CNetRequest& request, const String& path, bool createMissingDirs) const {
    if (hasLineEnd(user_.view()) || hasLineEnd(password_.view()))
        throw CInvalidArgError("CFTPClient::beginPrepareRequest",
                               "user name or password contains a line break or a NUL character");
    request.reset();
    request.setURL((connectType_ == ConnectImplicitTLS ? "ftps://" : "ftp://") + host_ + path);
    request.setUserName(user_);
    request.setUserPassword(password_);
    if (connectType_ == ConnectExplicitTLS) request.setFTPUseSSL(CURLUSESSL_ALL);

    CWDType cwdType = overrideCWDType_;
    if (cwdType == CWDInvalid) cwdType = createMissingDirs ? CWDSteps : CWDNone;
    if (cwdType == CWDSteps) request.setFTPFileMethod(CURLFTPMETHOD_MULTICWD);
    if (cwdType == CWDDirect) request.setFTPFileMethod(CURLFTPMETHOD_SINGLECWD);
    if (cwdType == CWDNone) request.setFTPFileMethod(CURLFTPMETHOD_NOCWD);

    request.setFTPCreateMissingDirs(createMissingDirs ? CURLFTP_CREATE_DIR_RETRY : CURLFTP_CREATE_DIR_NONE);
}

void CFTPClient::prepareCommandsRequest(CNetRequest& request, CNetStringList* commands) const {
    beginPrepareRequest(request, String(), false);
    request.setFTPCustomPreCommands(commands);
    request.setOptionInt(CURLOPT_NOBODY, 1);
}

void CFTPClient::prepareDownloadRequest(CNetRequest& request, const String& path, int64 first,
                                        int64 length) const {
    // libcurl would read a range that is none as another one.
    const bool isRange = first >= 0 && (length == -1 || (length > 0 && first <= maxInt64 - length));
    if (!isRange) throw CInvalidArgError("CFTPClient::prepareDownloadRequest", "invalid range");
    beginPrepareRequest(request, path, false);
    if (first != 0 || length != -1) request.setRange(first, length);
}

void CFTPClient::prepareUploadRequest(CNetRequest& request, const String& path, const void* data, int size,
                                      bool createMissingDirs) const {
    static constexpr const char* name = "CFTPClient::prepareUploadRequest";
    if (size < 0) throw CInvalidArgError(name, "size is negative");
    if (!data && size > 0) throw CInvalidArgError(name, "data is null");
    beginPrepareRequest(request, path, createMissingDirs);
    setUploadOf(request, new TBuffer<unsigned char>(static_cast<const unsigned char*>(data),
                                                    static_cast<std::size_t>(size)));
    request.setSendDataSize(size);
}

void CFTPClient::prepareListDirRequest(CNetRequest& request, const String& dirPath) const {
    beginPrepareRequest(request, withSlash(dirPath), false);
    request.setFTPListOverrideCommand("MLSD");
}

void CFTPClient::prepareGetInfoRequest(CNetRequest& request, const String& path) const {
    prepareCommandsRequest(request, makeCommands("CFTPClient::prepareGetInfoRequest", {{"MLST", path}}));
}

void CFTPClient::prepareVerifyExistsRequest(CNetRequest& request, const String& path) const {
    prepareCommandsRequest(request, makeCommands("CFTPClient::prepareVerifyExistsRequest", {{"MLST", path}}));
}

void CFTPClient::prepareCreateDirRequest(CNetRequest& request, const String& dirPath,
                                         bool createParents) const {
    const P<CNetStringList> commands =
        makeCommands("CFTPClient::prepareCreateDirRequest", {{"MKD", dirPath}});
    if (!createParents) {
        prepareCommandsRequest(request, commands);
        return;
    }
    beginPrepareRequest(request, withSlash(dirPath), true);
    request.setFTPCustomPreCommands(commands);
}

void CFTPClient::prepareRemoveDirRequest(CNetRequest& request, const String& dirPath) const {
    prepareCommandsRequest(request, makeCommands("CFTPClient::prepareRemoveDirRequest", {{"RMD", dirPath}}));
}

void CFTPClient::prepareDeleteFileRequest(CNetRequest& request, const String& path) const {
    prepareCommandsRequest(request, makeCommands("CFTPClient::prepareDeleteFileRequest", {{"DELE", path}}));
}

void CFTPClient::prepareMoveFileRequest(CNetRequest& request, const String& from, const String& to,
                                        bool createMissingDirs) const {
    const P<CNetStringList> commands =
        makeCommands("CFTPClient::prepareMoveFileRequest", {{"RNFR", from}, {"RNTO", to}});
    if (!createMissingDirs) {
        prepareCommandsRequest(request, commands);
        return;
    }
    // To append nothing to the file that was moved leaves it as it is; what counts is the walk to it.
    beginPrepareRequest(request, to, true);
    request.setFTPCustomPreCommands(commands);
    setUploadOf(request, new TBuffer<unsigned char>());
    request.setOptionInt(CURLOPT_APPEND, 1);
}

void CFTPClient::prepareMoveDirRequest(CNetRequest& request, const String& from, const String& to,
                                       bool createMissingDirs) const {
    constexpr const char* function = "CFTPClient::prepareMoveDirRequest";
    const P<CNetStringList> commands = makeCommands(function, {{"RNFR", from}, {"RNTO", to}});
    if (!createMissingDirs) {
        prepareCommandsRequest(request, commands);
        return;
    }
    const String dummyPath = makeDummyPath(to);
    beginPrepareRequest(request, dummyPath, true);
    request.setFTPCustomPreCommands(commands);
    setUploadOf(request, new TBuffer<unsigned char>());
    request.setFTPCustomPostCommands(makeCommands(function, {{"DELE", dummyPath}}));
}

} // namespace vantra
