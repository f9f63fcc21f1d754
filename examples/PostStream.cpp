// Posts standard input as it comes, however long it is, and prints the answer.
//
//     tail -n 100000 access.log | post_stream https://example.org/logs text/plain
#include "Environment.h"

#include <vantra/vantra.h>

#include <iostream>

namespace {

using kel::P;
using kel::String;
using vantra::CNetHeaders;
using vantra::CNetRequest;

/// Standard input as the body of a request. Its size is not known: HTTP/1.1 sends it in chunks.
class CStandardInput : public kel::CBase, public CNetRequest::IDataSource {
public:
    unsigned int read(void* buffer, unsigned int maxLength,
                      const kel::TMap<String, String>& /*responseHeaders*/) override {
        std::cin.read(static_cast<char*>(buffer), static_cast<std::streamsize>(maxLength));
        if (std::cin.bad()) throw kel::CError("Error reading standard input.");
        const auto length = static_cast<unsigned int>(std::cin.gcount());
        position_ += length;
        return length;
    }
    kel::int64 getSize() override { return -1; }
    /// Called when the server wants the body once more, at another address or with a login.
    void seek(kel::int64 position) override {
        if (position != position_) throw kel::CError("Standard input cannot be sent twice.");
    }
    kel::int64 getPosition() override { return position_; }

private:
    kel::int64 position_ = 0;
};

} // namespace

int main(int argc, char** argv) try {
    if (argc != 3) {
        std::cerr << "usage: post_stream URL CONTENT-TYPE\n";
        return 2;
    }
    const P<CNetHeaders> headers = new CNetHeaders();
    headers->add("Content-Type", argv[2]);
    headers->add("Accept", "text/plain, application/json");

    const P<CNetRequest> request = new CNetRequest();
    request->setURL(argv[1]);
    request->setHTTPMethod("POST");
    request->setKeepPostOnRedirect(true);
    request->setCustomHTTPHeaders(headers);
    request->setSendDataSource(new CStandardInput());
    applyTrustedRoots(*request);
    request->perform();

    const kel::PC<kel::TBuffer<unsigned char>> answer = request->getDefaultReceiveBuffer();
    std::cout.write(reinterpret_cast<const char*>(answer->getData()),
                    static_cast<std::streamsize>(answer->getUsed()));
    return 0;
} catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
}
