#include "vantra/NetHeaders.h"
#include "SListSeams.h"

#include <kel/Error.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

namespace {

using kel::CInvalidArgError;
using kel::P;
using kel::String;
using kel::TMap;
using slistseams::FailingAppend;
using slistseams::Recorder;
using vantra::CNetHeaders;

static_assert(std::is_base_of_v<kel::CBase, CNetHeaders>);
static_assert(std::is_base_of_v<kel::CBase, CNetHeaders::CIterator>);
static_assert(!std::is_copy_constructible_v<CNetHeaders> && !std::is_copy_assignable_v<CNetHeaders>);
static_assert(!std::is_move_constructible_v<CNetHeaders> && !std::is_move_assignable_v<CNetHeaders>);

using HeaderMap = TMap<String, String>;
using Field = std::pair<String, String>;
using Fields = std::vector<Field>;

/// Headers that may be copied, as only derived classes can.
class CopyableHeaders : public CNetHeaders {
public:
    CopyableHeaders() = default;
    CopyableHeaders(const CopyableHeaders& other) = default;
};

/// The bytes of every line.
std::vector<std::string> linesOf(const CNetHeaders& headers) {
    std::vector<std::string> lines;
    for (const curl_slist* node = headers.getSList(); node; node = node->next) lines.emplace_back(node->data);
    return lines;
}

Fields fieldsOf(CNetHeaders::CIterator& iterator) {
    Fields fields;
    while (iterator.next()) fields.emplace_back(iterator.getName(), iterator.getValue());
    return fields;
}

HeaderMap mapOf(const CNetHeaders& headers) {
    HeaderMap map;
    headers.fillMap(map);
    return map;
}

/// What splitEntry makes of a line.
Field split(const String& entry) {
    Field parts;
    CNetHeaders::splitEntry(entry, parts.first, parts.second);
    return parts;
}

template <class Action>
void expectSplitError(Action action, const String& message) {
    try {
        action();
        ADD_FAILURE() << "no error '" << message << "'";
    } catch (const kel::CError& error) {
        ASSERT_EQ(typeid(error), typeid(CInvalidArgError));
        EXPECT_EQ(error.getMessage(), message);
        EXPECT_EQ(dynamic_cast<const CInvalidArgError&>(error).getFunction(), "CNetHeaders::splitEntry");
        EXPECT_EQ(error.getCodeDomain(), "");
        EXPECT_EQ(error.getCode(), -1);
        EXPECT_TRUE(error.getParams().isEmpty());
        EXPECT_EQ(error.getCause().get(), nullptr);
    }
}

TEST(NetHeaders, AreEmptyAtFirst) {
    const P<CNetHeaders> headers = new CNetHeaders();
    EXPECT_EQ(headers->getSList(), nullptr);
    EXPECT_TRUE(mapOf(*headers).empty());
    const P<CNetHeaders::CIterator> fields = headers->createIterator();
    EXPECT_FALSE(fields->next());
    EXPECT_EQ(fields->getName(), "");
    EXPECT_EQ(fields->getValue(), "");
}

TEST(NetHeaders, StoreNameColonBlankValueTrimmedAndInOrder) {
    CNetHeaders headers;
    headers.add("  Content-Type ", " text/plain  ");
    headers.add("\r\n\tAccept\t", "\t a b \r\n");
    headers.add("X-Empty", "");
    headers.add("X-Blank", " \t\r\n");
    EXPECT_EQ(linesOf(headers), (std::vector<std::string>{"Content-Type: text/plain", "Accept: a b",
                                                          "X-Empty: ", "X-Blank: "}));
    EXPECT_EQ(fieldsOf(*headers.createIterator()),
              (Fields{{"Content-Type", "text/plain"}, {"Accept", "a b"}, {"X-Empty", ""}, {"X-Blank", ""}}));
}

TEST(NetHeaders, KeepRepeatedNamesAsSeparateLines) {
    CNetHeaders headers;
    headers.add("Accept", "a");
    headers.add("Accept", "a");
    EXPECT_EQ(linesOf(headers), (std::vector<std::string>{"Accept: a", "Accept: a"}));
}

TEST(NetHeaders, StoreTextOutsideASCIIAsUTF8AndGiveItBackUnchanged) {
    const String name(L"X-Stra\u00DFe");
    const String value(L"\u20AC \U0001F600");
    CNetHeaders headers;
    headers.add(name, value);
    EXPECT_EQ(linesOf(headers), (std::vector<std::string>{"X-Stra\xC3\x9F"
                                                          "e: \xE2\x82\xAC \xF0\x9F\x98\x80"}));
    EXPECT_EQ(fieldsOf(*headers.createIterator()), (Fields{{name, value}}));
}

TEST(NetHeaders, AcceptAnEmptyNameButCannotSplitIt) {
    CNetHeaders headers;
    EXPECT_NO_THROW(headers.add("", "v"));
    EXPECT_NO_THROW(headers.add(" \t", "v"));
    EXPECT_EQ(linesOf(headers), (std::vector<std::string>{": v", ": v"}));
    expectSplitError([&] { headers.createIterator()->next(); }, "name is empty");
    expectSplitError([&] { mapOf(headers); }, "name is empty");
}

TEST(NetHeaders, SplitANameThatHoldsAColonAtThatColon) {
    CNetHeaders headers;
    headers.add("X:Y", "v");
    EXPECT_EQ(linesOf(headers), (std::vector<std::string>{"X:Y: v"}));
    EXPECT_EQ(fieldsOf(*headers.createIterator()), (Fields{{"X", "Y: v"}}));
}

TEST(NetHeaders, EndALineAtItsFirstNUL) {
    CNetHeaders headers;
    headers.add("X", String("before\0after", 12));
    headers.add(String("Y\0Z", 3), "v");
    EXPECT_EQ(linesOf(headers), (std::vector<std::string>{"X: before", "Y"}));
    const P<CNetHeaders::CIterator> fields = headers.createIterator();
    EXPECT_TRUE(fields->next());
    expectSplitError([&] { fields->next(); }, "entry contains no ':'");
}

TEST(NetHeaders, AreEmptyAfterAFailedAppend) {
    CNetHeaders headers;
    headers.add("A", "1");
    {
        const FailingAppend failing;
        EXPECT_NO_THROW(headers.add("B", "2"));
    }
    EXPECT_EQ(headers.getSList(), nullptr);
    EXPECT_TRUE(mapOf(headers).empty());
}

TEST(NetHeaders, ReleaseTheirLinesExactlyOnce) {
    const Recorder recorder;
    P<CNetHeaders> headers = new CNetHeaders();
    headers->add("A", "1");
    const curl_slist* const head = headers->getSList();
    headers = nullptr;
    EXPECT_EQ(recorder.getReleased(), (std::vector<const curl_slist*>{head}));
    headers = new CNetHeaders();
    headers = nullptr;
    EXPECT_EQ(recorder.getReleased().size(), 1U);
}

TEST(NetHeaders, AreCopiedForDerivedClassesSoThatNoTwoShareLines) {
    const Recorder recorder;
    {
        CopyableHeaders original;
        original.add("A", "1");
        CopyableHeaders copy(original);
        copy.add("B", "2");
        EXPECT_EQ(linesOf(original), (std::vector<std::string>{"A: 1"}));
        EXPECT_EQ(linesOf(copy), (std::vector<std::string>{"A: 1", "B: 2"}));
    }
    ASSERT_EQ(recorder.getReleased().size(), 2U);
    EXPECT_NE(recorder.getReleased()[0], recorder.getReleased()[1]);
}

TEST(NetHeaders, HandleTenThousandLinesWithoutWalkingThemToAppend) {
    const Recorder recorder;
    CNetHeaders headers;
    for (int i = 0; i < 10000; ++i) headers.add("X-" + String::fromInt(i), String::fromInt(i));
    EXPECT_EQ(recorder.getNodesPassed(), 0U);
    const HeaderMap map = mapOf(headers);
    EXPECT_EQ(map.size(), 10000U);
    EXPECT_EQ(map.lookup("x-9999"), "9999");
}

TEST(NetHeaders, KeepA64KiBValueWhole) {
    const String value(std::string(64 * 1024, 'v'));
    CNetHeaders headers;
    headers.add("X", value);
    EXPECT_EQ(fieldsOf(*headers.createIterator()), (Fields{{"X", value}}));
    EXPECT_EQ(mapOf(headers), (HeaderMap{{"x", value}}));
}

TEST(NetHeadersSplitEntry, TrimsNameAndValue) {
    EXPECT_EQ(split("Content-Type: text/plain"), Field("Content-Type", "text/plain"));
    EXPECT_EQ(split(" \tA b\t :\t c d \r\n"), Field("A b", "c d"));
    EXPECT_EQ(split("A:b"), Field("A", "b"));
}

TEST(NetHeadersSplitEntry, LeavesLaterColonsToTheValue) {
    EXPECT_EQ(split("Time: 12:30:00"), Field("Time", "12:30:00"));
    EXPECT_EQ(split("A::"), Field("A", ":"));
}

TEST(NetHeadersSplitEntry, AllowsAnEmptyValue) {
    EXPECT_EQ(split("X-Empty: "), Field("X-Empty", ""));
    EXPECT_EQ(split("X-Empty:"), Field("X-Empty", ""));
    EXPECT_EQ(split("X-Empty: \t\r\n"), Field("X-Empty", ""));
}

TEST(NetHeadersSplitEntry, KeepsCharactersOfEveryKind) {
    EXPECT_EQ(split(String(L"X-\u00C4\u20AC: \U0001F600")),
              Field(String(L"X-\u00C4\u20AC"), String(L"\U0001F600")));
    EXPECT_EQ(split(String("A\0B: c\0d", 8)), Field(String("A\0B", 3), String("c\0d", 3)));
    // A no-break space is no white space here.
    EXPECT_EQ(split(String(L"A: \u00A0b\u00A0")), Field(String("A"), String(L"\u00A0b\u00A0")));
}

TEST(NetHeadersSplitEntry, RejectsALineWithoutColon) {
    for (const char* const entry : {"", " ", "no colon", "\r\n"})
        expectSplitError([&] { split(entry); }, "entry contains no ':'");
}

TEST(NetHeadersSplitEntry, RejectsAnEmptyName) {
    for (const char* const entry : {":", ": v", " \t: v", "::"})
        expectSplitError([&] { split(entry); }, "name is empty");
}

TEST(NetHeadersSplitEntry, LeavesTheOutputsAloneWhenItFails) {
    String name = "name";
    String value = "value";
    expectSplitError([&] { CNetHeaders::splitEntry("no colon", name, value); }, "entry contains no ':'");
    expectSplitError([&] { CNetHeaders::splitEntry(": v", name, value); }, "name is empty");
    EXPECT_EQ(name, "name");
    EXPECT_EQ(value, "value");
}

TEST(NetHeadersSplitEntry, MayWriteIntoTheLineItself) {
    String text = "A: b";
    String other;
    CNetHeaders::splitEntry(text, text, other);
    EXPECT_EQ(text, "A");
    EXPECT_EQ(other, "b");
    text = "A: b";
    CNetHeaders::splitEntry(text, other, text);
    EXPECT_EQ(other, "A");
    EXPECT_EQ(text, "b");
}

TEST(NetHeadersFillMap, LowerCasesNamesAndKeepsTheCaseOfValues) {
    CNetHeaders headers;
    headers.add("Content-TYPE", "Text/Plain");
    EXPECT_EQ(mapOf(headers), (HeaderMap{{"content-type", "Text/Plain"}}));
}

TEST(NetHeadersFillMap, LowerCasesOnlyASCIILetters) {
    CNetHeaders headers;
    headers.add(String(L"X-\u00C4Z"), "v");
    EXPECT_EQ(mapOf(headers), (HeaderMap{{String(L"x-\u00C4z"), "v"}}));
}

TEST(NetHeadersFillMap, JoinsRepeatedNamesWithACommaInListOrder) {
    CNetHeaders headers;
    headers.add("Accept", "a");
    headers.add("Other", "o");
    headers.add("accept", "b");
    headers.add("ACCEPT", "a");
    EXPECT_EQ(mapOf(headers), (HeaderMap{{"accept", "a,b,a"}, {"other", "o"}}));
}

TEST(NetHeadersFillMap, PutsTheCommaBesideEmptyValuesToo) {
    CNetHeaders headers;
    headers.add("A", "");
    headers.add("A", "b");
    headers.add("A", "");
    EXPECT_EQ(mapOf(headers), (HeaderMap{{"a", ",b,"}}));
}

TEST(NetHeadersFillMap, MergesIntoWhatTheMapHolds) {
    CNetHeaders headers;
    headers.add("Accept", "b");
    headers.add("New", "n");
    HeaderMap map{{"accept", "a"}, {"kept", "k"}, {"New", "another key"}};
    headers.fillMap(map);
    EXPECT_EQ(map, (HeaderMap{{"accept", "a,b"}, {"kept", "k"}, {"New", "another key"}, {"new", "n"}}));
}

TEST(NetHeadersFillMap, OrdersTheKeysOrdinally) {
    CNetHeaders headers;
    for (const char* const name : {"b", "a-1", "a_1", "A", "a1"}) headers.add(name, "");
    headers.add(String(L"\u00E4"), "");
    const HeaderMap map = mapOf(headers);
    std::vector<String> keys;
    for (const auto& [key, value] : map) keys.push_back(key);
    EXPECT_EQ(keys, (std::vector<String>{"a", "a-1", "a1", "a_1", "b", String(L"\u00E4")}));
}

TEST(NetHeadersFillMap, KeepsTheLinesBeforeABadOne) {
    CNetHeaders headers;
    headers.add("A", "1");
    headers.add("", "bad");
    headers.add("B", "2");
    HeaderMap map;
    expectSplitError([&] { headers.fillMap(map); }, "name is empty");
    EXPECT_EQ(map, (HeaderMap{{"a", "1"}}));
}

TEST(NetHeadersIterator, HasNeitherNameNorValueAfterTheEnd) {
    CNetHeaders headers;
    headers.add("A", "1");
    const P<CNetHeaders::CIterator> fields = headers.createIterator();
    EXPECT_EQ(fields->getName(), "");
    EXPECT_EQ(fields->getValue(), "");
    EXPECT_TRUE(fields->next());
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(fields->next());
        EXPECT_EQ(fields->getName(), "");
        EXPECT_EQ(fields->getValue(), "");
    }
}

TEST(NetHeadersIterator, KeepsTheLastFieldOverAResetAndStartsAgain) {
    CNetHeaders headers;
    headers.add("A", "1");
    headers.add("B", "2");
    const P<CNetHeaders::CIterator> fields = headers.createIterator();
    fields->next();
    fields->next();
    fields->reset();
    EXPECT_EQ(fields->getName(), "B");
    EXPECT_EQ(fields->getValue(), "2");
    EXPECT_EQ(fieldsOf(*fields), (Fields{{"A", "1"}, {"B", "2"}}));
    fields->reset();
    EXPECT_EQ(fieldsOf(*fields), (Fields{{"A", "1"}, {"B", "2"}}));
}

TEST(NetHeadersIterator, GoesOnAfterABadLine) {
    CNetHeaders headers;
    headers.add("A", "1");
    headers.add("", "bad");
    headers.add("B", "2");
    const P<CNetHeaders::CIterator> fields = headers.createIterator();
    EXPECT_TRUE(fields->next());
    expectSplitError([&] { fields->next(); }, "name is empty");
    EXPECT_EQ(fields->getName(), "A");
    EXPECT_EQ(fields->getValue(), "1");
    EXPECT_EQ(fieldsOf(*fields), (Fields{{"B", "2"}}));
}

TEST(NetHeadersIterator, WalksAnyListOfLibcurl) {
    curl_slist* const plain = curl_slist_append(curl_slist_append(nullptr, "A:1"), "no colon");
    CNetHeaders::CIterator fields(plain);
    EXPECT_TRUE(fields.next());
    EXPECT_EQ(fields.getName(), "A");
    EXPECT_EQ(fields.getValue(), "1");
    expectSplitError([&] { fields.next(); }, "entry contains no ':'");
    curl_slist_free_all(plain);
}

TEST(NetHeadersIterator, GoesOnFromWhereItWasCopiedOrMoved) {
    CNetHeaders headers;
    for (const char* const name : {"A", "B", "C"}) headers.add(name, name);
    CNetHeaders::CIterator fields(headers.getSList());
    fields.next();

    CNetHeaders::CIterator copy(fields);
    CNetHeaders::CIterator assigned(nullptr);
    assigned = fields;
    for (const CNetHeaders::CIterator* const twin : {&copy, &assigned}) {
        EXPECT_EQ(twin->getName(), "A");
        EXPECT_EQ(twin->getValue(), "A");
    }
    EXPECT_EQ(fieldsOf(copy), (Fields{{"B", "B"}, {"C", "C"}}));
    EXPECT_EQ(fieldsOf(assigned), (Fields{{"B", "B"}, {"C", "C"}}));

    CNetHeaders::CIterator moved(std::move(fields));
    EXPECT_EQ(moved.getName(), "A");
    CNetHeaders::CIterator moveAssigned(nullptr);
    moveAssigned = std::move(moved);
    EXPECT_EQ(moveAssigned.getValue(), "A");
    EXPECT_EQ(fieldsOf(moveAssigned), (Fields{{"B", "B"}, {"C", "C"}}));
}

} // namespace
