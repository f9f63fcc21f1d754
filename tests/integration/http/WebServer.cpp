#include "WebServer.h"

using kel::P;
using kel::String;
using vantra::CCURLError;
using vantra::CNetRequest;

testsupport::NginxServer& webServer() {
    static testsupport::NginxServer server;
    return server;
}

P<CNetRequest> makeRequest(const std::string& url) {
    P<CNetRequest> request = new CNetRequest();
    request->setURL(String::fromUTF8(url));
    request->setProxy("");
    request->setRootCertBundlePath(String::fromUTF8(webServer().caFile()));
    return request;
}

std::string getBody(const CNetRequest& request) {
    const auto buffer = request.getDefaultReceiveBuffer();
    return {reinterpret_cast<const char*>(buffer->getData()), buffer->getUsed()};
}

std::string performForBody(CNetRequest& request) {
    request.perform();
    return getBody(request);
}

CCURLError performForError(CNetRequest& request) {
    try {
        request.perform();
    } catch (const CCURLError& error) {
        return error;
    }
    throw std::logic_error("the transfer succeeded");
}

std::string OverHTTPAndHTTPS::url(std::string_view path) {
    return GetParam() == std::string_view("HTTPS") ? webServer().httpsUrl(path) : webServer().url(path);
}
