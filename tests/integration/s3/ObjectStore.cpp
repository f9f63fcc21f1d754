#include "ObjectStore.h"

using kel::CError;
using kel::int64;
using kel::P;
using kel::String;
using testsupport::NginxOptions;
using testsupport::NginxServer;
using testsupport::S3Server;
using vantra::CNetRequest;
using vantra::CS3Client;
using vantra::CS3Error;

S3Server& objectStore() {
    static S3Server server({"bucket", "listed", "many", "empty"});
    return server;
}

NginxServer& tlsServer() {
    static NginxServer server([] {
        NginxOptions options;
        options.reverseProxies.emplace_back().upstreamPort = objectStore().port();
        return options;
    }());
    return server;
}

std::string tlsEndpoint() { return NginxServer::httpsUrl(tlsServer().ports().reverseProxies.at(0)); }

P<CS3Client> makeClient(const std::string& endpoint, const std::string& accessKey,
                        const std::string& secretKey) {
    P<CS3Client> client = new CS3Client(String(accessKey), String(secretKey), true);
    client->setEndpoint(String(endpoint));
    client->setSSLVerifyPeer(false);
    client->setMaxRetries(3);
    return client;
}

std::string getBody(const CNetRequest& request) {
    const auto buffer = request.getDefaultReceiveBuffer();
    return {reinterpret_cast<const char*>(buffer->getData()), buffer->getUsed()};
}

std::vector<std::string> getKeys(const vantra::CS3ListObjectsResult& page) {
    std::vector<std::string> keys;
    for (const auto& object : page.getObjects()) keys.push_back(object->getKey().toUTF8());
    return keys;
}

Refusal refusalOf(const std::function<void()>& function) {
    try {
        function();
    } catch (const CS3Error& error) {
        return {error.getS3Code().toUTF8(), error.getMessage().toUTF8(), error.getCode()};
    }
    return {};
}

int64 transferErrorOf(const std::function<void()>& function) {
    try {
        function();
    } catch (const vantra::CCURLError& error) {
        return error.getCode();
    }
    return -1;
}

std::string messageOf(const std::function<void()>& function) {
    try {
        function();
    } catch (const CError& error) {
        return error.getMessage().toUTF8();
    }
    return "";
}

void ObjectStoreTest::put(const std::string& key, const std::string& content, const std::string& type,
                          const std::string& bucket) const {
    client_->putObject(*request_, String(bucket), String(key), content.data(),
                       static_cast<int>(content.size()), String(type));
}

std::string ObjectStoreTest::get(const std::string& key, int64 start, int64 length) const {
    client_->getObject(*request_, "bucket", String(key), start, length);
    return getBody(*request_);
}
