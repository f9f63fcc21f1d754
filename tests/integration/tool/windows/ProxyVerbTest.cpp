// The proxy of the machine's settings, which Wine takes from the environment as long as nobody has set
// another.
#include "Tool.h"

#include "support/TinyproxyServer.h"

#include <gtest/gtest.h>

using namespace testsupport;
using namespace tooltest;

namespace {

Outcome runOnMachineWithProxy(const std::string& proxy, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), proxy);
    return runScript("export http_proxy=$1; shift; \"$TOOL\" \"$@\"", arguments);
}

} // namespace

TEST(ToolProxyVerb, TellsWhatTheSettingsSay) {
    const auto run = [](const std::vector<std::string>& arguments) {
        return runOnMachineWithProxy("http://a.example:3128", arguments);
    };
    EXPECT_EQ(run({"proxy"}), succeeded("ftp=a.example:3128\nhttp=a.example:3128\nhttps=a.example:3128\n"));
    EXPECT_EQ(run({"proxy", "http://example.org/path"}), succeeded("a.example:3128\n"));
    EXPECT_EQ(run({"proxy", "https://example.org/path"}), succeeded("a.example:3128\n"));
}

TEST(ToolProxyVerb, SaysNoneWhereThereIsNone) {
    EXPECT_EQ(runTool({"proxy"}), succeeded("none\n"));
    EXPECT_EQ(runTool({"proxy", "http://example.org/"}), succeeded("none\n"));
}

/// For https, to which http_proxy alone means nothing.
TEST(ToolProxy, SystemIsWhatTheSettingsSay) {
    NginxServer& server = webServer();
    const std::string url = server.httpsUrl("/hello.txt");
    const TinyproxyServer proxy;
    const auto getWith = [&](const std::string& source) {
        return runOnMachineWithProxy(proxy.url(),
                                     {"get", "--proxy", source, "--cacert", server.caFile(), url});
    };
    EXPECT_EQ(getWith("none"), succeeded(NginxServer::helloContent()));
    const std::size_t length = proxy.log().size();
    EXPECT_EQ(getWith("system"), succeeded(NginxServer::helloContent()));
    EXPECT_TRUE(proxy.waitForLog("CONNECT localhost:"));
    EXPECT_GT(proxy.log().size(), length);
}
