#include "Backup.h"

#include "support/Command.h"
#include "support/S3Server.h"

#include <gtest/gtest.h>

using namespace testsupport;

namespace {

S3Server& store() {
    static S3Server server({"bucket", "names", "empty"});
    return server;
}

/// Reads a bucket over the store's own interface, which is none of S3.
constexpr const char* readBucket = R"(
import os, sys, urllib.parse, urllib.request
base, bucket, folder = sys.argv[1:]
opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
login = urllib.request.Request(base + "auth/v1.0", headers={"X-Auth-User": "test:tester", "X-Auth-Key": "testing"})
answer = opener.open(login)
token, url = answer.headers["X-Auth-Token"], answer.headers["X-Storage-Url"] + "/" + bucket
def get(path):
    return opener.open(urllib.request.Request(url + path, headers={"X-Auth-Token": token})).read()
for name in get("?limit=1000").decode().splitlines():
    path = os.path.join(folder, name)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as file:
        file.write(get("/" + urllib.parse.quote(name)))
)";

} // namespace

Environment backupEnvironment() {
    return {{"AWS_ACCESS_KEY_ID", S3Server::accessKey()},
            {"AWS_SECRET_ACCESS_KEY", S3Server::secretKey()},
            {"AWS_ENDPOINT_URL", store().url()}};
}

void downloadBucket(const std::string& bucket, const TempDir& folder) {
    const CommandResult result = runCommand(
        {"/usr/bin/python3", "-I", "-X", "utf8", "-c", readBucket, store().url(), bucket, folder.path()});
    ASSERT_EQ(result.exitStatus, 0) << result.standardError;
}
