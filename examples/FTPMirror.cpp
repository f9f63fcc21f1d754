// Brings a folder up to date with a directory of an FTP server, over TLS. Files that are gone from the server
// stay.
//
//     FTP_USER=jane FTP_PASSWORD=... ftp_mirror ftp.example.org /pub/reports reports
#include "Environment.h"
#include "NewFile.h"

#include <vantra/vantra.h>

#include <chrono>
#include <filesystem>
#include <iostream>

namespace {

using kel::P;
using kel::String;
using std::filesystem::file_time_type;
using std::filesystem::path;
using vantra::CFTPDirEntry;
using vantra::CNetRequest;

/// Takes all paths as they are, and gives each request the roots to trust.
class CMirrorClient : public vantra::CFTPClient {
public:
    using CFTPClient::CFTPClient;

protected:
    void beginPrepareRequest(CNetRequest& request, const String& remotePath,
                             bool createMissingDirs) const override {
        CFTPClient::beginPrepareRequest(request, escapePath(remotePath), createMissingDirs);
        applyTrustedRoots(request);
    }
};

file_time_type toFileTime(const kel::CTime& time) {
    const std::chrono::microseconds sinceEpoch(time.getMicroseconds());
    return std::chrono::file_clock::from_sys(std::chrono::system_clock::time_point(sinceEpoch));
}

bool isUpToDate(const path& file, const CFTPDirEntry& entry) {
    std::error_code missing;
    const auto size = std::filesystem::file_size(file, missing);
    return !missing && size == static_cast<std::uintmax_t>(entry.getSize()) &&
           std::filesystem::last_write_time(file) == toFileTime(entry.getModifiedTime());
}

class CMirror {
public:
    explicit CMirror(const CMirrorClient& client) : client_(client) {}

    void updateFolder(const String& remote, const path& local) {
        const P<vantra::CFTPListDirResult> listing = client_.listDir(*request_, remote);
        std::filesystem::create_directories(local);
        for (const P<CFTPDirEntry>& entry : listing->getEntries()) {
            if (entry->getType() == kel::IFileInfoBase::Unknown) continue; // a link, or the directory itself
            const String name = checkName(entry->getName());
            const String source = (remote.endsWith(L"/") ? remote : remote + "/") + name;
            const path target = local / kel::CPath("./" + name).toStdPath(); // "C:x" is a name, too
            if (entry->getType() == kel::IFileInfoBase::Directory)
                updateFolder(source, target);
            else if (!isUpToDate(target, *entry))
                fetch(source, target, entry->getModifiedTime());
        }
    }

    [[nodiscard]] int getFetched() const noexcept { return fetched_; }

private:
    /// A name from a server must not lead out of the folder.
    static String checkName(const String& name) {
        if (name.isEmpty() || name == "." || name == ".." || name.contains("/") || name.contains("\\"))
            throw kel::CError("The server lists a name that no file can have: '" + name + "'");
        return name;
    }

    void fetch(const String& source, const path& target, const kel::CTime& modified) {
        const std::u8string name = target.u8string();
        const P<CNewFile> file = new CNewFile(String(reinterpret_cast<const char*>(name.c_str())));
        client_.prepareDownloadRequest(*request_, source, 0, -1);
        request_->setReceiveDataStream(file);
        request_->perform();
        file->commit();
        std::filesystem::last_write_time(target, toFileTime(modified));
        std::cout << source << "\n";
        ++fetched_;
    }

    const CMirrorClient& client_;
    const P<CNetRequest> request_ = new CNetRequest(); // one for all, which keeps connection and login
    int fetched_ = 0;
};

} // namespace

int main(int argc, char** argv) try {
    if (argc != 4) {
        std::cerr << "usage: ftp_mirror HOST DIRECTORY FOLDER\n";
        return 2;
    }
    const CMirrorClient client(argv[1], requireSetting("FTP_USER"), requireSetting("FTP_PASSWORD"),
                               vantra::CFTPClient::ConnectExplicitTLS);
    CMirror mirror(client);
    mirror.updateFolder(argv[2], kel::CPath(argv[3]).toStdPath());
    std::cout << "files fetched: " << mirror.getFetched() << "\n";
    return 0;
} catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
}
