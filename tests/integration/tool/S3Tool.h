/// Running the verbs for object stores.
#pragma once

#include "Tool.h"

#include "support/S3Server.h"
#include "support/TempDir.h"

#include <string>
#include <vector>

namespace tooltest {

/// The object store that all tests share, with the buckets "bucket", "listed" and "paged".
testsupport::S3Server& objectStore();

/// A file with a secret key.
const std::string& secretKeyFile();
const std::string& wrongSecretKeyFile();

/// Runs "vantra s3 ARGUMENTS..." as the user to whom the buckets belong.
Outcome runS3(std::vector<std::string> arguments, std::string_view standardInput = {});

/// The same against another store.
Outcome runS3At(const std::string& endpoint, std::vector<std::string> arguments);

/// Puts an object, which must succeed.
void putObject(const std::string& url, const std::string& content);

} // namespace tooltest
