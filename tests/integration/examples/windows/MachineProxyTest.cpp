#include "Document.h"
#include "Example.h"

#include "support/TinyproxyServer.h"

#include <gtest/gtest.h>

using namespace testsupport;

TEST(ChooseProxy, FollowsTheMachinesSettings) {
    const TinyproxyServer proxy;
    const std::string address = "127.0.0.1:" + std::to_string(proxy.port());
    const std::string url = webServer().url("/hello.txt");
    // Under Wine the machine's proxy is the one that the environment names.
    const Outcome through = runExample("choose_proxy", {url}, {{"http_proxy", "http://" + address}});
    EXPECT_EQ(through, (Outcome{0, "through " + address + ": HTTP/1.1 200 OK\n", ""}));
    EXPECT_EQ(withoutRunDetails(through.output),
              withoutRunDetails(documentedOutput("docs/proxy.md", "choose_proxy")));
    EXPECT_TRUE(proxy.waitForLog("GET " + url));
    EXPECT_EQ(runExample("choose_proxy", {url}), (Outcome{0, "directly: HTTP/1.1 200 OK\n", ""}));
}
