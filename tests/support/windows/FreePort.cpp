#include "support/Ports.h"

#include "support/launcher/Launcher.h"

namespace testsupport {

/// The launcher knows which ports other test programs have, and keeps this one's for as long as it runs.
std::uint16_t freePort() {
    const Message reply = Launcher().ask({std::string(portRequest)});
    return static_cast<std::uint16_t>(numberIn(reply.at(0)));
}

} // namespace testsupport
