#include "vantra/NetStringList.h"
#include "SListSeams.h"

#include <kel/Log.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using kel::P;
using kel::String;
using slistseams::FailingAppend;
using slistseams::Recorder;
using slistseams::ThrowingRelease;
using vantra::CNetStringList;

static_assert(std::is_base_of_v<kel::CBase, CNetStringList>);
static_assert(std::is_base_of_v<kel::CBase, CNetStringList::CIterator>);
static_assert(!std::is_copy_constructible_v<CNetStringList> && !std::is_copy_assignable_v<CNetStringList>);
static_assert(!std::is_move_constructible_v<CNetStringList> && !std::is_move_assignable_v<CNetStringList>);

/// A list that may be copied, as only derived classes can.
class CopyableList : public CNetStringList {
public:
    CopyableList() = default;
    CopyableList(const CopyableList& other) = default;
};

/// The bytes of every node.
std::vector<std::string> nodesOf(const CNetStringList& list) {
    std::vector<std::string> texts;
    for (const curl_slist* node = list.getSList(); node; node = node->next) texts.emplace_back(node->data);
    return texts;
}

std::vector<String> entriesOf(CNetStringList::CIterator& lines) {
    std::vector<String> entries;
    while (lines.next()) entries.push_back(lines.getEntry());
    return entries;
}

TEST(NetStringList, IsEmptyAtFirst) {
    const P<CNetStringList> list = new CNetStringList();
    EXPECT_EQ(list->getSList(), nullptr);
    const P<CNetStringList::CIterator> lines = list->createIterator();
    EXPECT_EQ(lines->getEntry(), "");
    EXPECT_FALSE(lines->next());
    EXPECT_EQ(lines->getEntry(), "");
}

TEST(NetStringList, KeepsItsLinesInOrder) {
    CNetStringList list;
    list.add("SITE UMASK 022");
    list.add("");
    list.add("  kept as it is \t");
    list.add("SITE UMASK 022");
    EXPECT_EQ(nodesOf(list),
              (std::vector<std::string>{"SITE UMASK 022", "", "  kept as it is \t", "SITE UMASK 022"}));
    EXPECT_EQ(entriesOf(*list.createIterator()),
              (std::vector<String>{"SITE UMASK 022", "", "  kept as it is \t", "SITE UMASK 022"}));
}

TEST(NetStringList, KeepsItsHeadWhileItGrows) {
    CNetStringList list;
    list.add("first");
    const curl_slist* const head = list.getSList();
    for (int i = 0; i < 100; ++i) list.add(String::fromInt(i));
    EXPECT_EQ(list.getSList(), head);
}

TEST(NetStringList, StoresTextAsUTF8AndGivesItBackUnchanged) {
    const String text(L"Stra\u00DFe \u20AC \U0001F600");
    CNetStringList list;
    list.add(text);
    EXPECT_EQ(nodesOf(list), (std::vector<std::string>{"Stra\xC3\x9F"
                                                       "e \xE2\x82\xAC \xF0\x9F\x98\x80"}));
    EXPECT_EQ(entriesOf(*list.createIterator()), (std::vector<String>{text}));
}

TEST(NetStringList, TakesLinesThatAreUTF8Already) {
    CNetStringList list;
    list.addUTF8("caf\xC3\xA9");
    list.addUTF8(std::string_view("cut here", 3));
    EXPECT_EQ(nodesOf(list), (std::vector<std::string>{"caf\xC3\xA9", "cut"}));
    EXPECT_EQ(entriesOf(*list.createIterator()), (std::vector<String>{String(L"caf\u00E9"), "cut"}));
}

TEST(NetStringList, ShowsReplacementCharactersForBytesThatAreNoUTF8) {
    CNetStringList list;
    list.addUTF8("caf\xE9 au lait");
    EXPECT_EQ(nodesOf(list), (std::vector<std::string>{"caf\xE9 au lait"}));
    EXPECT_EQ(entriesOf(*list.createIterator()), (std::vector<String>{String(L"caf\uFFFD au lait")}));
}

TEST(NetStringList, StoresAnUnpairedSurrogateAsTheReplacementCharacter) {
    CNetStringList list;
    const wchar_t text[] = {L'a', 0xD800, L'b'};
    list.add(String(text, 3));
    EXPECT_EQ(nodesOf(list), (std::vector<std::string>{"a\xEF\xBF\xBD"
                                                       "b"}));
    EXPECT_EQ(entriesOf(*list.createIterator()), (std::vector<String>{String(L"a\uFFFDb")}));
}

TEST(NetStringList, EndsALineAtItsFirstNUL) {
    CNetStringList list;
    list.add(String("before\0after", 12));
    EXPECT_EQ(nodesOf(list), (std::vector<std::string>{"before"}));
}

TEST(NetStringList, TakesLinesOfAnyLength) {
    std::vector<std::string> texts;
    CNetStringList list;
    for (const std::size_t length : {1UL, 254UL, 255UL, 256UL, 257UL, 64UL * 1024, 1024UL * 1024}) {
        texts.emplace_back(length, 'x');
        list.add(String(texts.back()));
    }
    EXPECT_EQ(nodesOf(list), texts);
}

TEST(NetStringList, DoesNotWalkTheListToAppend) {
    const Recorder recorder;
    CNetStringList list;
    for (int i = 0; i < 10000; ++i) list.add(String::fromInt(i));
    EXPECT_EQ(nodesOf(list).size(), 10000U);
    EXPECT_EQ(nodesOf(list).back(), "9999");
    EXPECT_EQ(recorder.getNodesPassed(), 0U);
}

TEST(NetStringList, IsEmptyAfterAFailedAppend) {
    CNetStringList list;
    list.add("first");
    list.add("second");
    {
        const FailingAppend failing;
        EXPECT_NO_THROW(list.add("third"));
        EXPECT_EQ(list.getSList(), nullptr);
        EXPECT_NO_THROW(list.add("fourth"));
        EXPECT_EQ(list.getSList(), nullptr);
    }
    EXPECT_FALSE(list.createIterator()->next());
}

TEST(NetStringList, ReleasesTheLinesThatAFailedAppendDrops) {
    const Recorder recorder;
    {
        CNetStringList list;
        list.add("first");
        const curl_slist* const head = list.getSList();
        const FailingAppend failing;
        list.add("second");
        EXPECT_EQ(recorder.getReleased(), (std::vector<const curl_slist*>{head}));
    }
    EXPECT_EQ(recorder.getReleased().size(), 1U);
}

TEST(NetStringList, CanBeFilledAgainAfterAFailedAppend) {
    CNetStringList list;
    list.add("lost");
    {
        const FailingAppend failing;
        list.add("lost too");
    }
    list.add("a");
    list.add("b");
    EXPECT_EQ(nodesOf(list), (std::vector<std::string>{"a", "b"}));
}

TEST(NetStringList, ReleasesItsLinesExactlyOnce) {
    const Recorder recorder;
    P<CNetStringList> list = new CNetStringList();
    list->add("a");
    list->add("b");
    const curl_slist* const head = list->getSList();
    const P<CNetStringList::CIterator> lines = list->createIterator();
    EXPECT_EQ(recorder.getReleased().size(), 0U);
    list = nullptr;
    EXPECT_EQ(recorder.getReleased(), (std::vector<const curl_slist*>{head}));
}

TEST(NetStringList, ReleasesNothingWhenEmpty) {
    const Recorder recorder;
    { const CNetStringList list; }
    EXPECT_EQ(recorder.getReleased().size(), 0U);
}

TEST(NetStringList, CopiesLinesForDerivedClassesSoThatNoTwoListsShareThem) {
    const Recorder recorder;
    {
        CopyableList original;
        original.add("a");
        original.add(String(L"\u00DF"));
        CopyableList copy(original);
        EXPECT_NE(copy.getSList(), original.getSList());
        copy.add("c");
        EXPECT_EQ(nodesOf(original), (std::vector<std::string>{"a", "\xC3\x9F"}));
        EXPECT_EQ(nodesOf(copy), (std::vector<std::string>{"a", "\xC3\x9F", "c"}));
    }
    ASSERT_EQ(recorder.getReleased().size(), 2U);
    EXPECT_NE(recorder.getReleased()[0], recorder.getReleased()[1]);
}

class LogRecorder : public kel::ILogHandler, public kel::CBase {
public:
    void handleLogEntry(const kel::CLogEntry& entry) override { entries.push_back(entry); }

    std::vector<kel::CLogEntry> entries;
};

TEST(NetStringList, ReportsAnExceptionInItsDestructorAndSwallowsIt) {
    const P<LogRecorder> log = new LogRecorder();
    const P<kel::ILogHandler> logBefore = kel::setLogHandler(log);
    {
        const ThrowingRelease throwing;
        CNetStringList list;
        list.add("a");
    }
    kel::setLogHandler(logBefore);
    ASSERT_EQ(log->entries.size(), 1U);
    EXPECT_EQ(log->entries[0].level, kel::LogLevel::Error);
    EXPECT_EQ(log->entries[0].text, "Exception in destructor of vantra::CNetStringList (ignored).");
    ASSERT_NE(log->entries[0].error.get(), nullptr);
    EXPECT_EQ(log->entries[0].error->getMessage(), "no release");
}

TEST(NetStringListIterator, HasNoEntryBeforeTheFirstLine) {
    CNetStringList list;
    list.add("a");
    EXPECT_EQ(list.createIterator()->getEntry(), "");
}

TEST(NetStringListIterator, HasNoEntryAfterTheLastLineAndStaysAtTheEnd) {
    CNetStringList list;
    list.add("a");
    const P<CNetStringList::CIterator> lines = list.createIterator();
    EXPECT_TRUE(lines->next());
    EXPECT_EQ(lines->getEntry(), "a");
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(lines->next());
        EXPECT_EQ(lines->getEntry(), "");
    }
}

TEST(NetStringListIterator, StartsAgainAfterAReset) {
    CNetStringList list;
    list.add("a");
    list.add("b");
    const P<CNetStringList::CIterator> lines = list.createIterator();
    EXPECT_EQ(entriesOf(*lines), (std::vector<String>{"a", "b"}));
    lines->reset();
    EXPECT_EQ(entriesOf(*lines), (std::vector<String>{"a", "b"}));
    lines->reset();
    EXPECT_TRUE(lines->next());
    lines->reset();
    EXPECT_EQ(lines->getEntry(), "a");
    EXPECT_TRUE(lines->next());
    EXPECT_EQ(lines->getEntry(), "a");
}

TEST(NetStringListIterator, SeesOnlyTheListItWasMadeFor) {
    CNetStringList list;
    const P<CNetStringList::CIterator> lines = list.createIterator();
    list.add("a");
    EXPECT_FALSE(lines->next());
    EXPECT_TRUE(list.createIterator()->next());
}

TEST(NetStringListIterator, WalksAnyListOfLibcurl) {
    curl_slist* const plain = curl_slist_append(curl_slist_append(nullptr, "a"), "b");
    CNetStringList::CIterator lines(plain);
    EXPECT_EQ(entriesOf(lines), (std::vector<String>{"a", "b"}));
    curl_slist_free_all(plain);
}

TEST(NetStringListIterator, DoesNotReleaseTheList) {
    CNetStringList list;
    list.add("a");
    const Recorder recorder;
    { const P<CNetStringList::CIterator> lines = list.createIterator(); }
    EXPECT_EQ(recorder.getReleased().size(), 0U);
}

TEST(NetStringListIterator, GoesOnFromWhereItWasCopied) {
    CNetStringList list;
    for (const char* const text : {"a", "b", "c"}) list.add(text);
    CNetStringList::CIterator lines(list.getSList());
    lines.next();
    lines.next();

    CNetStringList::CIterator copy(lines);
    EXPECT_EQ(copy.getEntry(), "b");
    CNetStringList::CIterator assigned(nullptr);
    assigned = lines;
    EXPECT_EQ(assigned.getEntry(), "b");

    EXPECT_EQ(entriesOf(copy), (std::vector<String>{"c"}));
    EXPECT_EQ(entriesOf(assigned), (std::vector<String>{"c"}));
    EXPECT_EQ(lines.getEntry(), "b");
    copy.reset();
    EXPECT_EQ(entriesOf(copy), (std::vector<String>{"a", "b", "c"}));
}

TEST(NetStringListIterator, CopiesThatItHasNotBegun) {
    CNetStringList list;
    list.add("a");
    const CNetStringList::CIterator lines(list.getSList());
    CNetStringList::CIterator copy(lines);
    EXPECT_EQ(entriesOf(copy), (std::vector<String>{"a"}));
}

TEST(NetStringListIterator, GoesOnFromWhereItWasMoved) {
    CNetStringList list;
    for (const char* const text : {"a", "b", "c"}) list.add(text);
    CNetStringList::CIterator lines(list.getSList());
    lines.next();

    CNetStringList::CIterator moved(std::move(lines));
    EXPECT_EQ(moved.getEntry(), "a");
    CNetStringList::CIterator assigned(nullptr);
    assigned = std::move(moved);
    EXPECT_EQ(assigned.getEntry(), "a");
    EXPECT_EQ(entriesOf(assigned), (std::vector<String>{"b", "c"}));
}

} // namespace
