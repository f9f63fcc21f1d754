/// What the tests of s3_backup share.
#pragma once

#include "support/Environment.h"
#include "support/TempDir.h"

#include <string>

/// The settings by which the program finds an object store, started for the first test that asks for it. It
/// has the buckets "bucket", "names" and "empty".
testsupport::Environment backupEnvironment();

/// Writes each object of a bucket to a file of its name in a folder.
void downloadBucket(const std::string& bucket, const testsupport::TempDir& folder);
