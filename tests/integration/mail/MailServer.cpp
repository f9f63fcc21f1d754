#include "MailServer.h"

#include <stdexcept>

using kel::P;
using kel::String;
using testsupport::SmtpServer;
using vantra::CCURLError;
using vantra::CSMTPClient;
using vantra::CSMTPParams;

SmtpServer& mailServer() {
    static SmtpServer server;
    return server;
}

namespace {

int portFor(CSMTPParams::ConnectType type) {
    const auto& ports = mailServer().ports();
    switch (type) {
    case CSMTPParams::ConnectTypeSSL:
        return ports.tls;
    case CSMTPParams::ConnectTypeStartTLS:
        return ports.starttls;
    default:
        return ports.plain;
    }
}

} // namespace

CSMTPParams makeParams(CSMTPParams::ConnectType type, bool withLogin) {
    return {"127.0.0.1", portFor(type), type, String(withLogin ? SmtpServer::userName() : ""),
            String(withLogin ? SmtpServer::password() : "")};
}

P<CSMTPClient> makeClient(CSMTPParams::ConnectType type, bool withLogin) {
    return new CSMTPClient(makeParams(type, withLogin));
}

P<kel::TBuffer<unsigned char>> makeBuffer(std::string_view bytes) {
    return new kel::TBuffer<unsigned char>(reinterpret_cast<const unsigned char*>(bytes.data()),
                                           bytes.size());
}

void sendMail(CSMTPClient& client, std::string_view message) {
    client.sendMail("jane@example.org", {"joe@example.org"}, *makeBuffer(message));
}

CCURLError errorOf(const std::function<void()>& function) {
    try {
        function();
    } catch (const CCURLError& error) {
        return error;
    }
    throw std::logic_error("nothing failed");
}
