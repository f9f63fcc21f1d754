/// @file vantra/FTPClient.h
/// Files and directories on an FTP server.
///
///     P<CFTPClient> client = new CFTPClient("ftp.example.org", "user", "secret",
///     CFTPClient::ConnectExplicitTLS); P<CNetRequest> request = new CNetRequest();
///     client->prepareUploadRequest(*request, "/reports/2019/april.txt", data, size, true);
///     request->perform(); // throws CCURLError
#pragma once

#include "vantra/Export.h"
#include "vantra/FTPListDirResult.h"
#include "vantra/NetRequest.h"

#include <kel/Base.h>
#include <kel/Int64.h>
#include <kel/P.h>
#include <kel/String.h>

namespace vantra {

/// Turns operations on one server into transfers. Each operation is a single transfer: prepare...Request
/// resets the given request and configures it, and the caller performs it, at once or on an asynchronous
/// thread. Settings of the caller's own (setRootCertBundlePath, time limits, sinks, a done listener) go
/// between the two. A request that is used again keeps its connection and login.
///
/// Failures are those of CNetRequest::perform: CCURLError with the server's last reply code in the domain
/// "ftp", which is 0 when the server has closed the connection. Nothing is asked of the server beforehand.
/// A preparation throws kel::CInvalidArgError, with nothing done to the request, for what would end its line
/// and begin a command of its own: "path contains a line break or a NUL character" for a path that goes into
/// a command, and the same of "user name or password".
///
/// Over TLS libcurl 7.88 reports an upload or listing that the server refuses as CURLE_FTP_WEIRD_PASV_REPLY:
/// it takes the end of the data connection for a failure to open it, tries once more, and reads the refusal
/// as the reply to that. The response code is the refusal's or that of the second try. A connection on
/// which the server has refused a transfer over TLS is closed afterwards, because a reply too many may be
/// waiting on it; the next transfer opens a new one. While it waits for the TLS of a data connection, libcurl
/// 7.88 does not see replies on the control connection until a timer ends that wait. With a server that
/// begins with TLS when the transfer is asked for, as ProFTPD does, each command before that may take a
/// second on the calling thread, and a tenth on an asynchronous one.
///
/// Thread safety: any number of threads may prepare requests, each its own; setOverrideCWDType and assignment
/// need the client for themselves.
///
/// # Paths
///
/// A path begins with "/"; the empty path is the directory that the login leads to. Some operations put it
/// into the URL of the transfer, where it is read as a part of a URL, others into a command, where it stands
/// for itself. Nothing is escaped on either way:
///
/// | path of                                                       | goes into                       |
/// |---------------------------------------------------------------|---------------------------------|
/// | download, upload, list                                        | the URL                         |
/// | get info, verify exists, remove, delete                       | a command                       |
/// | create directory; move without missing directories            | a command                       |
/// | create directory with parents; move with missing directories  | both, of a move the target only |
/// | deleteDirWithAllContents and all directories that it finds    | both                            |
///
/// In a URL "%41" is "A", "#" and "?" end the path, ";type=X" at the end chooses a transfer type and is cut
/// off, "/./" and "/../" are resolved, a blank or a line break makes the URL invalid (CURLE_URL_MALFORMAT),
/// and CNetRequest::setURL refuses a NUL character. escapePath() makes the path for a URL that stands for a
/// given name. A name of letters, digits, "-", ".", "_" and "~",
/// of characters outside ASCII, and of most other ones is the same on both ways. Where a path that is not
/// goes both ways, the two are about different files: let a subclass escape the paths for URLs
/// (beginPrepareRequest).
///
/// In a URL a path is relative to the login's directory, in a command "/" is what the server takes for its
/// root; servers that confine users to their directory make no difference there. On others give absolute
/// paths with two slashes in front ("//srv/data"), which both ways read alike.
class VANTRA_API CFTPClient : public kel::CBase {
public:
    /// How the connection is protected.
    enum ConnectType : int {
        ConnectUnencrypted = 0, ///< "ftp://" without TLS
        ConnectExplicitTLS = 1, ///< "ftp://", TLS required on control and data connections (CURLUSESSL_ALL)
        ConnectImplicitTLS = 2  ///< "ftps://", TLS from the first byte on
    };

    /// How the transfer gets to the directory of the URL's path (CURLOPT_FTP_FILEMETHOD).
    enum CWDType : int {
        CWDInvalid = -1, ///< libcurl's default
        CWDSteps = 0,    ///< a CWD for each directory of the path (CURLFTPMETHOD_MULTICWD)
        CWDDirect = 1,   ///< one CWD to the whole directory (CURLFTPMETHOD_SINGLECWD)
        CWDNone = 2      ///< no CWD; the whole path in the command (CURLFTPMETHOD_NOCWD)
    };

    /// @param host the server, with ":" and a port when it is not the scheme's own.
    CFTPClient(const kel::String& host, const kel::String& user, const kel::String& password,
               ConnectType type);
    CFTPClient(const CFTPClient&);
    CFTPClient(CFTPClient&&) noexcept;
    CFTPClient& operator=(const CFTPClient&);
    CFTPClient& operator=(CFTPClient&&) noexcept;
    ~CFTPClient() override;

    /// Walks every request prepared from now on in this way. CWDInvalid, the default, chooses for each
    /// operation: CWDSteps where missing directories are created, which libcurl can do in whole only while it
    /// goes step by step, and CWDNone elsewhere. With CWDDirect only the last directory is created, with
    /// CWDNone none.
    void setOverrideCWDType(CWDType type) noexcept { overrideCWDType_ = type; }

    /// "CWDInvalid", "CWDSteps", "CWDDirect" or "CWDNone".
    /// @throws kel::CError "Unknown CWDType: NUMBER" for any other value.
    [[nodiscard]] static kel::String cwdTypeToString(CWDType type);

    /// The path as an operation that puts it into the URL needs it: every byte but letters, digits, "-", ".",
    /// "_", "~" and "/" as "%" and two hexadecimal digits (RFC 3986 §2.1).
    [[nodiscard]] static kel::String escapePath(const kel::String& path);

    // Preparing. Each resets the request first.

    /// A download to the request's receive side.
    /// @param first position of the first byte wanted. @param length number of bytes wanted, at least 1, or
    /// -1 for all that follow (CURLOPT_RANGE).
    /// @throws kel::CInvalidArgError "invalid range" for a negative position, another length, and an end
    /// beyond 64 bits.
    void prepareDownloadRequest(CNetRequest& request, const kel::String& path, kel::int64 first,
                                kel::int64 length) const;
    /// Stores bytes under the path, in place of a file that is there.
    /// @param data copied. To send much, or from a file, give none and set the request's stream and its size
    /// afterwards (setSendDataStream, setSendDataSize). @param size number of bytes.
    /// @param createMissingDirs whether the directories on the way are created.
    /// @throws kel::CInvalidArgError "size is negative" and "data is null" (with a size above 0).
    void prepareUploadRequest(CNetRequest& request, const kel::String& path, const void* data, int size,
                              bool createMissingDirs) const;
    /// The listing of a directory for CFTPListDirResult (MLSD, RFC 3659 §7).
    void prepareListDirRequest(CNetRequest& request, const kel::String& dirPath) const;
    /// The facts of one entry for CFTPGetInfoResult, which reads the request's response info (MLST).
    void prepareGetInfoRequest(CNetRequest& request, const kel::String& path) const;
    /// A transfer that fails, with CURLE_QUOTE_ERROR and response code 550, when the entry does not exist.
    /// The same as a get-info request.
    void prepareVerifyExistsRequest(CNetRequest& request, const kel::String& path) const;
    /// @param createParents whether the directories on the way are created. The walk to the directory, which
    /// is then listed, creates them and the directory itself. What is there already is no failure, unless
    /// libcurl is 8.15 or later: it sends the MKD after the walk, which older ones leave out before a
    /// listing, and a server refuses that for a directory that is there (CURLE_QUOTE_ERROR with response code
    /// 550 or 521). Everything has been created then; prepareVerifyExistsRequest() tells.
    void prepareCreateDirRequest(CNetRequest& request, const kel::String& dirPath, bool createParents) const;
    /// Removes an empty directory.
    void prepareRemoveDirRequest(CNetRequest& request, const kel::String& dirPath) const;
    /// Deletes a file (DELE).
    void prepareDeleteFileRequest(CNetRequest& request, const kel::String& path) const;
    /// Gives a file another name, in the same or another directory (RNFR, RNTO). Whether a file of that name
    /// is replaced is up to the server.
    /// @param createMissingDirs whether the directories on the way are created. They are there even if the
    /// move then fails. The rest of the transfer appends nothing to the moved file.
    void prepareMoveFileRequest(CNetRequest& request, const kel::String& from, const kel::String& to,
                                bool createMissingDirs) const;
    /// The same for a directory with all that is in it.
    /// @param createMissingDirs whether the directories on the way are created. The walk creates `to` itself,
    /// too, and the server must then be willing to put the moved directory in the place of the empty one, as
    /// POSIX rename() does. Then an empty file with a random name ("__dummy...") is stored in it and deleted.
    /// ProFTPD 1.3.8 and pyftpdlib 1.5.7 on Linux do all that. A server that refuses to replace a directory,
    /// as all do for one that is not empty, fails the transfer, leaves `from` where it was, and an empty `to`
    /// that was not there before. One that cannot store or delete the file afterwards fails the transfer with
    /// everything in `to`, perhaps with the empty file. Nothing is lost or moved in part. The safe way is to
    /// have the directory above `to` created by prepareCreateDirRequest(), and then to move without missing
    /// directories.
    void prepareMoveDirRequest(CNetRequest& request, const kel::String& from, const kel::String& to,
                               bool createMissingDirs) const;

    // Performing on the calling thread.

    /// @{
    /// Prepares the request of that name and performs it.
    void createDir(CNetRequest& request, const kel::String& dirPath, bool createParents) const;
    void removeDir(CNetRequest& request, const kel::String& dirPath) const;
    void deleteFile(CNetRequest& request, const kel::String& path) const;
    /// @}

    /// @throws also what CFTPListDirResult's constructor throws.
    [[nodiscard]] kel::P<CFTPListDirResult> listDir(CNetRequest& request, const kel::String& dirPath) const;
    /// Deletes the files of a directory and, depth first, its directories, then the directory itself. Entries
    /// that are neither (links, for one) are left alone, so that their directory cannot be removed; so are
    /// the directory itself and the one above, where a server lists them as directories (".", "..", or
    /// without a name). The first failure ends it; what was deleted until then stays deleted.
    void deleteDirWithAllContents(CNetRequest& request, const kel::String& dirPath) const;

protected:
    /// What all preparations begin with: resets the request and sets URL, login, TLS and the walk to the
    /// path's directory. A subclass adds here what the requests of all operations need, such as root
    /// certificates or a proxy; those that perform have no other place for it. One that passes
    /// escapePath(path) on makes every operation take paths as they are.
    virtual void beginPrepareRequest(CNetRequest& request, const kel::String& path,
                                     bool createMissingDirs) const;

private:
    void prepareCommandsRequest(CNetRequest& request, CNetStringList* commands) const;

    kel::String host_;
    kel::String user_;
    kel::String password_;
    ConnectType connectType_;
    CWDType overrideCWDType_ = CWDInvalid;
};

} // namespace vantra
