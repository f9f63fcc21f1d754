#include "vantra/S3Client.h"

#include "http/LineEnd.h"
#include "s3/Endpoint.h"

#include <kel/Error.h>
#include <sigil/Digest.h>

namespace vantra {

using kel::CInvalidArgError;
using kel::String;

namespace {

constexpr const char* defaultHTTPSEndpoint = "https://s3.amazonaws.com/";
constexpr const char* defaultHTTPEndpoint = "http://s3.amazonaws.com/";

} // namespace

CS3Client::CS3Client(const String& accessKeyID, const String& secretAccessKey, bool useHTTPS)
    : baseURL_(useHTTPS ? defaultHTTPSEndpoint : defaultHTTPEndpoint),
      md5_(new sigil::CDigestType_MD5()),
      accessKeyID_(accessKeyID),
      secretAccessKey_(secretAccessKey),
      secretKeyBytes_(secretAccessKey.toUTF8()) {
    if (hasLineEnd(accessKeyID.view()))
        throw CInvalidArgError("CS3Client::CS3Client",
                               "access key id contains a line break or a NUL character");
}

CS3Client::CS3Client(const CS3Client&) = default;
CS3Client& CS3Client::operator=(const CS3Client&) = default;
CS3Client::~CS3Client() = default;

void CS3Client::setEndpoint(const String& baseURL) {
    const std::optional<String> endpoint = parseEndpoint(baseURL);
    if (!endpoint)
        throw CInvalidArgError("CS3Client::setEndpoint", "invalid endpoint URL: '" + baseURL + "'");
    baseURL_ = *endpoint;
}

} // namespace vantra
