#include "Document.h"
#include "Example.h"

#include "support/TempDir.h"
#include "support/TinyproxyServer.h"

#include <gtest/gtest.h>

using namespace testsupport;

TEST(ChooseProxy, FollowsTheDesktopsSettings) {
    const TinyproxyServer proxy;
    const std::string address = "127.0.0.1:" + std::to_string(proxy.port());
    const std::string url = webServer().url("/hello.txt");
    const TempDir folder;
    const testsupport::Environment desktop{{"GSETTINGS_BACKEND", "keyfile"},
                                           {"XDG_CONFIG_HOME", folder.path()},
                                           {"GSETTINGS_SCHEMA_DIR", std::nullopt},
                                           {"XDG_DATA_DIRS", std::nullopt}};
    const std::string port = std::to_string(proxy.port());
    folder.writeFile("glib-2.0/settings/keyfile",
                     "[system/proxy]\nmode='manual'\nignore-hosts=['localhost']\n[system/proxy/http]\n"
                     "host='127.0.0.1'\nport=" +
                         port + "\n");
    const Outcome through = runExample("choose_proxy", {url}, desktop);
    EXPECT_EQ(through, (Outcome{0, "through " + address + ": HTTP/1.1 200 OK\n", ""}));
    EXPECT_EQ(withoutRunDetails(through.output),
              withoutRunDetails(documentedOutput("docs/proxy.md", "choose_proxy")));
    EXPECT_TRUE(proxy.waitForLog("GET " + url));
    folder.writeFile("glib-2.0/settings/keyfile", "[system/proxy]\nmode='none'\n");
    EXPECT_EQ(runExample("choose_proxy", {url}, desktop), (Outcome{0, "directly: HTTP/1.1 200 OK\n", ""}));
}
