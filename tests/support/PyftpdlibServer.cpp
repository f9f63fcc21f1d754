#include "support/PyftpdlibServer.h"

namespace testsupport {

namespace {

/// Arguments: the folder, the user, the password, the file with certificate and key, and the three ports.
constexpr const char* program = R"python(
import os
import sys

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler, TLS_DTPHandler, TLS_FTPHandler
from pyftpdlib.ioloop import IOLoop
from pyftpdlib.servers import FTPServer

folder, user, password, certificate = sys.argv[1:5]
ports = [int(port) for port in sys.argv[5:8]]


class Data(TLS_DTPHandler):
    """Lets a client begin with TLS on the data connection before it has sent its command."""

    def readable(self):
        if self._ssl_requested and not self._ssl_established and not self._closed:
            return True
        return super().readable()


class Plain(FTPHandler):
    pass


class Explicit(TLS_FTPHandler):
    dtp_handler = Data
    certfile = certificate
    tls_control_required = True
    tls_data_required = True


class Implicit(Explicit):
    def handle(self):
        self.secure_connection(self.ssl_context)
        super().handle()


authorizer = DummyAuthorizer()
authorizer.add_user(user, password, folder, perm="elradfmwMT")
authorizer.override_perm(user, os.path.join(folder, "readonly"), "elr", recursive=True)
loop = IOLoop()
servers = []
for handler, port in zip((Plain, Explicit, Implicit), ports):
    handler.authorizer = authorizer
    handler.auth_failed_timeout = 0.1
    servers.append(FTPServer(("127.0.0.1", port), handler, ioloop=loop))
loop.loop()
)python";

} // namespace

PyftpdlibServer::PyftpdlibServer() { start(""); }

std::unique_ptr<ChildProcess> PyftpdlibServer::launch(const std::vector<std::uint16_t>& ports) const {
    const std::string script = workFolder().writeFile("server.py", program);
    // Debian's packages belong to Debian's interpreter, which need not be the first in $PATH; -I keeps out
    // modules from elsewhere.
    std::vector<std::string> arguments{
        "/usr/bin/python3", "-I", script, folder(), userName(), password(), certificate().combinedFile};
    for (const std::uint16_t port : ports) arguments.push_back(std::to_string(port));
    ChildOptions options;
    options.stopSignal = Signal::kill; // it has nothing to put in order
    return std::make_unique<ChildProcess>(arguments, options);
}

} // namespace testsupport
