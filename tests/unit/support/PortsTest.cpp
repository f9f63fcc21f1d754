#include "support/Ports.h"
#include "support/ChildProcess.h"
#include "support/ScriptedServer.h"
#include "support/Sockets.h"
#include "support/TcpClient.h"
#include "support/Wait.h"
#include "unit/support/Curl.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <system_error>
#include <thread>

using namespace testsupport;

namespace {

std::set<std::uint16_t> asSet(const std::vector<std::uint16_t>& ports) {
    return {ports.begin(), ports.end()};
}

} // namespace

TEST(FreePort, IsNeverHandedOutTwice) {
    std::vector<std::uint16_t> fromThread;
    std::thread thread([&] { fromThread = freePorts(100); });
    std::vector<std::uint16_t> all = freePorts(100);
    thread.join();
    all.insert(all.end(), fromThread.begin(), fromThread.end());
    EXPECT_EQ(asSet(all).size(), 200U);
}

TEST(FreePort, IsNotHandedOutByAnotherProcessAtTheSameTime) {
    ChildProcess other({SUPPORT_CRASHER, "ports"});
    ASSERT_TRUE(
        waitUntil([&] { return std::ranges::count(other.output(), '\n') == 100; }, std::chrono::seconds(10)));
    std::set<std::uint16_t> theirs;
    std::istringstream lines(other.output());
    for (std::uint16_t port = 0; lines >> port;) theirs.insert(port);
    for (const std::uint16_t port : freePorts(200)) EXPECT_EQ(theirs.count(port), 0U) << port;
}

TEST(FreePort, LiesOutsideTheRangeOfOutgoingConnections) {
    std::ifstream range("/proc/sys/net/ipv4/ip_local_port_range");
    unsigned first = 0;
    unsigned last = 0;
    ASSERT_TRUE(range >> first >> last);
    // A system that gives away nearly all ports itself leaves no room outside.
    const unsigned end = first < 12000 ? 60000 : first;
    for (const std::uint16_t port : freePorts(50)) {
        EXPECT_GE(port, 10000);
        EXPECT_LT(port, end);
    }
}

TEST(FreePort, CanBeBound) {
    const std::uint16_t port = freePort();
    EXPECT_FALSE(acceptsConnections(port));
    EXPECT_TRUE(bindLoopback(port).isOpen());
}

TEST(AcceptsConnections, TellsAListeningPort) {
    ScriptedServer server([](ScriptedConnection& connection) { connection.waitForEnd(); });
    EXPECT_TRUE(acceptsConnections(server.port()));
}

TEST(RefusedPort, RefusesConnections) {
    const RefusedPort refused;
    EXPECT_FALSE(acceptsConnections(refused.port()));
    try {
        TcpClient client(refused.port());
        FAIL() << "the connection was accepted";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::connection_refused);
    }
    EXPECT_EQ(curl({"http://127.0.0.1:" + std::to_string(refused.port())}).exitStatus, 7);
}

TEST(RefusedPort, CannotBeTakenByAnybodyElse) {
    const RefusedPort refused;
    EXPECT_FALSE(bindLoopback(refused.port()).isOpen());
}

TEST(UnansweredPort, LetsAConnectionAttemptHang) {
    const UnansweredPort unanswered;
    const std::string url = "http://127.0.0.1:" + std::to_string(unanswered.port());
    const CommandResult result = curl({"--connect-timeout", "0.3", url});
    EXPECT_EQ(result.exitStatus, 28);
    EXPECT_EQ(result.standardOutput, "");
    EXPECT_FALSE(acceptsConnections(unanswered.port()));
}
