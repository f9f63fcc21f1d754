#include "Tool.h"

#include "support/Ports.h"
#include "support/TempDir.h"
#include "support/TinyproxyServer.h"

#include <gmock/gmock.h>

using namespace testsupport;
using namespace tooltest;

namespace {

/// A user's desktop with proxy settings.
class Desktop {
public:
    explicit Desktop(const std::string& keyFile) { folder_.writeFile("glib-2.0/settings/keyfile", keyFile); }

    Outcome run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), folder_.path());
        return runScript(
            "export GSETTINGS_BACKEND=keyfile XDG_CONFIG_HOME=$1; shift; unset GSETTINGS_SCHEMA_DIR "
            "XDG_DATA_DIRS; \"$TOOL\" \"$@\"",
            arguments);
    }

private:
    TempDir folder_;
};

} // namespace

TEST(ToolProxyVerb, TellsWhatTheSettingsSay) {
    const Desktop desktop("[system/proxy]\nmode='manual'\nignore-hosts=['store', '127.0.0.1']\n"
                          "[system/proxy/http]\nhost='a.example'\nport=3128\n"
                          "[system/proxy/https]\nhost='b.example'\nport=3129\n");
    EXPECT_EQ(desktop.run({"proxy"}),
              succeeded("http=a.example:3128\nhttps=b.example:3129\ndirect=127.0.0.1\ndirect=store\n"));
    EXPECT_EQ(desktop.run({"proxy", "http://example.org/path"}), succeeded("a.example:3128\n"));
    EXPECT_EQ(desktop.run({"proxy", "https://example.org/path"}), succeeded("b.example:3129\n"));
    EXPECT_EQ(desktop.run({"proxy", "ftp://example.org/path"}), succeeded("none\n"));
    EXPECT_EQ(desktop.run({"proxy", "http://user@Store/"}), succeeded("none\n"));
}

TEST(ToolProxyVerb, SaysNoneWhereThereIsNone) {
    const Desktop desktop("[system/proxy]\nmode='none'\n[system/proxy/http]\nhost='a.example'\nport=3128\n");
    EXPECT_EQ(desktop.run({"proxy"}), succeeded("none\n"));
    EXPECT_EQ(desktop.run({"proxy", "http://example.org/"}), succeeded("none\n"));
}

TEST(ToolProxy, SystemIsWhatTheSettingsSay) {
    const std::string url = webServer().url("/hello.txt");
    const TinyproxyServer proxy;
    const std::string gate = "[system/proxy/http]\nhost='127.0.0.1'\nport=" + std::to_string(proxy.port()) +
                             "\n[system/proxy]\nmode=";
    const Desktop through(gate + "'manual'\nignore-hosts=['localhost']\n");
    EXPECT_EQ(through.run({"get", "--proxy", "system", url}), succeeded(NginxServer::helloContent()));
    EXPECT_TRUE(proxy.waitForLog("GET " + url));

    const Desktop past(gate + "'manual'\nignore-hosts=['127.0.0.1']\n");
    EXPECT_EQ(past.run({"get", "--proxy", "system", url + "?past"}), succeeded(NginxServer::helloContent()));
    const Desktop without(gate + "'none'\n");
    EXPECT_EQ(without.run({"get", "--proxy", "system", url + "?without"}),
              succeeded(NginxServer::helloContent()));
    EXPECT_EQ(through.run({"get", "--proxy", "system", url + "?last"}),
              succeeded(NginxServer::helloContent()));
    EXPECT_TRUE(proxy.waitForLog("GET " + url + "?last"));
    EXPECT_EQ(proxy.log().find("?past"), std::string::npos) << proxy.log();
    EXPECT_EQ(proxy.log().find("?without"), std::string::npos) << proxy.log();
}
