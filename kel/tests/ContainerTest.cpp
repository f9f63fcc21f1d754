#include "kel/Array.h"
#include "kel/List.h"
#include "kel/Map.h"
#include "kel/P.h"
#include "kel/String.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using kel::P;
using kel::String;
using kel::TArray;
using kel::TList;
using kel::TMap;

template <class Container>
auto toVector(const Container& container) {
    return std::vector<typename Container::value_type>(container.begin(), container.end());
}

using IntMap = TMap<String, int>;
using Entries = std::vector<std::pair<String, int>>;

Entries toEntries(const IntMap& map) { return {map.begin(), map.end()}; }

TEST(Array, IsEmptyAtFirst) {
    const TArray<int> array;
    EXPECT_TRUE(array.empty());
    EXPECT_EQ(array.size(), 0u);
    EXPECT_EQ(array.begin(), array.end());
}

TEST(Array, AppendsAndRemovesAtTheEnd) {
    TArray<int> array;
    array.reserve(3);
    for (const int item : {1, 2, 3}) array.push_back(item);
    EXPECT_EQ(toVector(array), (std::vector{1, 2, 3}));
    array.pop_back();
    EXPECT_EQ(toVector(array), (std::vector{1, 2}));
    array.clear();
    EXPECT_TRUE(array.empty());
}

TEST(Array, GivesAccessToItsItems) {
    TArray<String> array{"a", "b", "c"};
    array[1] = "x";
    array.front() += "1";
    array.back() += "3";
    const TArray<String>& constant = array;
    EXPECT_EQ(constant[0], "a1");
    EXPECT_EQ(constant.at(1), "x");
    EXPECT_EQ(constant.front(), "a1");
    EXPECT_EQ(constant.back(), "c3");
    EXPECT_THROW(static_cast<void>(constant.at(3)), std::out_of_range);
}

TEST(Array, ErasesOneItem) {
    TArray<int> array{1, 2, 3, 4};
    const auto next = array.erase(array.begin() + 1);
    EXPECT_EQ(*next, 3);
    EXPECT_EQ(toVector(array), (std::vector{1, 3, 4}));
}

TEST(Array, CanBeWalkedAndChanged) {
    TArray<int> array{1, 2, 3};
    for (int& item : array) item *= 10;
    EXPECT_EQ(toVector(array), (std::vector{10, 20, 30}));
}

TEST(Array, ComparesItemByItem) {
    EXPECT_TRUE((TArray<int>{1, 2} == TArray<int>{1, 2}));
    EXPECT_FALSE((TArray<int>{1, 2} == TArray<int>{1, 3}));
    EXPECT_FALSE((TArray<int>{1, 2} == TArray<int>{1}));
}

TEST(Array, CopiesAndSwaps) {
    TArray<int> first{1, 2};
    TArray<int> second(first);
    second.push_back(3);
    EXPECT_EQ(toVector(first), (std::vector{1, 2}));
    first.swap(second);
    EXPECT_EQ(toVector(first), (std::vector{1, 2, 3}));
    EXPECT_EQ(toVector(second), (std::vector{1, 2}));
    second = first;
    EXPECT_EQ(toVector(second), (std::vector{1, 2, 3}));
}

TEST(Array, TakesItemsThatCanOnlyBeMoved) {
    TArray<std::unique_ptr<int>> array;
    array.push_back(std::make_unique<int>(5));
    EXPECT_EQ(*array.front(), 5);
}

TEST(Array, HoldsReferencesAndCanBeShared) {
    const P<TArray<P<TArray<int>>>> outer = new TArray<P<TArray<int>>>();
    const P<TArray<int>> inner = new TArray<int>{1};
    outer->push_back(inner);
    inner->push_back(2);
    const P<TArray<P<TArray<int>>>> sameOuter = outer;
    EXPECT_EQ(toVector(*sameOuter->front()), (std::vector{1, 2}));
}

TEST(List, IsEmptyAtFirst) {
    const TList<int> list;
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(list.size(), 0u);
    EXPECT_EQ(list.begin(), list.end());
}

TEST(List, AddsAndRemovesAtBothEnds) {
    TList<int> list{2};
    list.push_back(3);
    list.push_front(1);
    EXPECT_EQ(toVector(list), (std::vector{1, 2, 3}));
    EXPECT_EQ(list.size(), 3u);
    list.pop_front();
    EXPECT_EQ(toVector(list), (std::vector{2, 3}));
    list.pop_back();
    EXPECT_EQ(toVector(list), (std::vector{2}));
    list.clear();
    EXPECT_TRUE(list.empty());
}

TEST(List, GivesAccessToItsEnds) {
    TList<int> list{1, 2, 3};
    list.front() = 10;
    list.back() = 30;
    const TList<int>& constant = list;
    EXPECT_EQ(constant.front(), 10);
    EXPECT_EQ(constant.back(), 30);
}

TEST(List, KeepsItemsWhereTheyAreWhileOthersComeAndGo) {
    TList<int> list{1, 2, 3};
    const int* const second = &*std::next(list.begin());
    list.push_front(0);
    for (int i = 0; i < 100; ++i) list.push_back(i);
    list.erase(list.begin());
    list.erase(list.begin());
    EXPECT_EQ(&list.front(), second);
    EXPECT_EQ(*second, 2);
}

TEST(List, ErasesOneItemAndGoesOnBehindIt) {
    TList<int> list{1, 2, 3, 4, 5, 6};
    for (auto at = list.begin(); at != list.end();) {
        if (*at % 2 == 0)
            at = list.erase(at);
        else
            ++at;
    }
    EXPECT_EQ(toVector(list), (std::vector{1, 3, 5}));
}

TEST(List, CopiesAndSwaps) {
    TList<int> first{1, 2};
    TList<int> second(first);
    second.push_back(3);
    first.swap(second);
    EXPECT_EQ(toVector(first), (std::vector{1, 2, 3}));
    EXPECT_EQ(toVector(second), (std::vector{1, 2}));
}

TEST(Map, IsEmptyAtFirst) {
    const IntMap map;
    EXPECT_TRUE(map.empty());
    EXPECT_EQ(map.size(), 0u);
    EXPECT_EQ(map.begin(), map.end());
}

TEST(Map, IsOrderedByItsKeys) {
    const IntMap map{{"b", 2}, {"a", 1}, {"B", 3}, {"", 0}, {"ab", 4}};
    EXPECT_EQ(toEntries(map), (Entries{{"", 0}, {"B", 3}, {"a", 1}, {"ab", 4}, {"b", 2}}));
}

TEST(Map, FindsAndLooksUp) {
    IntMap map{{"a", 1}};
    const IntMap& constant = map;
    EXPECT_TRUE(constant.contains("a"));
    EXPECT_FALSE(constant.contains("A"));
    EXPECT_EQ(constant.lookup("a"), 1);
    EXPECT_EQ(constant.lookup("A"), 0);
    EXPECT_EQ(constant.lookup("A", -1), -1);
    EXPECT_EQ(constant.find("A"), constant.end());
    EXPECT_EQ(constant.find("a")->second, 1);
    map.find("a")->second = 5;
    EXPECT_EQ(constant.lookup("a"), 5);
    EXPECT_EQ(constant.size(), 1u);
}

TEST(Map, InsertsByIndex) {
    IntMap map;
    const String key = "key";
    EXPECT_EQ(map[key], 0);
    map[key] = 1;
    map["other"] = 2;
    EXPECT_EQ(toEntries(map), (Entries{{"key", 1}, {"other", 2}}));
}

TEST(Map, KeepsTheFirstValueOfAKeyWhenTryingToInsert) {
    IntMap map;
    const auto [first, isNew] = map.try_emplace("key", 1);
    EXPECT_TRUE(isNew);
    const auto [second, isNewAgain] = map.try_emplace("key", 2);
    EXPECT_FALSE(isNewAgain);
    EXPECT_EQ(first, second);
    EXPECT_EQ(second->second, 1);
}

TEST(Map, ErasesByKeyAndByPosition) {
    IntMap map{{"a", 1}, {"b", 2}, {"c", 3}};
    EXPECT_EQ(map.erase("x"), 0u);
    EXPECT_EQ(map.erase("b"), 1u);
    EXPECT_EQ(toEntries(map), (Entries{{"a", 1}, {"c", 3}}));
    const auto next = map.erase(map.begin());
    EXPECT_EQ(next->first, "c");
    map.clear();
    EXPECT_TRUE(map.empty());
}

TEST(Map, ComparesEntryByEntry) {
    EXPECT_TRUE((IntMap{{"a", 1}, {"b", 2}} == IntMap{{"b", 2}, {"a", 1}}));
    EXPECT_FALSE((IntMap{{"a", 1}} == IntMap{{"a", 2}}));
    EXPECT_FALSE((IntMap{{"a", 1}} == IntMap{}));
}

TEST(Map, CopiesAndSwaps) {
    IntMap first{{"a", 1}};
    IntMap second(first);
    second["b"] = 2;
    EXPECT_EQ(toEntries(first), (Entries{{"a", 1}}));
    first.swap(second);
    EXPECT_EQ(toEntries(first), (Entries{{"a", 1}, {"b", 2}}));
    EXPECT_EQ(toEntries(second), (Entries{{"a", 1}}));
}

TEST(Map, CanBeShared) {
    const P<IntMap> first = new IntMap();
    const P<IntMap> second = first;
    (*first)["a"] = 1;
    EXPECT_EQ(second->lookup("a"), 1);
}

TEST(Map, EntryMovesToAnotherMapWithItsMemory) {
    IntMap from{{"a", 1}, {"b", 2}};
    IntMap to{{"c", 3}};
    const int* const value = &from.find("a")->second;
    auto node = from.extract("a");
    ASSERT_FALSE(node.empty());
    EXPECT_FALSE(from.contains("a"));
    EXPECT_EQ(&to.insert(std::move(node))->second, value);
    EXPECT_EQ(to.lookup("a"), 1);
    EXPECT_TRUE(from.extract("z").empty());

    EXPECT_EQ(from.begin()->first, "b");
    const auto hint = to.lower_bound("b");
    ASSERT_EQ(hint->first, "c");
    EXPECT_EQ(to.insert(hint, from.extract(from.begin()))->second, 2);
    EXPECT_EQ(toEntries(to), (Entries{{"a", 1}, {"b", 2}, {"c", 3}}));
    EXPECT_TRUE(from.empty());
}

} // namespace
