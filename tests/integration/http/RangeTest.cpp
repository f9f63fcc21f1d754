#include "WebServer.h"

#include <kel/MemoryStream.h>

using kel::int64;
using kel::P;
using kel::TBuffer;
using testsupport::NginxServer;
using vantra::CNetRequest;

namespace {

class Range : public OverHTTPAndHTTPS {};

INSTANTIATE_TEST_SUITE_P(Scheme, Range, testing::Values("HTTP", "HTTPS"),
                         [](const auto& scheme) { return std::string(scheme.param); });

TEST_P(Range, DeliversTheBytesAskedFor) {
    const P<CNetRequest> request = makeRequest(url("/hello.txt"));
    request->setRange(6, 4);
    EXPECT_EQ(performForBody(*request), NginxServer::helloContent().substr(6, 4));
    EXPECT_EQ(request->getResponseCode(), 206);
    const auto contentRange = request->getResponseHeaderMap().lookup("content-range");
    EXPECT_EQ(contentRange,
              kel::String("bytes 6-9/") + kel::String::fromUInt(NginxServer::helloContent().size()));
}

TEST_P(Range, DeliversTheRestOfTheFile) {
    const P<CNetRequest> request = makeRequest(url("/hello.txt"));
    request->setRange(6, -1);
    EXPECT_EQ(performForBody(*request), NginxServer::helloContent().substr(6));
}

TEST_P(Range, JoinedPartsAreTheWhole) {
    const P<CNetRequest> request = makeRequest(url("/big.bin"));
    const auto size = static_cast<int64>(NginxServer::bigContent().size());
    constexpr int64 partSize = 100003;
    std::string joined;
    for (int64 offset = 0; offset < size; offset += partSize) {
        request->setRange(offset, offset + partSize < size ? partSize : -1);
        joined += performForBody(*request);
    }
    EXPECT_EQ(joined, NginxServer::bigContent());
}

TEST_P(Range, BehindTheEndFailsWith416) {
    const P<CNetRequest> request = makeRequest(url("/hello.txt"));
    request->setRange(100000, 10);
    EXPECT_EQ(performForError(*request).getResponseCode(), 416);
}

TEST_P(Range, ReachesStreamsInOrder) {
    const P<TBuffer<unsigned char>> received = new TBuffer<unsigned char>();
    const P<kel::CBufferOutStream> stream = new kel::CBufferOutStream(received);
    const P<CNetRequest> request = makeRequest(url("/big.bin"));
    request->setReceiveDataStream(stream);
    request->setRange(0, 500000);
    request->perform();
    request->setRange(500000, -1);
    request->perform();
    EXPECT_TRUE(request->getDefaultReceiveBuffer()->isEmpty());
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(received->getData()), received->getUsed()),
              NginxServer::bigContent());
}

} // namespace
