#include "S3Doubles.h"

#include "support/Command.h"
#include "support/TempDir.h"

#include <kel/Number.h>

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace vantra::test {

namespace {

using kel::P;
using kel::String;

/// Signs requests told one a line on standard input: method, URL, secret and header lines, all in hexadecimal
/// digits and separated by blanks. Writes the text to sign, in digits, and the signature.
constexpr const char* independentSigner = R"(
import base64, hashlib, hmac, re, sys
from urllib.parse import urlsplit
for line in sys.stdin:
    method, url, secret, *headers = [bytes.fromhex(field).decode() for field in line.rstrip('\n').split(' ')]
    values = {}
    for header in headers:
        name, value = header.split(':', 1)
        values.setdefault(name.strip().lower(), []).append(value.strip(' \t\r\n\v\f'))
    joined = {name: ','.join(several) for name, several in values.items()}
    amz = ''.join(name + ':' + re.sub(r'\n[ \t\r\n\v\f]*', ' ', joined[name]) + '\n'
                  for name in sorted(joined) if name.startswith('x-amz-'))
    parts = urlsplit(url)
    resource = parts.path
    if '?' in url and '=' not in parts.query and '&' not in parts.query:
        resource += '?' + parts.query
    date = '' if 'x-amz-date' in joined else joined.get('date', '')
    text = '\n'.join([method or 'GET', joined.get('content-md5', ''), joined.get('content-type', ''), date,
                      amz + resource])
    mac = hmac.new(secret.encode(), text.encode(), hashlib.sha1).digest()
    print(text.encode().hex(), base64.b64encode(mac).decode())
)";

class RandomRequests {
public:
    std::string pick(const std::vector<std::string>& choices) { return choices[below(choices.size())]; }

    std::string text(const std::vector<std::string>& characters, std::size_t longest) {
        std::string result;
        for (std::size_t i = below(longest + 1); i > 0; --i) result += pick(characters);
        return result;
    }

    std::size_t below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(engine_);
    }

private:
    std::mt19937 engine_{20071106};
};

std::string toHex(const std::string& bytes) { return kel::hexEncode(bytes.data(), bytes.size()).toUTF8(); }

struct SampleRequest {
    std::string method;
    std::string url;
    std::string secret;
    std::vector<std::string> headers;
};

SampleRequest makeSample(RandomRequests& random) {
    static const std::vector<std::string> pathCharacters = {"a", "Z", "0",   "-",   ".",
                                                            "_", "~", "%2F", "%20", "%C3%A9"};
    static const std::vector<std::string> valueCharacters = {
        "a", "B", "7", " ", ",", ";", "=", "/", ":", "\n ", "\n\t ", "\xc3\xa9", "\xf0\x9f\x98\x80"};
    SampleRequest sample;
    sample.method = random.pick({"", "GET", "HEAD", "PUT", "POST", "DELETE"});
    sample.url = random.pick({"https://s3.example", "http://127.0.0.1:8080"}) + "/" +
                 random.text(pathCharacters, 20) + random.pick({"", "/"}) + random.text(pathCharacters, 30) +
                 random.pick({"", "", "?acl", "?a-b", "?prefix=x&max-keys=5", "?marker=a%20b", "?acl&x"});
    sample.secret = random.text(valueCharacters, 60);
    for (std::size_t i = random.below(9); i > 0; --i) {
        const std::string name =
            random.pick({"Date", "Content-MD5", "Content-Type", "X-Amz-Date", "x-amz-acl", "X-AMZ-Meta-A",
                         "x-amz-meta-b", "x-amz-", "Range", "X-Other"});
        std::string value = random.text(valueCharacters, 20);
        // Only the values of amz headers are folded, and the other ones that count have but one line.
        if (name[0] != 'x' && name[0] != 'X') std::erase(value, '\n');
        sample.headers.push_back(name + ": " + value);
    }
    return sample;
}

P<CNetRequest> makeRequest(const SampleRequest& sample) {
    P<CNetRequest> request = new CNetRequest();
    request->setURL(String(sample.url));
    request->setHTTPMethod(String(sample.method));
    const P<CNetHeaders> headers = new CNetHeaders();
    for (const std::string& header : sample.headers) {
        const std::size_t colon = header.find(':');
        headers->add(String(header.substr(0, colon)), String(header.substr(colon + 1)));
    }
    request->setCustomHTTPHeaders(headers);
    return request;
}

TEST(S3Signing, AgreesWithAnIndependentSignerForAThousandRequests) {
    constexpr int sampleCount = 1000;
    RandomRequests random;
    std::string input;
    std::string expected;
    for (int i = 0; i < sampleCount; ++i) {
        const SampleRequest sample = makeSample(random);
        input += toHex(sample.method) + " " + toHex(sample.url) + " " + toHex(sample.secret);
        for (const std::string& header : sample.headers) input += " " + toHex(header);
        input += "\n";
        CS3Client client("id", String(sample.secret), true);
        const P<CNetRequest> request = makeRequest(sample);
        expected += toHex(CS3Client::getStringToSign(request).toUTF8()) + " " +
                    client.getSignature(request).toUTF8() + "\n";
    }
    const testsupport::TempDir folder;
    const std::string script = folder.writeFile("signer.py", independentSigner);
    const testsupport::CommandResult result =
        testsupport::runCommand({"/usr/bin/python3", "-I", script}, input);
    EXPECT_EQ(result.standardError, "");
    ASSERT_EQ(std::count(result.standardOutput.begin(), result.standardOutput.end(), '\n'), sampleCount);
    std::istringstream ours(expected);
    std::istringstream theirs(result.standardOutput);
    std::string ourLine;
    std::string theirLine;
    for (int i = 0; std::getline(ours, ourLine) && std::getline(theirs, theirLine); ++i)
        EXPECT_EQ(ourLine, theirLine) << "request " << i;
}

} // namespace

} // namespace vantra::test
