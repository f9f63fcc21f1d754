#include "kel/XMLElement.h"
#include "kel/Error.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include <wx/log.h>
#include <wx/mstream.h>
#include <wx/xml/xml.h>

namespace {

using kel::CXMLElement;
using kel::P;
using kel::String;

P<CXMLElement> makeElement(const String& name, const String& text = String()) {
    P<CXMLElement> element = new CXMLElement(name);
    element->setText(text);
    return element;
}

/// Reads a document with a parser of another make; the white space of texts is kept.
class CParsedDocument {
public:
    explicit CParsedDocument(const std::string& document) {
        const wxLogNull noLog;
        wxMemoryInputStream stream(document.data(), document.size());
        valid_ = document_.Load(stream, "UTF-8", wxXMLDOC_KEEP_WHITESPACE_NODES) && document_.GetRoot();
    }

    [[nodiscard]] bool isValid() const { return valid_; }
    [[nodiscard]] const wxXmlNode& getRoot() const { return *document_.GetRoot(); }
    [[nodiscard]] String getText() const { return String(getRoot().GetNodeContent()); }
    [[nodiscard]] String getAttribute(const wxString& name) const {
        return String(getRoot().GetAttribute(name));
    }

private:
    wxXmlDocument document_;
    bool valid_ = false;
};

TEST(XMLElement, HasOnlyANameAtFirst) {
    const P<CXMLElement> element = new CXMLElement("name");
    EXPECT_EQ(element->getName(), "name");
    EXPECT_EQ(element->getText(), "");
    EXPECT_TRUE(element->getAttributes().empty());
    EXPECT_TRUE(element->getChildren().empty());
    EXPECT_EQ(element->toXML(), "<name/>");
}

TEST(XMLElement, KeepsAttributesInTheOrderTheyWereAdded) {
    const P<CXMLElement> element = new CXMLElement("name");
    element->addAttribute("z", "1");
    element->addAttribute("a", "2");
    element->addAttribute("m", "");
    element->addAttribute("z", "3");
    EXPECT_EQ(element->getAttributes(),
              (std::vector<CXMLElement::Attribute>{{"z", "3"}, {"a", "2"}, {"m", ""}}));
    EXPECT_EQ(element->getAttribute("z"), "3");
    EXPECT_EQ(element->getAttribute("m"), "");
    EXPECT_EQ(element->getAttribute("Z"), "");
    EXPECT_TRUE(element->hasAttribute("m"));
    EXPECT_FALSE(element->hasAttribute("Z"));
    EXPECT_EQ(element->toXML(), "<name z=\"3\" a=\"2\" m=\"\"/>");
}

TEST(XMLElement, KeepsChildrenInTheOrderTheyWereAdded) {
    const P<CXMLElement> element = new CXMLElement("name");
    const P<CXMLElement> first = new CXMLElement("child");
    const P<CXMLElement> second = new CXMLElement("child");
    element->addChild(first);
    element->addChild(second);
    ASSERT_EQ(element->getChildren().size(), 2u);
    EXPECT_EQ(element->getChildren()[0].get(), first.get());
    EXPECT_EQ(element->getChildren()[1].get(), second.get());
}

TEST(XMLElement, RefusesANullChild) {
    const P<CXMLElement> element = new CXMLElement("name");
    try {
        element->addChild(nullptr);
        ADD_FAILURE() << "nothing thrown";
    } catch (const kel::CInvalidArgError& error) {
        EXPECT_EQ(error.getFunction(), "CXMLElement::addChild");
        EXPECT_EQ(error.getMessage(), "the child must not be null");
    }
    EXPECT_TRUE(element->getChildren().empty());
}

TEST(XMLElement, IsWrittenWithItsText) {
    EXPECT_EQ(makeElement("name", "some text")->toXML(), "<name>some text</name>");
    EXPECT_EQ(makeElement("name", " ")->toXML(), "<name> </name>");
}

TEST(XMLElement, IsWrittenWithEachElementOnALineOfItsOwn) {
    const P<CXMLElement> root = makeElement("root", "text");
    root->addAttribute("a", "1");
    const P<CXMLElement> child = makeElement("child");
    root->addChild(child);
    child->addChild(makeElement("grandchild", "more"));
    child->addChild(makeElement("empty"));
    root->addChild(makeElement("last", "x"));
    const std::string expected = "<root a=\"1\">text\n"
                                 "  <child>\n"
                                 "    <grandchild>more</grandchild>\n"
                                 "    <empty/>\n"
                                 "  </child>\n"
                                 "  <last>x</last>\n"
                                 "</root>";
    EXPECT_EQ(root->toXML(), String(expected));
    EXPECT_EQ(root->toDocumentUTF8(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + expected + "\n");
}

TEST(XMLElement, EscapesMarkup) {
    EXPECT_EQ(makeElement("e", "a<b>c&d\"e'f]]>")->toXML(), "<e>a&lt;b&gt;c&amp;d\"e'f]]&gt;</e>");
    const P<CXMLElement> element = new CXMLElement("e");
    element->addAttribute("a", "a<b>c&d\"e'f");
    EXPECT_EQ(element->toXML(), "<e a=\"a&lt;b&gt;c&amp;d&quot;e'f\"/>");
}

TEST(XMLElement, WritesReferencesForWhiteSpaceThatAParserWouldChange) {
    EXPECT_EQ(makeElement("e", "a\tb\nc\rd\r\ne")->toXML(), "<e>a\tb\nc&#13;d&#13;\ne</e>");
    const P<CXMLElement> element = new CXMLElement("e");
    element->addAttribute("a", " a\tb\nc\rd ");
    EXPECT_EQ(element->toXML(), "<e a=\" a&#9;b&#10;c&#13;d \"/>");
}

TEST(XMLElement, ReplacesCharactersThatXMLCannotHold) {
    std::u32string text;
    std::u32string expected;
    for (char32_t c = 0; c < 0x20; ++c) {
        if (c == U'\t' || c == U'\n' || c == U'\r') continue;
        text += c;
        expected += U'\uFFFD';
    }
    text += U"\u007F\u0085\u2028\uD7FF\uE000\uFFFD\uFFFE\uFFFF\U00010000\U0001FFFE\U0010FFFF";
    expected += U"\u007F\u0085\u2028\uD7FF\uE000\uFFFD\uFFFD\uFFFD\U00010000\U0001FFFE\U0010FFFF";
    EXPECT_EQ(makeElement("e", String::fromUTF32(text))->toXML(),
              "<e>" + String::fromUTF32(expected) + "</e>");
    const wchar_t unpaired[] = {L'a', static_cast<wchar_t>(0xD800), L'b', static_cast<wchar_t>(0xDC00)};
    EXPECT_EQ(makeElement("e", String(unpaired, 4))->toXML(), L"<e>a\uFFFDb\uFFFD</e>");
}

TEST(XMLElement, GivesItsTextsBackThroughAParser) {
    const String text = String::fromUTF32(U" \ta\r\nb\rc\nd<&>\"']]>\u00E4\u20AC\U0001F600 ");
    const P<CXMLElement> element = makeElement("e", text);
    element->addAttribute("a", text);
    const CParsedDocument parsed(element->toDocumentUTF8());
    ASSERT_TRUE(parsed.isValid());
    EXPECT_EQ(parsed.getText(), text);
    EXPECT_EQ(parsed.getAttribute("a"), text);
}

TEST(XMLElement, IsWellFormedForAnyBytes) {
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        std::string bytes(1 + random() % 60, '\0');
        std::u32string expected;
        for (char& byte : bytes) {
            byte = static_cast<char>(static_cast<unsigned char>(random() % 256));
            const auto code = static_cast<unsigned char>(byte);
            const bool isAllowed = code >= 0x20 || code == '\t' || code == '\n' || code == '\r';
            expected += isAllowed ? code : U'\uFFFD';
        }
        const String text = String::fromLatin1(bytes);
        const P<CXMLElement> element = makeElement("e", text);
        element->addAttribute("a", text);
        element->addChild(makeElement("child", text));
        const CParsedDocument parsed(element->toDocumentUTF8());
        ASSERT_TRUE(parsed.isValid()) << element->toXML();
        ASSERT_EQ(parsed.getAttribute("a"), String::fromUTF32(expected));
        const wxXmlNode* child = parsed.getRoot().GetChildren();
        while (child && child->GetType() != wxXML_ELEMENT_NODE) child = child->GetNext();
        ASSERT_NE(child, nullptr);
        ASSERT_EQ(String(child->GetNodeContent()), String::fromUTF32(expected));
    }
}

} // namespace
