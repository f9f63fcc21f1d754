#include "ObjectStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using kel::String;

namespace {

const std::vector<std::string>& getOddKeys() {
    static const std::vector<std::string> keys = {
        "with blanks in it",
        " leading and trailing ",
        "a/b/c",
        "/leading slash",
        "trailing slash/",
        "double//slash",
        "plus+plus",
        "percent%20percent%",
        "question?mark=1&more=2",
        "hash#ampersand&equals=",
        "?acl",
        "quotes\"'<tag>\\",
        "gr\xc3\xbc\xc3\x9f dich",
        "\xe6\x97\xa5\xe6\x9c\xac\xe8\xaa\x9e",
        "\xf0\x9f\x98\x80 \xf0\x9d\x84\x9e",
        "~tilde!*'();:@$,[]",
        ".",
        "..",
        "../up",
        "./here",
    };
    return keys;
}

class S3Key : public ObjectStoreTest, public testing::WithParamInterface<std::string> {};

INSTANTIATE_TEST_SUITE_P(Store, S3Key, testing::ValuesIn(getOddKeys()),
                         [](const auto& key) { return "Number" + std::to_string(key.index); });

TEST_P(S3Key, NamesOneObjectInEveryOperation) {
    const String key(GetParam());
    const String copy = "copy of " + key;
    put(GetParam(), "content of " + GetParam());
    EXPECT_EQ(get(GetParam()), "content of " + GetParam());
    EXPECT_EQ(get(GetParam(), 8, 2), "of");
    EXPECT_TRUE(client_->objectExists(*request_, "bucket", key));
    client_->copyObject(*request_, "bucket", key, copy);
    EXPECT_EQ(get(copy.toUTF8()), "content of " + GetParam());
    const auto page = client_->listObjects(*request_, "bucket", key, "", "", 1);
    EXPECT_THAT(getKeys(*page), testing::ElementsAre(GetParam()));
    client_->deleteObject(*request_, "bucket", copy);
    client_->deleteObject(*request_, "bucket", key);
    EXPECT_FALSE(client_->objectExists(*request_, "bucket", key));
}

} // namespace
