#include "Benchmarks.h"
#include "Comparison.h"
#include "support/ProftpdServer.h"

#include <curl/curl.h>

#include <vantra/vantra.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>

namespace bench {

using kel::P;
using kel::String;
using kel::TMap;
using testsupport::FtpSecurity;
using testsupport::FtpServer;
using testsupport::ProftpdServer;
using vantra::CFTPClient;
using vantra::CNetRequest;

namespace {

/// Counts the bytes and drops them.
class CCountingSink : public kel::CBase, public CNetRequest::IDataSink {
public:
    void write(const void* /*data*/, unsigned int length, int /*httpStatusCode*/,
               const TMap<String, String>& /*responseHeaders*/) override {
        size_ += length;
    }
    [[nodiscard]] std::size_t getSize() const noexcept { return size_; }

private:
    std::size_t size_ = 0;
};

/// The same transfers on libcurl alone, with the options that the client sets.
class BareFTP {
public:
    BareFTP(const FtpServer& server, const std::string& path)
        : handle_(curl_easy_init(), &curl_easy_cleanup) {
        require(handle_ != nullptr, "curl_easy_init failed");
        const std::string url = "ftp://" + server.host(FtpSecurity::none) + server.path(path);
        set(CURLOPT_URL, url.c_str());
        set(CURLOPT_USERNAME, FtpServer::userName().c_str());
        set(CURLOPT_PASSWORD, FtpServer::password().c_str());
        set(CURLOPT_FTP_FILEMETHOD, static_cast<long>(CURLFTPMETHOD_NOCWD));
        set(CURLOPT_NOSIGNAL, 1L);
        set(CURLOPT_WRITEFUNCTION, &onWrite);
        set(CURLOPT_WRITEDATA, this);
        set(CURLOPT_READFUNCTION, &onRead);
        set(CURLOPT_READDATA, this);
    }

    std::size_t download() {
        require(curl_easy_perform(handle_.get()) == CURLE_OK, "download failed");
        return received_;
    }

    void upload(const std::string& bytes) {
        rest_ = bytes;
        set(CURLOPT_UPLOAD, 1L);
        set(CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(bytes.size()));
        require(curl_easy_perform(handle_.get()) == CURLE_OK, "upload failed");
    }

private:
    template <class Value>
    void set(CURLoption option, Value value) {
        curl_easy_setopt(handle_.get(), option, value);
    }

    static std::size_t onWrite(char* /*data*/, std::size_t size, std::size_t nmemb, void* self) noexcept {
        static_cast<BareFTP*>(self)->received_ += size * nmemb;
        return size * nmemb;
    }
    static std::size_t onRead(char* buffer, std::size_t size, std::size_t nmemb, void* self) noexcept {
        std::string_view& rest = static_cast<BareFTP*>(self)->rest_;
        const std::size_t length = std::min(size * nmemb, rest.size());
        std::memcpy(buffer, rest.data(), length);
        rest.remove_prefix(length);
        return length;
    }

    std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> handle_;
    std::size_t received_ = 0;
    std::string_view rest_;
};

void benchDownload(const CFTPClient& client, const FtpServer& server, std::size_t size, int rounds) {
    const auto runLibrary = [&] {
        const P<CNetRequest> request = new CNetRequest();
        const P<CCountingSink> sink = new CCountingSink();
        client.prepareDownloadRequest(*request, String(server.path("/down")), 0, -1);
        request->setReceiveDataSink(sink);
        request->perform();
        require(sink->getSize() == size, "short file");
    };
    const auto runBare = [&] { require(BareFTP(server, "/down").download() == size, "short file"); };
    printComparison("FTP download", compare(rounds, runLibrary, runBare), 1, "ms", 1e3);
}

void benchUpload(const CFTPClient& client, const FtpServer& server, const std::string& bytes, int rounds) {
    const String path(server.path("/up"));
    const auto runBare = [&] { BareFTP(server, "/up").upload(bytes); };
    const auto runWithCopy = [&] {
        const P<CNetRequest> request = new CNetRequest();
        client.prepareUploadRequest(*request, path, bytes.data(), static_cast<int>(bytes.size()), false);
        request->perform();
    };
    printComparison("FTP upload, bytes copied", compare(rounds, runWithCopy, runBare), 1, "ms", 1e3);

    const auto runFromStream = [&] {
        const P<CNetRequest> request = new CNetRequest();
        client.prepareUploadRequest(*request, path, nullptr, 0, false);
        request->setSendDataStream(new kel::CMemoryInStream(bytes.data(), bytes.size()));
        request->setSendDataSize(static_cast<kel::int64>(bytes.size()));
        request->perform();
    };
    printComparison("FTP upload, from a stream", compare(rounds, runFromStream, runBare), 1, "ms", 1e3);
}

} // namespace

void benchFTPTransfers(int rounds, std::size_t size) {
    const ProftpdServer server;
    const std::string bytes(size, 'x');
    std::ofstream(server.file("/down"), std::ios::binary) << bytes;
    const CFTPClient client(String(server.host(FtpSecurity::none)), String(FtpServer::userName()),
                            String(FtpServer::password()), CFTPClient::ConnectUnencrypted);
    benchDownload(client, server, size, rounds);
    benchUpload(client, server, bytes, rounds);
}

} // namespace bench
