#include "WebServer.h"

#include "support/Command.h"
#include "support/ScriptedServer.h"
#include "support/TempDir.h"

#include <random>

using kel::P;
using vantra::CNetRequest;

namespace {

/// Reads logs with a parser of another make. For each number it compares the bodies in N.xml with the bytes
/// in N.body, and at the end writes how many there were.
constexpr const char* checkLogs = R"(
import sys, urllib.parse, xml.etree.ElementTree as tree

def bytes_of(root, name):
    texts = [e.text or '' for e in root if e.tag == name and e.get('type') == 'data']
    return b''.join(urllib.parse.unquote(text).encode('latin-1') for text in texts)

folder, count = sys.argv[1], int(sys.argv[2])
for number in range(count):
    root = tree.parse('%s/%d.xml' % (folder, number)).getroot()
    assert root.tag == 'NetRequest', number
    assert root.get('httpMethod') == 'POST', number
    body = open('%s/%d.body' % (folder, number), 'rb').read()
    for name in ('send', 'receive'):
        assert bytes_of(root, name) == body, (number, name)
        sizes = [int(e.get('bytes')) for e in root if e.tag == name and e.get('type') == 'data']
        assert sum(sizes) == len(body), (number, name)
print(count)
)";

/// Bytes of every value, the same in every run.
class RandomBytes {
public:
    std::string make(std::size_t longest) {
        std::string bytes(std::uniform_int_distribution<std::size_t>(1, longest)(generator_), '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(std::uniform_int_distribution<int>(0, 255)(generator_));
        return bytes;
    }

    /// What may stand in a header line.
    std::string makeHeaderValue(std::size_t longest) {
        std::string bytes = make(longest);
        std::erase_if(bytes, [](char byte) { return byte == '\0' || byte == '\r' || byte == '\n'; });
        return bytes;
    }

private:
    std::mt19937 generator_{20240501}; // NOLINT(cert-msc32-c,cert-msc51-cpp): the same in every run
};

TEST(LogXML, IsWellFormedForAnyBytes) {
    constexpr int count = 300;
    RandomBytes random;
    const testsupport::TempDir folder;
    testsupport::ScriptedServer server;
    for (int number = 0; number < count; ++number) {
        const std::string body = random.make(number % 10 == 0 ? 40000 : 200);
        server.play(testsupport::Script().expectRequest().send(testsupport::okResponse(
            body, "Connection: close\r\nX-" + std::to_string(number) + ": " + random.makeHeaderValue(60) +
                      "\r\n" + "X-<&\"']]>: <![CDATA[\r\n")));
        P<CNetRequest> request = makeRequest(server.url("/?a=%3C&b=\"<]]>'"));
        request->setHTTPMethod("POST");
        const P<kel::TBuffer<unsigned char>> buffer =
            new kel::TBuffer<unsigned char>(reinterpret_cast<const unsigned char*>(body.data()), body.size());
        request->setSendDataBuffer(buffer);
        const P<vantra::CNetHeaders> headers = new vantra::CNetHeaders();
        headers->add("Expect", "");
        request->setCustomHTTPHeaders(headers);
        request->setVerbose(true);
        request->setVerboseSettings(CNetRequest::VerboseLogDataContent, CNetRequest::VerboseLogDataContent);
        ASSERT_EQ(performForBody(*request), body) << number;
        folder.writeFile(std::to_string(number) + ".xml",
                         request->getVerboseOutput(1000000)->toDocumentUTF8());
        folder.writeFile(std::to_string(number) + ".body", body);
    }
    const testsupport::CommandResult result =
        testsupport::runCommand({"python3", "-c", checkLogs, folder.path(), std::to_string(count)});
    EXPECT_EQ(result.standardError, "");
    EXPECT_EQ(result.standardOutput, std::to_string(count) + "\n");
}

/// The one way in which bytes that are no data get into the log is as Latin-1: every value of them, in every
/// kind of message, and cut anywhere.
TEST(LogXML, IsWellFormedForAnyMessage) {
    constexpr int count = 200;
    class CRequest : public CNetRequest {
    public:
        using CNetRequest::onLogDebugMessage;
    };
    RandomBytes random;
    const testsupport::TempDir folder;
    for (int number = 0; number < count; ++number) {
        const P<CRequest> request = new CRequest();
        request->setURL(number % 2 == 0 ? "smtp://example.org/" : "http://example.org/");
        request->setVerbose(true);
        for (int kind = CURLINFO_TEXT; kind <= CURLINFO_END; ++kind) {
            std::string bytes = random.make(500);
            request->onLogDebugMessage(request->getHandle(), static_cast<curl_infotype>(kind), bytes.data(),
                                       bytes.size());
        }
        folder.writeFile(std::to_string(number) + ".xml",
                         request->getVerboseOutput(static_cast<unsigned int>(number * 3))->toDocumentUTF8());
    }
    const testsupport::CommandResult result = testsupport::runCommand(
        {"python3", "-c",
         "import sys, xml.etree.ElementTree as tree\n"
         "print(sum(len(tree.parse('%s/%d.xml' % (sys.argv[1], n)).getroot()) for n in "
         "range(int(sys.argv[2]))))",
         folder.path(), std::to_string(count)});
    EXPECT_EQ(result.standardError, "");
    EXPECT_EQ(result.standardOutput, std::to_string(count * (CURLINFO_END + 1)) + "\n");
}

} // namespace
