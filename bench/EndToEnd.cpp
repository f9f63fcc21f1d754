// Times the library beside bare libcurl, transfer by transfer, against a web server on loopback.

#include <vantra/vantra.h>

#include "AllocationCounter.h"
#include "BareTransfer.h"
#include "Benchmarks.h"
#include "Comparison.h"
#include "support/NginxServer.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using bench::require;
using kel::P;
using kel::String;
using vantra::CNetRequest;

constexpr std::uintmax_t largeSize = 1024U * 1024 * 1024;
constexpr std::size_t ftpFileSize = std::size_t{256} * 1024 * 1024;

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

/// What to run: "--smoke" only shows that everything runs, and its figures mean nothing; names of groups
/// leave out the others.
class Selection {
public:
    Selection(int argumentCount, char** arguments) : arguments_(arguments + 1, arguments + argumentCount) {
        isSmoke_ = std::erase(arguments_, "--smoke") > 0;
    }

    bool has(std::string_view group) const {
        return arguments_.empty() ||
               std::find(arguments_.begin(), arguments_.end(), group) != arguments_.end();
    }
    template <class Number>
    Number pick(Number smoke, Number full) const {
        return isSmoke_ ? smoke : full;
    }

private:
    std::vector<std::string> arguments_;
    bool isSmoke_;
};

} // namespace

int main(int argc, char** argv) {
    const Selection selection(argc, argv);
    unsetenv("http_proxy");
    unsetenv("ftp_proxy");
    testsupport::NginxServer server;
    const std::string smallUrl = server.url("/bench");
    const int rounds = selection.pick(1, 31);
    if (selection.has("small")) benchSmallGets(smallUrl, rounds, selection.pick(10, 2000));
    if (selection.has("parallel")) {
        for (const std::size_t inFlight : {1U, 64U, 512U})
            bench::benchParallelGets(smallUrl, rounds, selection.pick(inFlight + 10, std::size_t{4000}),
                                     inFlight);
    }
    if (selection.has("start")) bench::benchStartOfRequests(selection.pick(2, 50));
    if (selection.has("escaping")) bench::benchEscaping(rounds, selection.pick(10, 20000));
    if (selection.has("memory"))
        bench::benchMemory(smallUrl, selection.pick(std::size_t{5}, std::size_t{200}));
    if (selection.has("ftp-listing")) bench::benchFTPListing(rounds, selection.pick(100, 100000));
    if (selection.has("ftp-transfers"))
        bench::benchFTPTransfers(selection.pick(1, 15), selection.pick(std::size_t{1000}, ftpFileSize));
    if (selection.has("download")) {
        const std::string largeFile = server.documentRoot() + "/large.bin";
        std::ofstream(largeFile).close();
        std::filesystem::resize_file(largeFile, largeSize);
        benchLargeDownload(server.url("/large.bin"), selection.pick(1, 25));
    }
    if (selection.has("s3-sign")) bench::benchS3Signing(rounds, selection.pick(10, 2000));
    if (selection.has("s3-listing")) bench::benchS3Listing(rounds, selection.pick(1, 10));
    if (selection.has("s3-transfers")) {
        constexpr std::size_t mebibyte = std::size_t{1} << 20U;
        bench::benchS3Transfers(selection.pick(1, 15), selection.pick(1, 20),
                                selection.pick(2 * mebibyte, 64 * mebibyte));
    }
    return 0;
}
