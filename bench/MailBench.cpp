// Times the mail classes: messages in memory beside memcpy, the encoders beside OpenSSL's base64, and mails
// to a real server beside bare libcurl.

#include <vantra/vantra.h>

#include "AllocationCounter.h"
#include "Comparison.h"
#include "support/SmtpServer.h"

#include <kel/Buffer.h>
#include <kel/MemoryStream.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <openssl/evp.h>

namespace {

using kel::CBufferOutStream;
using kel::P;
using kel::String;
using vantra::CMimeMessage;
using vantra::CMultiPartMimeMessage;
using vantra::CSMTPClient;
using vantra::CSMTPParams;

using Bytes = kel::TBuffer<unsigned char>;

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", what);
    std::exit(1);
}

P<Bytes> makeBytes(std::size_t size, unsigned char first, unsigned char count) {
    P<Bytes> bytes = new Bytes();
    bytes->setUsed(size);
    std::uint32_t state = 1;
    for (unsigned char& byte : *bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<unsigned char>(first + (state >> 16U) % count);
    }
    return bytes;
}

void printRates(const std::string& name, double bytes, const bench::ComparisonResult& result,
                const char* other) {
    constexpr double giga = 1e9;
    std::printf("%-28s vantra %9.2f GB/s %8s %9.2f GB/s   ratio %.3f\n", name.c_str(),
                bytes / result.librarySeconds / giga, other, bytes / result.bareSeconds / giga, result.ratio);
}

void printAllocations(const std::string& name, const std::function<void()>& run) {
    const std::uint64_t before = bench::countAllocations();
    run();
    std::printf("%-28s vantra %9llu\n", name.c_str(),
                static_cast<unsigned long long>(bench::countAllocations() - before));
}

void benchStoring(int rounds) {
    constexpr std::size_t parts = 100;
    constexpr std::size_t partSize = std::size_t{1} << 20;
    std::vector<P<Bytes>> bodies;
    const P<CMultiPartMimeMessage> message = new CMultiPartMimeMessage();
    for (std::size_t i = 0; i < parts; ++i) {
        bodies.push_back(makeBytes(partSize, 'A', 26));
        const P<CMimeMessage> part = new CMimeMessage("application/octet-stream");
        part->setBody(bodies.back(), "binary");
        message->addPart(part);
    }
    // Both write into memory that is there already.
    const P<Bytes> target = new Bytes();
    target->setUsed((partSize + 1024) * parts);
    const P<CBufferOutStream> stream = new CBufferOutStream(target);
    const auto runLibrary = [&] {
        stream->seek(0);
        message->store(*stream);
    };
    const auto runBare = [&] {
        unsigned char* at = target->getData();
        for (const P<Bytes>& body : bodies) {
            std::memcpy(at, body->getData(), partSize);
            at += partSize;
        }
    };
    printRates("store 100 parts of 1 MiB", static_cast<double>(parts * partSize),
               bench::compare(rounds, runLibrary, runBare), "memcpy");
    printAllocations("allocations of that", runLibrary);
}

void benchEncoders(int rounds) {
    constexpr std::size_t size = std::size_t{16} << 20;
    const P<Bytes> binary = makeBytes(size, 0, 255);
    const auto encodeLines = [&] { require(vantra::encodeBase64Lines(*binary)->getUsed() > size, "short"); };
    std::vector<unsigned char> oneLine(size / 3 * 4 + 16);
    const auto encodeOneLine = [&] {
        EVP_EncodeBlock(oneLine.data(), binary->getData(), static_cast<int>(size));
    };
    printRates("base64, 16 MiB", static_cast<double>(size),
               bench::compare(rounds, encodeLines, encodeOneLine), "OpenSSL");
    printAllocations("allocations of that", encodeLines);

    const P<Bytes> text = makeBytes(size, ' ', '~' - ' ');
    for (std::size_t i = 70; i + 1 < size; i += 72) {
        (*text)[i] = '\r';
        (*text)[i + 1] = '\n';
    }
    const auto encodeText = [&] { require(vantra::encodeQuotedPrintable(*text)->getUsed() > size, "short"); };
    printRates("quoted-printable, 16 MiB", static_cast<double>(size),
               bench::compare(rounds, encodeText, encodeOneLine), "OpenSSL");
    printAllocations("allocations of that", encodeText);
}

void benchEncodedWords(int rounds) {
    constexpr int words = 10000;
    const String subject = "Die Gr\u00f6\u00dfe der \u00dcberraschung am n\u00e4chsten Dienstag \U0001F600";
    const std::string bare = subject.toUTF8();
    std::size_t length = 0;
    const auto encode = [&] {
        for (int i = 0; i < words; ++i) length += CMimeMessage::toEncodedWord(subject).length();
    };
    const auto convert = [&] { // what there is to do in any case: to UTF-8 and back
        for (int i = 0; i < words; ++i) length += String::fromUTF8(subject.toUTF8()).length();
    };
    bench::printComparison("encoded words of a subject", bench::compare(rounds, encode, convert), words, "us",
                           1e6);
    require(length > bare.size(), "short");
}

/// The mails on libcurl alone, with the options that the client sets.
class BareMail {
public:
    BareMail(const std::string& url, std::string message)
        : message_(std::move(message)), handle_(curl_easy_init()) {
        require(handle_ != nullptr, "no handle");
        CURL* handle = handle_.get();
        curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, errorBuffer_);
        curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
        curl_easy_setopt(handle, CURLOPT_READFUNCTION, &BareMail::onRead);
        curl_easy_setopt(handle, CURLOPT_READDATA, this);
        curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &BareMail::onHeader);
        curl_easy_setopt(handle, CURLOPT_HEADERDATA, this);
        curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT_MS, 30000L);
        curl_easy_setopt(handle, CURLOPT_LOW_SPEED_LIMIT, 1L);
        curl_easy_setopt(handle, CURLOPT_LOW_SPEED_TIME, 60L);
        curl_easy_setopt(handle, CURLOPT_UPLOAD, 1L);
        recipients_.reset(curl_slist_append(nullptr, "joe@example.org"));
    }

    void send() {
        sent_ = 0;
        curl_easy_setopt(handle_.get(), CURLOPT_MAIL_FROM, "jane@example.org");
        curl_easy_setopt(handle_.get(), CURLOPT_MAIL_RCPT, recipients_.get());
        require(curl_easy_perform(handle_.get()) == CURLE_OK, errorBuffer_);
    }

private:
    struct HandleDeleter {
        void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
    };
    struct ListDeleter {
        void operator()(curl_slist* list) const noexcept { curl_slist_free_all(list); }
    };

    static std::size_t onRead(char* buffer, std::size_t size, std::size_t nmemb, void* self) noexcept {
        auto* mail = static_cast<BareMail*>(self);
        const std::size_t length = std::min(size * nmemb, mail->message_.size() - mail->sent_);
        std::memcpy(buffer, mail->message_.data() + mail->sent_, length);
        mail->sent_ += length;
        return length;
    }
    static std::size_t onHeader(char* /*line*/, std::size_t size, std::size_t nmemb, void* self) noexcept {
        ++static_cast<BareMail*>(self)->replyLines_;
        return size * nmemb;
    }

    std::string message_;
    std::unique_ptr<CURL, HandleDeleter> handle_;
    std::unique_ptr<curl_slist, ListDeleter> recipients_;
    char errorBuffer_[CURL_ERROR_SIZE] = {};
    std::size_t sent_ = 0;
    std::size_t replyLines_ = 0;
};

void benchSending(int rounds, int mailsPerRound) {
    testsupport::SmtpServer server;
    const std::string message = "Subject: x\r\n\r\n" + std::string(500, 'a') + "\r\n";
    const Bytes bytes(reinterpret_cast<const unsigned char*>(message.data()), message.size());
    const P<CSMTPClient> client = new CSMTPClient(
        CSMTPParams("127.0.0.1", server.ports().plain, CSMTPParams::ConnectTypeUnencrypted, "", ""));
    BareMail bare("smtp://127.0.0.1:" + std::to_string(server.ports().plain), message);
    const auto runLibrary = [&] {
        for (int i = 0; i < mailsPerRound; ++i)
            client->sendMail("jane@example.org", {"joe@example.org"}, bytes);
    };
    const auto runBare = [&] {
        for (int i = 0; i < mailsPerRound; ++i) bare.send();
    };
    bench::printComparison("small mail, one connection", bench::compare(rounds, runLibrary, runBare),
                           mailsPerRound, "us", 1e6);
    const std::uint64_t before = bench::countAllocations();
    runLibrary();
    const std::uint64_t between = bench::countAllocations();
    runBare();
    const std::uint64_t after = bench::countAllocations();
    std::printf("%-28s vantra %9.1f      libcurl %9.1f\n", "allocations per small mail",
                static_cast<double>(between - before) / mailsPerRound,
                static_cast<double>(after - between) / mailsPerRound);
}

} // namespace

int main(int argc, char** argv) {
    // "--smoke" only shows that everything runs; its figures mean nothing.
    const bool isSmoke = argc > 1 && std::string_view(argv[1]) == "--smoke";
    unsetenv("all_proxy");
    unsetenv("ALL_PROXY");
    benchStoring(isSmoke ? 1 : 21);
    benchEncoders(isSmoke ? 1 : 21);
    benchEncodedWords(isSmoke ? 1 : 21);
    benchSending(isSmoke ? 1 : 11, isSmoke ? 10 : 1000);
    return 0;
}
