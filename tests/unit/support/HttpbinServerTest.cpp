#include "support/HttpbinServer.h"

#include "support/Ports.h"
#include "unit/support/Curl.h"
#include "unit/support/Processes.h"

#include <gtest/gtest.h>
#include <string>

using namespace testsupport;

TEST(HttpbinServer, AsksForDigestAuthentication) {
    const HttpbinServer server;
    for (const std::string path :
         {"/digest-auth/auth/user/secret/MD5", "/digest-auth/auth/user/secret/SHA-256"}) {
        const auto status = [&](const std::string& password) {
            return curlInformation("%{http_code}",
                                   {"--digest", "--user", "user:" + password, server.url(path)});
        };
        EXPECT_EQ(status("secret"), "200") << path;
        EXPECT_EQ(status("wrong"), "401") << path;
    }
    EXPECT_EQ(curlInformation("%{http_code}", {server.url("/digest-auth/auth/user/secret")}), "401");
}

TEST(HttpbinServer, EndsWithItsWorker) {
    std::uint16_t port = 0;
    pid_t process = 0;
    {
        HttpbinServer server;
        port = server.port();
        process = server.process().pid();
        EXPECT_EQ(curlInformation("%{http_code}", {server.url("/status/418")}), "418");
    }
    EXPECT_FALSE(isProcessAlive(process));
    EXPECT_FALSE(acceptsConnections(port));
}
