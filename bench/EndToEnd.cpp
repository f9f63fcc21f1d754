// Times the library beside bare libcurl, transfer by transfer, against a web server on loopback.

#include <vantra/vantra.h>

#include "AllocationCounter.h"
#include "BareTransfer.h"
#include "Comparison.h"
#include "support/NginxServer.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

using kel::P;
using kel::String;
using vantra::CNetRequest;

constexpr std::uintmax_t largeSize = 1024U * 1024 * 1024;

/// Counts the body's bytes and drops them.
class CDroppingSink : public kel::CBase, public CNetRequest::IDataSink {
public:
    void write(const void* /*data*/, unsigned int length, int /*httpStatusCode*/,
               const kel::TMap<String, String>& /*responseHeaders*/) override {
        size_ += length;
    }
    [[nodiscard]] std::uintmax_t getSize() const noexcept { return size_; }

private:
    std::uintmax_t size_ = 0;
};

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", what);
    std::exit(1);
}

P<CNetRequest> makeRequest(const std::string& url) {
    P<CNetRequest> request = new CNetRequest();
    request->setURL(String::fromUTF8(url));
    return request;
}

void benchSmallGets(const std::string& url, int rounds, int requestsPerRound) {
    const P<CNetRequest> request = makeRequest(url);
    bench::BareTransfer bare(url);
    const auto runLibrary = [&] {
        for (int i = 0; i < requestsPerRound; ++i) {
            request->perform();
            require(request->getDefaultReceiveBuffer()->getUsed() == 256, "short body");
        }
    };
    const auto runBare = [&] {
        for (int i = 0; i < requestsPerRound; ++i) {
            bare.perform();
            require(bare.getBodySize() == 256, "short body");
        }
    };
    const bench::ComparisonResult result = bench::compare(rounds, runLibrary, runBare);
    bench::printComparison("small keep-alive GET", result, requestsPerRound, "us", 1e6);

    const std::uint64_t before = bench::countAllocations();
    runLibrary();
    const std::uint64_t between = bench::countAllocations();
    runBare();
    const std::uint64_t after = bench::countAllocations();
    std::printf("%-28s vantra %9.1f      libcurl %9.1f\n", "allocations per small GET",
                static_cast<double>(between - before) / requestsPerRound,
                static_cast<double>(after - between) / requestsPerRound);
}

/// A new handle for every download: what a connection or buffer happens to be like then is not one side's for
/// good.
void benchLargeDownload(const std::string& url, int rounds) {
    const auto runLibrary = [&] {
        const P<CNetRequest> request = makeRequest(url);
        const P<CDroppingSink> sink = new CDroppingSink();
        request->setReceiveDataSink(sink);
        request->perform();
        require(sink->getSize() == largeSize, "short body");
    };
    const auto runBare = [&] {
        bench::BareTransfer bare(url);
        bare.dropBody();
        bare.perform();
        require(bare.getBodySize() == largeSize, "short body");
    };
    const bench::ComparisonResult result = bench::compare(rounds, runLibrary, runBare);
    bench::printComparison("1 GiB download, dropped", result, 1, "ms", 1e3);
}

} // namespace

int main(int argc, char** argv) {
    // "--smoke" only shows that everything runs; its figures mean nothing.
    const bool isSmoke = argc > 1 && std::string_view(argv[1]) == "--smoke";
    unsetenv("http_proxy");
    testsupport::NginxServer server;
    const std::string largeFile = server.documentRoot() + "/large.bin";
    std::ofstream(largeFile).close();
    std::filesystem::resize_file(largeFile, largeSize);

    benchSmallGets(server.url("/bench"), isSmoke ? 1 : 31, isSmoke ? 10 : 2000);
    benchLargeDownload(server.url("/large.bin"), isSmoke ? 1 : 25);
    return 0;
}
