/// @file ObjectStore.h
/// The object store that the tests of this program share, clients of it, and what they all do.
#pragma once

#include <vantra/vantra.h>

#include "support/NginxServer.h"
#include "support/S3Server.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// Started for the first test that asks for it, stopped at the end of the program. It has the buckets
/// "bucket", "listed", "many" and "empty".
testsupport::S3Server& objectStore();

/// A web server that offers the store over HTTPS.
testsupport::NginxServer& tlsServer();

/// The store's URL over HTTPS, for the host of the server's certificate.
std::string tlsEndpoint();

/// A client of the store. It does not ask who vouches for the certificate.
kel::P<vantra::CS3Client> makeClient(const std::string& endpoint,
                                     const std::string& accessKey = testsupport::S3Server::accessKey(),
                                     const std::string& secretKey = testsupport::S3Server::secretKey());

/// The body of the latest transfer.
std::string getBody(const vantra::CNetRequest& request);

/// The keys of a page.
std::vector<std::string> getKeys(const vantra::CS3ListObjectsResult& page);

/// The error of the service that a function throws; the code is "" when it throws none.
struct Refusal {
    std::string code;
    std::string message;
    kel::int64 status = -1;
};
Refusal refusalOf(const std::function<void()>& function);

/// The libcurl code of the CCURLError that a function throws; -1 when it throws none.
kel::int64 transferErrorOf(const std::function<void()>& function);

/// The message of the CError that a function throws; empty when it throws none.
std::string messageOf(const std::function<void()>& function);

/// Tests with a client of their own.
class ObjectStoreTest : public testing::Test {
protected:
    explicit ObjectStoreTest(const std::string& endpoint = objectStore().url())
        : client_(makeClient(endpoint)) {}

    void put(const std::string& key, const std::string& content, const std::string& type = "",
             const std::string& bucket = "bucket") const;
    [[nodiscard]] std::string get(const std::string& key, kel::int64 start = 0, kel::int64 length = -1) const;

    kel::P<vantra::CS3Client> client_;
    kel::P<vantra::CNetRequest> request_ = new vantra::CNetRequest();
};

/// Tests that run once over HTTP and once over HTTPS.
class OverHTTPAndHTTPS : public ObjectStoreTest, public testing::WithParamInterface<const char*> {
protected:
    OverHTTPAndHTTPS()
        : ObjectStoreTest(GetParam() == std::string_view("HTTPS") ? tlsEndpoint() : objectStore().url()) {}
};
