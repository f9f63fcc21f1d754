#include "support/EnvironmentVariable.h"

#include <gtest/gtest.h>

namespace {

/// libcurl would send the requests of the tests to the proxy of whoever runs them.
class EnvironmentWithoutProxy : public testing::Environment {
public:
    void SetUp() override {
        for (const char* variable : {"http_proxy", "HTTP_PROXY", "https_proxy", "HTTPS_PROXY", "ftp_proxy",
                                     "FTP_PROXY", "all_proxy", "ALL_PROXY", "no_proxy", "NO_PROXY"}) {
            testsupport::removeEnvironmentVariable(variable);
        }
    }
};

const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new EnvironmentWithoutProxy());

} // namespace
