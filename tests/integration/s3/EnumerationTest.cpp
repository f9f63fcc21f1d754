#include "ObjectStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

using kel::String;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr int manyObjects = 2500;

std::string makeKey(int number) {
    const std::string digits = std::to_string(number);
    return "many/" + std::string(4 - digits.size(), '0') + digits;
}

/// Fills the bucket, by several clients side by side.
void putMany() {
    constexpr int clientCount = 4;
    std::vector<std::thread> threads;
    for (int part = 0; part < clientCount; ++part) {
        threads.emplace_back([part] {
            const auto client = makeClient(objectStore().url());
            const kel::P<vantra::CNetRequest> request = new vantra::CNetRequest();
            for (int number = part; number < manyObjects; number += clientCount)
                client->putObject(*request, "many", String(makeKey(number)), "x", 1, "");
        });
    }
    for (std::thread& thread : threads) thread.join();
}

class S3Enumeration : public ObjectStoreTest {
protected:
    static void SetUpTestSuite() { putMany(); }

    std::vector<std::string> walk(const std::string& prefix, const std::string& marker, int pageSize) const {
        vantra::CS3ObjectEnum objects(client_, request_, "many", String(prefix), String(marker), pageSize);
        std::vector<std::string> keys;
        while (objects.next()) keys.push_back(objects.getCurrObject()->getKey().toUTF8());
        EXPECT_FALSE(objects.next());
        return keys;
    }

    static std::vector<std::string> allKeys(int first = 0) {
        std::vector<std::string> keys;
        for (int number = first; number < manyObjects; ++number) keys.push_back(makeKey(number));
        return keys;
    }
};

TEST_F(S3Enumeration, FindsAllObjectsInLargePages) { EXPECT_EQ(walk("", "", 1000), allKeys()); }

TEST_F(S3Enumeration, FindsAllObjectsInSmallPages) { EXPECT_EQ(walk("many/", "", 7), allKeys()); }

TEST_F(S3Enumeration, FindsAllObjectsOneByOne) { EXPECT_EQ(walk("many/", "", 1), allKeys()); }

TEST_F(S3Enumeration, FindsAllObjectsInPagesOfTheServicesSize) { EXPECT_EQ(walk("", "", -1), allKeys()); }

TEST_F(S3Enumeration, StartsBehindItsMarker) { EXPECT_EQ(walk("", makeKey(1499), 1000), allKeys(1500)); }

TEST_F(S3Enumeration, FindsWhatThePrefixSays) {
    EXPECT_THAT(walk("many/000", "", 4),
                ElementsAre("many/0000", "many/0001", "many/0002", "many/0003", "many/0004", "many/0005",
                            "many/0006", "many/0007", "many/0008", "many/0009"));
    EXPECT_THAT(walk("few/", "", 1000), IsEmpty());
}

} // namespace
