#include "S3Doubles.h"

#include "vantra/S3ObjectEnum.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vantra::test {

namespace {

using kel::P;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class S3ObjectEnum : public S3Test {
protected:
    S3ObjectEnum() {
        client_.addRef(); // the enumerations' references must not delete the fixture's own object
    }

    CS3ObjectEnum makeEnum(const std::string& prefix = "", const std::string& marker = "", int pageSize = 2) {
        return {&client_, request_, "bucket", kel::String(prefix), kel::String(marker), pageSize};
    }

    static std::vector<std::string> walk(CS3ObjectEnum& objects) {
        std::vector<std::string> keys;
        while (objects.next()) keys.push_back(objects.getCurrObject()->getKey().toUTF8());
        return keys;
    }

    static std::string page(const std::string& query) { return " https://s3.amazonaws.com/bucket" + query; }
};

TEST_F(S3ObjectEnum, WalksAllPages) {
    answer(
        {{200, listing({"a", "b"}, true)}, {200, listing({"c", "d"}, true)}, {200, listing({"e"}, false)}});
    CS3ObjectEnum objects = makeEnum("p/");
    EXPECT_THAT(getTransfers(), IsEmpty());
    EXPECT_EQ(objects.getCurrObject(), nullptr);
    EXPECT_THAT(walk(objects), ElementsAre("a", "b", "c", "d", "e"));
    EXPECT_THAT(getTransfers(),
                ElementsAre(page("?prefix=p%2F&max-keys=2"), page("?prefix=p%2F&marker=b&max-keys=2"),
                            page("?prefix=p%2F&marker=d&max-keys=2")));
}

TEST_F(S3ObjectEnum, FindsNothingUnderAPrefixOfNoObject) {
    answer({{200, listing({}, false)}});
    CS3ObjectEnum objects = makeEnum("none");
    EXPECT_FALSE(objects.next());
    EXPECT_FALSE(objects.next());
    EXPECT_FALSE(objects.next());
    EXPECT_THAT(getTransfers(), SizeIs(1));
}

TEST_F(S3ObjectEnum, EndsAtAnEmptyPageBehindAFullOne) {
    answer({{200, listing({"a", "b"}, true)}, {200, listing({}, false)}});
    CS3ObjectEnum objects = makeEnum();
    EXPECT_THAT(walk(objects), ElementsAre("a", "b"));
    EXPECT_FALSE(objects.next());
    EXPECT_THAT(getTransfers(), ElementsAre(page("?max-keys=2"), page("?marker=b&max-keys=2")));
}

TEST_F(S3ObjectEnum, EndsAtAnEmptyPageThatClaimsMoreToCome) {
    answer({{200, listing({}, true)}});
    CS3ObjectEnum objects = makeEnum();
    EXPECT_FALSE(objects.next());
    EXPECT_FALSE(objects.next());
    EXPECT_THAT(getTransfers(), SizeIs(1));
}

TEST_F(S3ObjectEnum, SendsTheStartMarkerOnce) {
    answer({{200, listing({"n", "o"}, true)}, {200, listing({"p"}, false)}});
    CS3ObjectEnum objects = makeEnum("", "m m");
    EXPECT_THAT(walk(objects), ElementsAre("n", "o", "p"));
    EXPECT_THAT(getTransfers(), ElementsAre(page("?marker=m%20m&max-keys=2"), page("?marker=o&max-keys=2")));
}

TEST_F(S3ObjectEnum, LeavesThePageSizeToTheServiceOnRequest) {
    answer({{200, listing({"a"}, false)}});
    CS3ObjectEnum objects = makeEnum("", "", -1);
    EXPECT_THAT(walk(objects), ElementsAre("a"));
    EXPECT_THAT(getTransfers(), ElementsAre(page("")));
}

TEST_F(S3ObjectEnum, GoesOnFromTheLastKeyWhateverTheNextMarker) {
    const std::string first = "<ListBucketResult><IsTruncated>true</IsTruncated><NextMarker>zzz</NextMarker>"
                              "<Contents><Key>a b</Key></Contents></ListBucketResult>";
    answer({{200, first}, {200, listing({}, false)}});
    CS3ObjectEnum objects = makeEnum();
    EXPECT_THAT(walk(objects), ElementsAre("a b"));
    EXPECT_THAT(getTransfers(), ElementsAre(page("?max-keys=2"), page("?marker=a%20b&max-keys=2")));
}

TEST_F(S3ObjectEnum, AsksForTheSamePageAgainAfterAFailure) {
    answer({{200, listing({"a", "b"}, true)},
            {403, errorDocument("AccessDenied")},
            {200, "no xml"},
            {200, listing({"c"}, false)}});
    CS3ObjectEnum objects = makeEnum();
    EXPECT_TRUE(objects.next());
    EXPECT_TRUE(objects.next());
    EXPECT_EQ(thrownBy([&] { objects.next(); }).details, "AccessDenied");
    EXPECT_EQ(thrownBy([&] { objects.next(); }),
              plainError("Error parsing Amazon S3 'list objects' result: invalid XML."));
    EXPECT_TRUE(objects.next());
    EXPECT_EQ(objects.getCurrObject()->getKey(), "c");
    EXPECT_FALSE(objects.next());
    EXPECT_THAT(getTransfers(), ElementsAre(page("?max-keys=2"), page("?marker=b&max-keys=2"),
                                            page("?marker=b&max-keys=2"), page("?marker=b&max-keys=2")));
}

TEST_F(S3ObjectEnum, AsksForTheFirstPageAgainAfterAFailure) {
    answer({{404, errorDocument("NoSuchBucket")}, {200, listing({"a"}, false)}});
    CS3ObjectEnum objects = makeEnum("", "m");
    EXPECT_EQ(thrownBy([&] { objects.next(); }).details, "NoSuchBucket");
    EXPECT_THAT(walk(objects), ElementsAre("a"));
    EXPECT_THAT(getTransfers(), ElementsAre(page("?marker=m&max-keys=2"), page("?marker=m&max-keys=2")));
}

TEST_F(S3ObjectEnum, IsCopiedWithItsPlace) {
    answer({{200, listing({"a", "b"}, true)}, {200, listing({"c"}, false)}});
    CS3ObjectEnum objects = makeEnum();
    EXPECT_TRUE(objects.next());
    CS3ObjectEnum copy(objects);
    EXPECT_THAT(walk(objects), ElementsAre("b", "c"));
    EXPECT_EQ(copy.getCurrObject()->getKey(), "a");
    EXPECT_TRUE(copy.next());
    EXPECT_EQ(copy.getCurrObject()->getKey(), "b");
    objects = copy;
    EXPECT_EQ(objects.getCurrObject()->getKey(), "b");
    const CS3ObjectEnum moved(std::move(copy));
    EXPECT_EQ(moved.getCurrObject()->getKey(), "b");
}

TEST_F(S3ObjectEnum, KeepsItsClient) {
    answer({{200, listing({"a"}, true)}, {200, listing({"b"}, false)}});
    P<CS3Client> client = new CS3Client("id", "secret", true);
    CS3ObjectEnum objects(client, request_, "bucket", "", "", 1);
    client = nullptr;
    EXPECT_THAT(walk(objects), ElementsAre("a", "b"));
}

TEST_F(S3ObjectEnum, GivesObjectsThatOutliveIt) {
    answer({{200, listing({"a"}, false)}});
    P<CS3ListObjectsElement> object;
    {
        CS3ObjectEnum objects = makeEnum();
        EXPECT_TRUE(objects.next());
        object = objects.getCurrObject();
    }
    EXPECT_EQ(object->getKey(), "a");
}

TEST_F(S3ObjectEnum, NeedsAClientAndARequest) {
    EXPECT_EQ(thrownBy([&] { CS3ObjectEnum objects(nullptr, request_, "b", "", "", 1); }),
              invalidArgError("CS3ObjectEnum::CS3ObjectEnum", "client must not be null"));
    EXPECT_EQ(thrownBy([&] { CS3ObjectEnum objects(&client_, nullptr, "b", "", "", 1); }),
              invalidArgError("CS3ObjectEnum::CS3ObjectEnum", "request must not be null"));
}

} // namespace

} // namespace vantra::test
