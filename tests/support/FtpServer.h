/// @file support/FtpServer.h
/// What the real FTP servers of the tests have in common.
#pragma once

#include "support/CertificateAuthority.h"
#include "support/ChildProcess.h"
#include "support/TempDir.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace testsupport {

/// How a client's connection is secured.
enum class FtpSecurity {
    none,        ///< TLS is not offered
    explicitTls, ///< a plain connection which TLS is asked for; required for control and data
    implicitTls  ///< TLS from the first byte on
};

/// An FTP server of the test's own with MLSD and MLST, on a port of 127.0.0.1 for each security. One user
/// sees the files of one folder and may do everything there, but for the folder "readonly", where nothing can
/// be changed.
///
/// Thread safety: const members from any thread.
class FtpServer {
public:
    FtpServer(const FtpServer&) = delete;
    FtpServer& operator=(const FtpServer&) = delete;
    virtual ~FtpServer() = default;

    /// "127.0.0.1:<port>".
    std::string host(FtpSecurity security) const;

    /// The path by which a client names a file of the folder, both in URLs and in commands.
    /// @param path within the folder, from "/" on.
    std::string path(std::string_view path) const { return home_ + std::string(path); }

    /// The same file in the file system.
    std::string file(std::string_view path) const { return folder() + std::string(path); }

    /// The certificate that vouches for the server.
    const std::string& caFile() const { return authority_.caFile(); }

    static std::string userName() { return "user"; }
    static std::string password() { return "secret"; }

    ChildProcess& process() { return *process_; }

protected:
    /// Makes the folder with "readonly/kept.txt" in it.
    FtpServer();

    /// The folder with the user's files.
    std::string folder() const { return files_.path(); }
    /// A folder for configurations.
    const TempDir& workFolder() const { return work_; }
    /// For 127.0.0.1.
    const Certificate& certificate() const { return certificate_; }

    /// @param home how clients name the folder.
    void start(const std::string& home);
    /// @param ports one for each FtpSecurity, in their order.
    virtual std::unique_ptr<ChildProcess> launch(const std::vector<std::uint16_t>& ports) const = 0;

private:
    TempDir files_;
    TempDir work_;
    CertificateAuthority authority_;
    Certificate certificate_;
    std::string home_;
    std::vector<std::uint16_t> ports_;
    std::unique_ptr<ChildProcess> process_;
};

} // namespace testsupport
