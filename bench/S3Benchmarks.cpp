#include <curl/curl.h>

#include "AllocationCounter.h"
#include "BareTransfer.h"
#include "Benchmarks.h"
#include "Comparison.h"
#include "support/S3Server.h"

#include <vantra/vantra.h>

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <wx/mstream.h>
#include <wx/xml/xml.h>

namespace bench {

namespace {

using kel::P;
using kel::String;
using testsupport::S3Server;
using vantra::CNetRequest;
using vantra::CS3Client;

struct SListDeleter {
    void operator()(curl_slist* list) const noexcept { curl_slist_free_all(list); }
};
using SList = std::unique_ptr<curl_slist, SListDeleter>;

/// What a request costs beside its transfer: the digest of a body and the signature, with OpenSSL alone.
void digestAndSign(const std::string& body, const std::string& text) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned char encoded[64];
    unsigned int length = 0;
    require(EVP_Digest(body.data(), body.size(), digest, &length, EVP_md5(), nullptr) == 1, "no MD5");
    EVP_EncodeBlock(encoded, digest, static_cast<int>(length));
    const std::string secret = S3Server::secretKey();
    require(HMAC(EVP_sha1(), secret.data(), static_cast<int>(secret.size()),
                 reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest,
                 &length) != nullptr,
            "no HMAC");
    EVP_EncodeBlock(encoded, digest, static_cast<int>(length));
}

P<CS3Client> makeClient(const std::string& endpoint) {
    P<CS3Client> client = new CS3Client(String(S3Server::accessKey()), String(S3Server::secretKey()), false);
    client->setEndpoint(String(endpoint));
    return client;
}

void printAllocations(const char* name, double library, double bare) {
    std::printf("%-28s vantra %9.1f      bare    %9.1f\n", name, library, bare);
}

/// An upload on bare libcurl with headers that were made ahead.
class BareUpload {
public:
    BareUpload(BareTransfer& transfer, const std::string& body) : transfer_(transfer), body_(body) {
        CURL* const handle = transfer.getHandle();
        curl_easy_setopt(handle, CURLOPT_UPLOAD, 1L);
        curl_easy_setopt(handle, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(body.size()));
        curl_easy_setopt(handle, CURLOPT_READFUNCTION, &onRead);
        curl_easy_setopt(handle, CURLOPT_READDATA, this);
        curl_easy_setopt(handle, CURLOPT_SEEKFUNCTION, &onSeek);
        curl_easy_setopt(handle, CURLOPT_SEEKDATA, this);
    }

    void perform() {
        position_ = 0;
        transfer_.perform();
    }

private:
    static std::size_t onRead(char* buffer, std::size_t size, std::size_t nmemb, void* self) noexcept {
        auto* const upload = static_cast<BareUpload*>(self);
        const std::size_t count = std::min(size * nmemb, upload->body_.size() - upload->position_);
        std::memcpy(buffer, upload->body_.data() + upload->position_, count);
        upload->position_ += count;
        return count;
    }

    static int onSeek(void* self, curl_off_t offset, int /*origin*/) noexcept {
        static_cast<BareUpload*>(self)->position_ = static_cast<std::size_t>(offset);
        return CURL_SEEKFUNC_OK;
    }

    BareTransfer& transfer_;
    const std::string& body_;
    std::size_t position_ = 0;
};

/// The header lines of a request, for a bare transfer.
SList copyHeaders(const CNetRequest& request) {
    curl_slist* list = nullptr;
    const P<vantra::CNetHeaders> headers = request.getCustomHTTPHeaders();
    for (const curl_slist* line = headers->getSList(); line; line = line->next)
        list = curl_slist_append(list, line->data);
    return SList(list);
}

void benchTransfersOfSize(const S3Server& server, const std::string& name, std::size_t size, int rounds,
                          int perRound) {
    const P<CS3Client> client = makeClient(server.url());
    const P<CNetRequest> request = new CNetRequest();
    const std::string body(size, 'b');
    const auto bodySize = static_cast<int>(size);

    client->preparePutObjectRequest(*request, "bench", "object", body.data(), bodySize, "");
    const SList putHeaders = copyHeaders(*request);
    BareTransfer barePut(request->getURL().toUTF8());
    curl_easy_setopt(barePut.getHandle(), CURLOPT_HTTPHEADER, putHeaders.get());
    BareUpload upload(barePut, body);
    const std::string text = CS3Client::getStringToSign(request).toUTF8();
    const auto put = [&] {
        for (int i = 0; i < perRound; ++i)
            client->putObject(*request, "bench", "object", body.data(), bodySize, "");
    };
    const auto putBare = [&] {
        for (int i = 0; i < perRound; ++i) upload.perform();
    };
    const auto digestAndPutBare = [&] {
        for (int i = 0; i < perRound; ++i) {
            digestAndSign(body, text);
            upload.perform();
        }
    };
    printComparison("s3 put " + name, compare(rounds, put, putBare), perRound, "ms", 1e3);
    // The digest of the body, which the headers made ahead have for nothing, is most of the difference.
    printComparison("s3 put " + name + ", signed", compare(rounds, put, digestAndPutBare), perRound, "ms",
                    1e3);

    client->prepareGetObjectRequest(*request, "bench", "object", 0, -1);
    const SList getHeaders = copyHeaders(*request);
    BareTransfer bareGet(request->getURL().toUTF8());
    curl_easy_setopt(bareGet.getHandle(), CURLOPT_HTTPHEADER, getHeaders.get());
    const ComparisonResult get = compare(
        rounds,
        [&] {
            for (int i = 0; i < perRound; ++i) {
                client->getObject(*request, "bench", "object", 0, -1);
                require(request->getDefaultReceiveBuffer()->getUsed() == size, "short body");
            }
        },
        [&] {
            for (int i = 0; i < perRound; ++i) {
                bareGet.perform();
                require(bareGet.getBodySize() == size, "short body");
            }
        });
    printComparison("s3 get " + name, get, perRound, "ms", 1e3);
}

std::string makeListing(int entries) {
    std::string xml =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ListBucketResult xmlns=\"http://s3.amazonaws"
        ".com/doc/2006-03-01/\"><Name>bucket</Name><Prefix></Prefix><Marker></Marker><MaxKeys>1000"
        "</MaxKeys><IsTruncated>true</IsTruncated>";
    for (int i = 0; i < entries; ++i)
        xml +=
            "<Contents><Key>photos/2009/October/picture-" + std::to_string(i) +
            ".jpg</Key><LastModified>2009-10-12T17:50:30.000Z</LastModified><ETag>&quot;fba9dede5f27731c9771"
            "645a39863328&quot;</ETag><Size>434234</Size><StorageClass>STANDARD</"
            "StorageClass><Owner><ID>75aa5"
            "7f09aa0c8caeab4f8c24e99d10f8e7faeebf76c078efc7c6caea54ba06a</ID><DisplayName>owner</DisplayName>"
            "</Owner></Contents>";
    return xml + "</ListBucketResult>";
}

} // namespace

void benchS3Signing(int rounds, int callsPerRound) {
    const P<CS3Client> client = makeClient("http://127.0.0.1:1");
    const P<CNetRequest> request = new CNetRequest();
    const std::string body(1024, 'b');
    client->preparePutObjectRequest(*request, "bench", "folder/object", body.data(), 1024, "text/plain");
    const std::string text = CS3Client::getStringToSign(request).toUTF8();
    const auto library = [&] {
        for (int i = 0; i < callsPerRound; ++i)
            client->preparePutObjectRequest(*request, "bench", "folder/object", body.data(), 1024,
                                            "text/plain");
    };
    const auto bare = [&] {
        for (int i = 0; i < callsPerRound; ++i) digestAndSign(body, text);
    };
    printComparison("s3 prepare and sign a put", compare(rounds, library, bare), callsPerRound, "us", 1e6);
    const std::uint64_t before = countAllocations();
    library();
    const std::uint64_t between = countAllocations();
    bare();
    const std::uint64_t after = countAllocations();
    printAllocations("allocations per s3 prepare", static_cast<double>(between - before) / callsPerRound,
                     static_cast<double>(after - between) / callsPerRound);
}

void benchS3Transfers(int rounds, int smallPerRound, std::size_t largestSize) {
    const S3Server server({"bench"});
    constexpr std::size_t mebibyte = std::size_t{1} << 20U;
    benchTransfersOfSize(server, "1 KiB", 1024, rounds, smallPerRound);
    benchTransfersOfSize(server, "1 MiB", mebibyte, rounds, std::max(1, smallPerRound / 5));
    benchTransfersOfSize(server, std::to_string(largestSize / mebibyte) + " MiB", largestSize, rounds, 1);
}

void benchS3Listing(int rounds, int callsPerRound) {
    constexpr std::size_t entries = 1000;
    const std::string xml = makeListing(entries);
    const auto library = [&] {
        for (int i = 0; i < callsPerRound; ++i) {
            const vantra::CS3ListObjectsResult result(xml.data(), static_cast<int>(xml.size()));
            require(result.getObjects().size() == entries, "short listing");
        }
    };
    const auto bare = [&] {
        for (int i = 0; i < callsPerRound; ++i) {
            wxMemoryInputStream stream(xml.data(), xml.size());
            wxXmlDocument document;
            require(document.Load(stream, "UTF-8"), "bad listing");
        }
    };
    printComparison("s3 listing of 1000 entries", compare(rounds, library, bare), callsPerRound, "us", 1e6);
}

} // namespace bench
