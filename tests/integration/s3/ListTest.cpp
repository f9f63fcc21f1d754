#include "ObjectStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

using kel::String;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::vector<std::string>& getListedKeys() {
    static const std::vector<std::string> keys = {"a",
                                                  "a b",
                                                  "b+c",
                                                  "folder/1",
                                                  "folder/2",
                                                  "folder/sub/3",
                                                  "folder/sub/4",
                                                  "other/5",
                                                  "\xc3\xa9",
                                                  "\xf0\x9f\x98\x80/6"};
    return keys;
}

/// A page of a listing as it has to be.
struct Page {
    std::vector<std::string> keys;
    std::vector<std::string> prefixes;
    bool isTruncated = false;
    friend bool operator==(const Page&, const Page&) = default;
    friend std::ostream& operator<<(std::ostream& stream, const Page& page) {
        for (const std::string& key : page.keys) stream << "'" << key << "' ";
        for (const std::string& prefix : page.prefixes) stream << "[" << prefix << "] ";
        return stream << (page.isTruncated ? "and more" : "");
    }
};

/// What a service lists: the keys behind the marker, or the prefixes that they have in common, in order, up
/// to the most allowed.
Page expectedPage(const std::string& prefix, const std::string& delimiter, const std::string& marker,
                  int maxKeys) {
    Page page;
    std::set<std::string> prefixes;
    int count = 0;
    for (const std::string& key : getListedKeys()) {
        if (!key.starts_with(prefix) || key <= marker) continue;
        const std::size_t end = delimiter.empty() ? std::string::npos : key.find(delimiter, prefix.size());
        const std::string entry = end == std::string::npos ? key : key.substr(0, end + delimiter.size());
        if (prefixes.contains(entry)) continue;
        if (maxKeys != -1 && count == maxKeys) {
            page.isTruncated = true;
            return page;
        }
        ++count;
        if (end == std::string::npos) {
            page.keys.push_back(entry);
        } else {
            prefixes.insert(entry);
            page.prefixes.push_back(entry);
        }
    }
    return page;
}

class S3List : public OverHTTPAndHTTPS {
protected:
    S3List() {
        static const bool isFilled = [this] {
            for (const std::string& key : getListedKeys()) put(key, key, "", "listed");
            return true;
        }();
        (void)isFilled;
    }

    Page list(const std::string& prefix, const std::string& delimiter, const std::string& marker,
              int maxKeys) const {
        const auto result = client_->listObjects(*request_, "listed", String(prefix), String(delimiter),
                                                 String(marker), maxKeys);
        Page page;
        page.keys = getKeys(*result);
        for (const String& common : result->getCommonPrefixes()) page.prefixes.push_back(common.toUTF8());
        page.isTruncated = result->isTruncated();
        return page;
    }
};

INSTANTIATE_TEST_SUITE_P(Store, S3List, testing::Values("HTTP", "HTTPS"),
                         [](const auto& scheme) { return scheme.param; });

TEST_P(S3List, HasWhatEveryCombinationOfItsArgumentsAsksFor) {
    for (const char* prefix : {"", "folder/", "folder/s", "a", "none", "\xf0\x9f\x98\x80"}) {
        for (const char* delimiter : {"", "/"}) {
            for (const char* marker : {"", "a b", "folder/1", "folder/sub/3"}) {
                for (const int maxKeys : {-1, 1, 2, 1000}) {
                    EXPECT_EQ(list(prefix, delimiter, marker, maxKeys),
                              expectedPage(prefix, delimiter, marker, maxKeys))
                        << "prefix '" << prefix << "' delimiter '" << delimiter << "' marker '" << marker
                        << "' max keys " << maxKeys;
                }
            }
        }
    }
}

TEST_P(S3List, HasSizeTimeAndETagOfEachObject) {
    const auto page = client_->listObjects(*request_, "listed", "folder/1", "", "", -1);
    ASSERT_EQ(page->getObjects().size(), 1U);
    const vantra::CS3ListObjectsElement& object = *page->getObjects()[0];
    EXPECT_EQ(object.getSize(), 8);
    EXPECT_EQ(object.getETag(), client_->getObjectHeaders(*request_, "listed", "folder/1").lookup("etag"));
    EXPECT_THAT(object.getLastModified().toUTF8(), testing::MatchesRegex("20..-..-..T..:..:..\\....Z"));
}

TEST_P(S3List, OfADelimiterSaysWhereTheNextPageStarts) {
    const auto page = client_->listObjects(*request_, "listed", "", "/", "", 4);
    EXPECT_TRUE(page->isTruncated());
    EXPECT_EQ(page->getDelimiteredNextMarker(), "folder/");
}

TEST_P(S3List, OfAnEmptyBucketIsEmpty) {
    const auto page = client_->listObjects(*request_, "empty", "", "", "", -1);
    EXPECT_THAT(getKeys(*page), IsEmpty());
    EXPECT_FALSE(page->isTruncated());
}

} // namespace
