#include "S3Doubles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

namespace vantra::test {

namespace {

using kel::CTime;
using kel::int64;
using kel::P;
using kel::String;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr const char* dateLine = "Date: Sun, 06 Nov 1994 08:49:37 GMT";

class S3Preparation : public S3Test {
protected:
    /// The header line that a signature over these texts makes.
    std::string authorization(const std::string& method, const std::string& digest, const std::string& type,
                              const std::string& amzHeadersAndResource) {
        const P<CNetRequest> request = new CNetRequest();
        const std::size_t resource = amzHeadersAndResource.rfind('\n') + 1;
        request->setURL(String("https://h" + amzHeadersAndResource.substr(resource)));
        request->setHTTPMethod(String(method));
        const P<CNetHeaders> headers = new CNetHeaders();
        headers->add("Date", "Sun, 06 Nov 1994 08:49:37 GMT");
        if (!digest.empty()) headers->add("Content-MD5", String(digest));
        if (!type.empty()) headers->add("Content-Type", String(type));
        if (resource > 0) {
            const std::size_t colon = amzHeadersAndResource.find(':');
            headers->add(String(amzHeadersAndResource.substr(0, colon)),
                         String(amzHeadersAndResource.substr(colon + 1, resource - colon - 2)));
        }
        request->setCustomHTTPHeaders(headers);
        return "Authorization: AWS " + accessKeyID + ":" + client_.getSignature(request).toUTF8();
    }

    std::string sentBody() {
        std::string body(100, '?');
        const std::size_t length = curl_.sideOf(request_->getHandle()).read(body.data(), 1, body.size());
        return body.substr(0, length);
    }
};

TEST_F(S3Preparation, OfAPutHasDigestTypeAndBody) {
    client_.preparePutObjectRequest(*request_, "bucket", "dir/file name", "hello", 5, "text/plain");
    EXPECT_EQ(request_->getURL(), "https://s3.amazonaws.com/bucket/dir%2Ffile%20name");
    EXPECT_EQ(request_->getHTTPMethod(), "PUT");
    EXPECT_THAT(getHeaderLines(*request_),
                ElementsAre(dateLine, "Content-MD5: XUFAKrxLKna5cZ2REBfFkg==", "Content-Type: text/plain",
                            authorization("PUT", "XUFAKrxLKna5cZ2REBfFkg==", "text/plain",
                                          "/bucket/dir%2Ffile%20name")));
    EXPECT_THAT(curl_.takeCalls(), Contains("INFILESIZE_LARGE = 5"));
    EXPECT_EQ(sentBody(), "hello");
}

TEST_F(S3Preparation, OfAPutReadsTheCallersBytesInPlace) {
    std::string data = "before";
    client_.preparePutObjectRequest(*request_, "b", "k", data.data(), 6, "");
    data = "after!";
    EXPECT_EQ(sentBody(), "after!");
}

TEST_F(S3Preparation, OfAPutWithoutTypeHasNone) {
    client_.preparePutObjectRequest(*request_, "b", "k", "hello", 5, "");
    EXPECT_THAT(getHeaderLines(*request_),
                ElementsAre(dateLine, "Content-MD5: XUFAKrxLKna5cZ2REBfFkg==",
                            authorization("PUT", "XUFAKrxLKna5cZ2REBfFkg==", "", "/b/k")));
}

TEST_F(S3Preparation, OfAPutOfNothingHasTheDigestOfNothing) {
    for (const void* data : {static_cast<const void*>("x"), static_cast<const void*>(nullptr)}) {
        client_.preparePutObjectRequest(*request_, "b", "k", data, 0, "");
        EXPECT_THAT(getHeaderLines(*request_), Contains("Content-MD5: 1B2M2Y8AsgTpgAmY7PhCfg=="));
        EXPECT_THAT(curl_.takeCalls(), Contains("INFILESIZE_LARGE = 0"));
        EXPECT_EQ(sentBody(), "");
    }
}

TEST_F(S3Preparation, OfPutsInARowHasEachItsOwnDigest) {
    client_.preparePutObjectRequest(*request_, "b", "k", "hello", 5, "");
    client_.preparePutObjectRequest(*request_, "b", "k", "abc", 3, "");
    EXPECT_THAT(getHeaderLines(*request_), Contains("Content-MD5: kAFQmDzST7DWlj99KOF/cg=="));
}

TEST_F(S3Preparation, OfAGetOfEverythingHasNoRange) {
    client_.prepareGetObjectRequest(*request_, "bucket", "key", 0, -1);
    EXPECT_EQ(request_->getURL(), "https://s3.amazonaws.com/bucket/key");
    EXPECT_EQ(request_->getHTTPMethod(), "");
    EXPECT_THAT(getHeaderLines(*request_),
                ElementsAre(dateLine, authorization("GET", "", "", "/bucket/key")));
}

TEST_F(S3Preparation, OfAGetHasTheRangeAskedFor) {
    struct Case {
        int64 start;
        int64 length;
        std::string range;
    };
    constexpr int64 last = std::numeric_limits<int64>::max();
    for (const Case& wanted : std::vector<Case>{{100, 50, "bytes=100-149"},
                                                {100, -1, "bytes=100-"},
                                                {0, 50, "bytes=0-49"},
                                                {0, 1, "bytes=0-0"},
                                                {last, -1, "bytes=9223372036854775807-"},
                                                {1, last - 1, "bytes=1-9223372036854775806"}}) {
        client_.prepareGetObjectRequest(*request_, "b", "k", wanted.start, wanted.length);
        EXPECT_EQ(request_->getHTTPMethod(), "");
        EXPECT_THAT(getHeaderLines(*request_),
                    ElementsAre(dateLine, "Range: " + wanted.range, authorization("GET", "", "", "/b/k")));
    }
}

TEST_F(S3Preparation, OfAGetOfNoBytesAsksForTheHeaders) {
    for (const int64 start : {0, 100, -3}) {
        client_.prepareGetObjectRequest(*request_, "b", "k", start, 0);
        EXPECT_EQ(request_->getHTTPMethod(), "HEAD");
        EXPECT_THAT(getHeaderLines(*request_), ElementsAre(dateLine, authorization("HEAD", "", "", "/b/k")));
    }
}

TEST_F(S3Preparation, OfAGetRefusesWhatIsNoRange) {
    constexpr int64 last = std::numeric_limits<int64>::max();
    const Thrown invalid = invalidArgError("CS3Client::prepareGetObjectRequest", "invalid range");
    EXPECT_EQ(thrownBy([&] { client_.prepareGetObjectRequest(*request_, "b", "k", -1, -1); }), invalid);
    EXPECT_EQ(thrownBy([&] { client_.prepareGetObjectRequest(*request_, "b", "k", -1, 5); }), invalid);
    EXPECT_EQ(thrownBy([&] { client_.prepareGetObjectRequest(*request_, "b", "k", 0, -2); }), invalid);
    EXPECT_EQ(thrownBy([&] { client_.prepareGetObjectRequest(*request_, "b", "k", 2, last - 1); }), invalid);
    EXPECT_EQ(request_->getURL(), "");
}

TEST_F(S3Preparation, OfAHeaderQueryIsAHead) {
    client_.prepareGetObjectHeadersRequest(*request_, "bucket", "key");
    EXPECT_EQ(request_->getURL(), "https://s3.amazonaws.com/bucket/key");
    EXPECT_EQ(request_->getHTTPMethod(), "HEAD");
    EXPECT_THAT(getHeaderLines(*request_),
                ElementsAre(dateLine, authorization("HEAD", "", "", "/bucket/key")));
}

TEST_F(S3Preparation, OfACopyNamesTheSource) {
    client_.prepareCopyObjectRequest(*request_, "my bucket", "old/key", "new/key");
    EXPECT_EQ(request_->getURL(), "https://s3.amazonaws.com/my%20bucket/new%2Fkey");
    EXPECT_EQ(request_->getHTTPMethod(), "PUT");
    EXPECT_THAT(
        getHeaderLines(*request_),
        ElementsAre(dateLine, "x-amz-copy-source: /my%20bucket/old%2Fkey",
                    authorization("PUT", "", "",
                                  "x-amz-copy-source:/my%20bucket/old%2Fkey\n/my%20bucket/new%2Fkey")));
    EXPECT_THAT(curl_.takeCalls(), Contains("INFILESIZE_LARGE = 0"));
    EXPECT_EQ(sentBody(), "");
}

TEST_F(S3Preparation, OfADeleteIsADelete) {
    client_.prepareDeleteObjectRequest(*request_, "bucket", "key");
    EXPECT_EQ(request_->getURL(), "https://s3.amazonaws.com/bucket/key");
    EXPECT_EQ(request_->getHTTPMethod(), "DELETE");
    EXPECT_THAT(getHeaderLines(*request_),
                ElementsAre(dateLine, authorization("DELETE", "", "", "/bucket/key")));
}

TEST_F(S3Preparation, OfAListHasTheQueryThatIsGiven) {
    const auto url = [&](const char* prefix, const char* delimiter, const char* marker, int maxKeys) {
        client_.prepareListObjectsRequest(*request_, "my bucket", prefix, delimiter, marker, maxKeys);
        EXPECT_EQ(request_->getHTTPMethod(), "");
        EXPECT_THAT(getHeaderLines(*request_),
                    ElementsAre(dateLine, authorization("GET", "", "", "/my%20bucket")));
        return request_->getURL().toUTF8();
    };
    const std::string bucket = "https://s3.amazonaws.com/my%20bucket";
    EXPECT_EQ(url("", "", "", -1), bucket);
    EXPECT_EQ(url("", "", "", 1000), bucket + "?max-keys=1000");
    EXPECT_EQ(url("", "", "", 0), bucket + "?max-keys=0");
    EXPECT_EQ(url("", "", "", -2), bucket + "?max-keys=-2");
    EXPECT_EQ(url("a/b", "", "", -1), bucket + "?prefix=a%2Fb");
    EXPECT_EQ(url("", "/", "", -1), bucket + "?delimiter=%2F");
    EXPECT_EQ(url("", "", "m n", -1), bucket + "?marker=m%20n");
    EXPECT_EQ(url("p", "d", "m", 7), bucket + "?prefix=p&marker=m&max-keys=7&delimiter=d");
    EXPECT_EQ(url("p", "d", "", -1), bucket + "?prefix=p&delimiter=d");
    EXPECT_EQ(url("&=?#+", "%", "\xf0\x9f\x98\x80", -1),
              bucket + "?prefix=%26%3D%3F%23%2B&marker=%F0%9F%98%80&delimiter=%25");
}

TEST_F(S3Preparation, GoesToTheEndpoint) {
    client_.setEndpoint("http://localhost:8080/s3");
    EXPECT_EQ(client_.getObjectURL(*request_, "b", "k"), "http://localhost:8080/s3/b/k");
    client_.prepareGetObjectHeadersRequest(*request_, "b", "k");
    EXPECT_EQ(request_->getURL(), "http://localhost:8080/s3/b/k");
    EXPECT_THAT(getHeaderLines(*request_), ElementsAre(dateLine, authorization("HEAD", "", "", "/s3/b/k")));
}

TEST_F(S3Preparation, EscapesAllOfANameButLettersDigitsAndFourMarks) {
    const String allASCII(L" !\"#$%&'()*+,-./09:;<=>?@AZ[\\]^_`az{|}~");
    EXPECT_EQ(
        client_.getObjectURL(*request_, "b", allASCII),
        "https://s3.amazonaws.com/b/%20%21%22%23%24%25%26%27%28%29%2A%2B%2C-.%2F09%3A%3B%3C%3D%3E%3F%40AZ"
        "%5B%5C%5D%5E_%60az%7B%7C%7D~");
    EXPECT_EQ(client_.getObjectURL(*request_, "gr\xc3\xbc\xc3\x9f", "\xf0\x9f\x98\x80"),
              "https://s3.amazonaws.com/gr%C3%BC%C3%9F/%F0%9F%98%80");
}

TEST_F(S3Preparation, EscapesANULInAName) {
    client_.prepareDeleteObjectRequest(*request_, "b", String(L"a\0b", 3));
    EXPECT_EQ(request_->getURL(), "https://s3.amazonaws.com/b/a%00b");
}

TEST_F(S3Preparation, BeginsWithAResetAndTheClientsSettings) {
    client_.setPrintDebugInfo(true);
    client_.setSSLVerifyPeer(false);
    curl_.takeCalls();
    const P<CNetHeaders> headers = client_.beginPrepareRequest(*request_, "https://h/b");
    const std::vector<std::string> calls = curl_.takeCalls();
    ASSERT_THAT(calls, Not(IsEmpty()));
    EXPECT_EQ(calls.front(), "reset");
    // The constructor's settings come first, and again after each reset.
    const auto url = std::find(calls.begin(), calls.end(), "URL = \"https://h/b\"");
    EXPECT_THAT(std::vector<std::string>(url, calls.end()),
                ElementsAre("URL = \"https://h/b\"", "PATH_AS_IS = 1", "FOLLOWLOCATION = 1", "POSTREDIR = 7",
                            "VERBOSE = 1", "SSL_VERIFYPEER = 0",
                            "HTTPHEADER = [\"Date: Sun, 06 Nov 1994 08:49:37 GMT\"]"));
    EXPECT_EQ(request_->getCustomHTTPHeaders().get(), headers.get());
    EXPECT_TRUE(request_->isVerboseEnabled());
}

TEST_F(S3Preparation, TellsTheTimeOfEachPreparation) {
    client_.prepareDeleteObjectRequest(*request_, "b", "k");
    setTime(CTime::fromCTime(1234567890));
    client_.prepareDeleteObjectRequest(*request_, "b", "k");
    EXPECT_EQ(getHeaderLines(*request_).at(0), "Date: Fri, 13 Feb 2009 23:31:30 GMT");
}

TEST_F(S3Preparation, LeavesNothingOfTheRequestBefore) {
    client_.preparePutObjectRequest(*request_, "b", "k", "hello", 5, "text/plain");
    request_->setUserName("user");
    client_.prepareGetObjectRequest(*request_, "b", "k", 0, -1);
    EXPECT_EQ(request_->getHTTPMethod(), "");
    EXPECT_EQ(request_->getSendDataStream(), nullptr);
    EXPECT_THAT(getHeaderLines(*request_), Not(Contains("Content-Type: text/plain")));
}

TEST_F(S3Preparation, RefusesEmptyNamesBeforeItTouchesTheRequest) {
    request_->setURL("http://as.it.was/");
    request_->setHTTPMethod("POST");
    curl_.takeCalls();
    const auto refusal = [](const std::string& method, const std::string& message) {
        return invalidArgError("CS3Client::" + method, message);
    };
    const std::string noBucket = "bucket name must not be empty";
    const std::string noObject = "object name must not be empty";
    const std::string noNames = "neither the existing nor the new object name may be empty";
    EXPECT_EQ(thrownBy([&] { client_.preparePutObjectRequest(*request_, "", "", "", 0, ""); }),
              refusal("preparePutObjectRequest", noBucket));
    EXPECT_EQ(thrownBy([&] { client_.preparePutObjectRequest(*request_, "b", "", "", 0, ""); }),
              refusal("preparePutObjectRequest", noObject));
    EXPECT_EQ(thrownBy([&] { client_.preparePutObjectRequest(*request_, "b", "k", "", -1, ""); }),
              refusal("preparePutObjectRequest", "size must not be negative"));
    EXPECT_EQ(thrownBy([&] { client_.preparePutObjectRequest(*request_, "b", "k", nullptr, 1, ""); }),
              refusal("preparePutObjectRequest", "data must not be null"));
    for (const String& type : {String("a/b\r\nX-Other: y"), String("a/b\n"), String(L"a\0b", 3)})
        EXPECT_EQ(
            thrownBy([&] { client_.preparePutObjectRequest(*request_, "b", "k", "", 0, type); }),
            refusal("preparePutObjectRequest", "content type contains a line break or a NUL character"));
    EXPECT_EQ(thrownBy([&] { client_.prepareGetObjectRequest(*request_, "", "k", 0, -1); }),
              refusal("prepareGetObjectRequest", noBucket));
    EXPECT_EQ(thrownBy([&] { client_.prepareGetObjectRequest(*request_, "b", "", 0, -1); }),
              refusal("prepareGetObjectRequest", noObject));
    EXPECT_EQ(thrownBy([&] { client_.prepareGetObjectHeadersRequest(*request_, "", "k"); }),
              refusal("prepareGetObjectHeadersRequest", noBucket));
    EXPECT_EQ(thrownBy([&] { client_.prepareGetObjectHeadersRequest(*request_, "b", ""); }),
              refusal("prepareGetObjectHeadersRequest", noObject));
    EXPECT_EQ(thrownBy([&] { client_.prepareCopyObjectRequest(*request_, "", "", ""); }),
              refusal("prepareCopyObjectRequest", noBucket));
    EXPECT_EQ(thrownBy([&] { client_.prepareCopyObjectRequest(*request_, "b", "", "n"); }),
              refusal("prepareCopyObjectRequest", noNames));
    EXPECT_EQ(thrownBy([&] { client_.prepareCopyObjectRequest(*request_, "b", "o", ""); }),
              refusal("prepareCopyObjectRequest", noNames));
    EXPECT_EQ(thrownBy([&] { client_.prepareDeleteObjectRequest(*request_, "", "k"); }),
              refusal("prepareDeleteObjectRequest", noBucket));
    EXPECT_EQ(thrownBy([&] { client_.prepareDeleteObjectRequest(*request_, "b", ""); }),
              refusal("prepareDeleteObjectRequest", noObject));
    EXPECT_EQ(thrownBy([&] { client_.prepareListObjectsRequest(*request_, "", "p", "d", "m", 1); }),
              refusal("prepareListObjectsRequest", noBucket));
    EXPECT_THAT(curl_.takeCalls(), IsEmpty());
    EXPECT_EQ(request_->getURL(), "http://as.it.was/");
    EXPECT_EQ(request_->getHTTPMethod(), "POST");
    EXPECT_EQ(request_->getCustomHTTPHeaders(), nullptr);
}

} // namespace

} // namespace vantra::test
