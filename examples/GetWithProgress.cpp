// Downloads a file and says how far it is.
//
//     get_with_progress https://example.org/big.iso big.iso
#include "Environment.h"
#include "NewFile.h"

#include <vantra/vantra.h>

#include <iostream>

namespace {

using kel::P;
using kel::String;
using vantra::CNetRequest;

/// Writes the body to a stream, and a line for each tenth of it to standard error.
class CProgressSink : public kel::CBase, public CNetRequest::IDataSink {
public:
    CProgressSink(const CNetRequest& request, kel::IOutStream* file) : request_(request), file_(file) {}

    void write(const void* data, unsigned int length, int httpStatusCode,
               const kel::TMap<String, String>& /*responseHeaders*/) override {
        if (httpStatusCode >= 300) return; // a page about the failure that perform() reports
        file_->write(data, length);
        received_ += length;
        const double size = request_.getDownloadSize(); // -1 when the server does not say
        const int tenths = size > 0 ? static_cast<int>(10.0 * static_cast<double>(received_) / size) : 0;
        if (tenths > tenths_) std::cerr << 10 * tenths << " %\n";
        tenths_ = tenths;
    }

    [[nodiscard]] kel::int64 getReceived() const noexcept { return received_; }

private:
    const CNetRequest& request_; // owns this sink
    const P<kel::IOutStream> file_;
    kel::int64 received_ = 0;
    int tenths_ = 0;
};

} // namespace

int main(int argc, char** argv) try {
    if (argc != 3) {
        std::cerr << "usage: get_with_progress URL FILE\n";
        return 2;
    }
    const P<CNewFile> file = new CNewFile(argv[2]);
    const P<CNetRequest> request = new CNetRequest();
    const P<CProgressSink> sink = new CProgressSink(*request, file);
    request->setURL(argv[1]);
    applyTrustedRoots(*request);
    request->setReceiveDataSink(sink);
    request->perform();
    file->commit();
    std::cout << sink->getReceived() << " bytes\n";
    return 0;
} catch (const std::exception& error) { // kel::CError, or what the file system reports
    std::cerr << error.what() << "\n";
    return 1;
}
