#include "kel/XMLElement.h"

#include "kel/Error.h"
#include "UTF.h"

namespace kel {

namespace {

enum class Place { Text, AttributeValue };

/// The Char production of XML 1.0; control characters, surrogates, U+FFFE and U+FFFF are not in it.
bool isXMLCharacter(char32_t c) noexcept {
    return c == U'\t' || c == U'\n' || c == U'\r' || (c >= 0x20 && c <= 0xD7FF) ||
           (c >= 0xE000 && c <= 0xFFFD) || (c >= 0x10000 && c <= utf::lastCodePoint);
}

/// What has to stand for a character so that a parser gives it back, or can accept it at all; empty where the
/// character can stand for itself.
std::wstring_view findSubstitute(char32_t c, Place place) noexcept {
    switch (c) {
    case U'&':
        return L"&amp;";
    case U'<':
        return L"&lt;";
    case U'>':
        return L"&gt;";
    case U'\r':
        return L"&#13;";
    case U'"':
        return place == Place::AttributeValue ? L"&quot;" : L"";
    // A parser turns white space in an attribute value into blanks.
    case U'\t':
        return place == Place::AttributeValue ? L"&#9;" : L"";
    case U'\n':
        return place == Place::AttributeValue ? L"&#10;" : L"";
    // Read from an unpaired surrogate, if not there already.
    case utf::replacementCharacter:
        return L"\uFFFD";
    default:
        return isXMLCharacter(c) ? L"" : L"\uFFFD";
    }
}

void appendEscaped(String& out, const String& text, Place place) {
    const wchar_t* at = text.view().data();
    const wchar_t* const end = at + text.length();
    const wchar_t* plainStart = at;
    const auto appendPlain = [&out, &plainStart](const wchar_t* plainEnd) {
        out.append({plainStart, static_cast<std::size_t>(plainEnd - plainStart)});
    };
    while (at != end) {
        const wchar_t* const start = at;
        const std::wstring_view substitute = findSubstitute(utf::readUnits(at, end), place);
        if (substitute.empty()) continue;
        appendPlain(start);
        out.append(substitute);
        plainStart = at;
    }
    appendPlain(end);
}

void appendIndent(String& out, int depth) {
    for (int i = 0; i < depth; ++i) out.append(L"  ");
}

} // namespace

CXMLElement::CXMLElement(const String& name) : name_(name) {}

CXMLElement::~CXMLElement() = default;

void CXMLElement::addAttribute(const String& name, const String& value) {
    for (Attribute& attribute : attributes_) {
        if (attribute.first != name) continue;
        attribute.second = value;
        return;
    }
    attributes_.emplace_back(name, value);
}

String CXMLElement::getAttribute(const String& name) const {
    const String* const value = findAttribute(name);
    return value ? *value : String();
}

bool CXMLElement::hasAttribute(const String& name) const { return findAttribute(name) != nullptr; }

const String* CXMLElement::findAttribute(const String& name) const noexcept {
    for (const Attribute& attribute : attributes_)
        if (attribute.first == name) return &attribute.second;
    return nullptr;
}

void CXMLElement::addChild(CXMLElement* child) {
    if (!child) throw CInvalidArgError("CXMLElement::addChild", "the child must not be null");
    children_.push_back(child);
}

String CXMLElement::toXML() const {
    String out;
    appendTo(out, 0);
    return out;
}

std::string CXMLElement::toDocumentUTF8() const {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + toXML().toUTF8() + "\n";
}

void CXMLElement::appendTo(String& out, int depth) const {
    appendIndent(out, depth);
    out.append(L"<").append(name_.view());
    for (const auto& [name, value] : attributes_) {
        out.append(L" ").append(name.view()).append(L"=\"");
        appendEscaped(out, value, Place::AttributeValue);
        out.append(L"\"");
    }
    if (text_.isEmpty() && children_.empty()) {
        out.append(L"/>");
        return;
    }
    out.append(L">");
    appendEscaped(out, text_, Place::Text);
    for (const P<CXMLElement>& child : children_) {
        out.append(L"\n");
        child->appendTo(out, depth + 1);
    }
    if (!children_.empty()) {
        out.append(L"\n");
        appendIndent(out, depth);
    }
    out.append(L"</").append(name_.view()).append(L">");
}

} // namespace kel
