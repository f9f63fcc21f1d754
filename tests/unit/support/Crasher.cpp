// A program that starts what its argument names, prints a line about it, and dies without any cleaning up.

#include "support/ChildProcess.h"
#include "support/NginxServer.h"
#include "support/Ports.h"

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>

using namespace testsupport;

namespace {

[[noreturn]] void crash() {
    std::cout.flush();
    std::_Exit(3);
}

} // namespace

int main(int argumentCount, char** arguments) {
    const std::string what = argumentCount == 2 ? arguments[1] : "";
    if (what == "child") {
        const ChildProcess child({"sleep", "1000"});
        std::cout << child.pid() << std::endl;
        crash();
    }
    if (what == "nginx") {
        NginxServer server;
        std::cout << server.process().pid() << ' ' << server.ports().http << std::endl;
        crash();
    }
    if (what == "ports") {
        for (const std::uint16_t port : freePorts(100)) std::cout << port << '\n';
        std::cout.flush();
        // Keeps its ports until the test has taken its own and ends this program.
        while (true) std::this_thread::sleep_for(std::chrono::hours(1));
    }
    std::cerr << "usage: support_crasher child|nginx|ports\n";
    return 2;
}
