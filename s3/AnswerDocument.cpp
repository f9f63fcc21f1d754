#include "s3/AnswerDocument.h"

#include "s3/QuietXMLLog.h"

#include <kel/Error.h>

#include <wx/mstream.h>

namespace vantra {

using kel::CError;
using kel::String;

namespace {

constexpr int deepestNesting = 100;
constexpr std::size_t mostTextPieces = 2048;

/// The position behind the next `end`, or the end of the text when there is none.
std::size_t skipPast(std::string_view xml, std::string_view end, std::size_t from) noexcept {
    const std::size_t found = xml.find(end, from);
    return found == std::string_view::npos ? xml.size() : found + end.size();
}

/// The position of the ">" that ends a tag, or the end of the text.
std::size_t findTagEnd(std::string_view xml, std::size_t from) noexcept {
    std::size_t position = xml.find_first_of(">\"'", from);
    while (position != std::string_view::npos && xml[position] != '>') {
        const std::size_t closingQuote = xml.find(xml[position], position + 1);
        if (closingQuote == std::string_view::npos) return xml.size();
        position = xml.find_first_of(">\"'", closingQuote + 1);
    }
    return position == std::string_view::npos ? xml.size() : position;
}

/// Whether a text between two tags comes in no more pieces than allowed: the parser hands one over for each
/// line end, reference and block of its input, and wxWidgets copies all that it has with each of them.
bool isHarmlessText(std::string_view text) noexcept {
    constexpr std::size_t smallestBlock = 512;
    if (text.size() <= mostTextPieces) return true;
    std::size_t pieces = text.size() / smallestBlock;
    for (const char c : text) pieces += c == '\n' || c == '\r' || c == '&' ? 1 : 0;
    return pieces <= mostTextPieces;
}

/// Whether a document, as far as it is well-formed, is without a document type declaration, nested no deeper
/// than allowed, and its texts harmless. wxWidgets frees a tree recursively, so that the depth has to be
/// known before it makes one.
bool isHarmless(std::string_view xml) noexcept {
    // In UTF-16 the marks looked for below would be other bytes.
    if (xml.find('\0') != std::string_view::npos) return false;
    int depth = 0;
    std::size_t position = 0;
    std::size_t textStart = 0;
    while ((position = xml.find('<', position)) != std::string_view::npos) {
        if (!isHarmlessText(xml.substr(textStart, position - textStart))) return false;
        const std::string_view rest = xml.substr(position);
        if (rest.starts_with("<!--")) {
            position = skipPast(xml, "-->", position + 4);
        } else if (rest.starts_with("<![CDATA[")) {
            const std::size_t end = skipPast(xml, "]]>", position + 9);
            if (!isHarmlessText(xml.substr(position, end - position))) return false;
            position = end;
        } else if (rest.starts_with("<?")) {
            position = skipPast(xml, "?>", position + 2);
        } else if (rest.starts_with("<!")) {
            return false;
        } else if (rest.starts_with("</")) {
            --depth;
            position += 2;
        } else {
            position = findTagEnd(xml, position + 1);
            const bool isEmptyElement = xml[position - 1] == '/';
            if (!isEmptyElement && ++depth > deepestNesting) return false;
        }
        textStart = position;
    }
    return isHarmlessText(xml.substr(textStart));
}

const wxXmlNode* skipToElement(const wxXmlNode* node) {
    while (node && node->GetType() != wxXML_ELEMENT_NODE) node = node->GetNext();
    return node;
}

bool isText(const wxXmlNode& node) {
    return node.GetType() == wxXML_TEXT_NODE || node.GetType() == wxXML_CDATA_SECTION_NODE;
}

} // namespace

AnswerDocument::AnswerDocument(std::string_view bytes, const String& errorStart) : errorStart_(errorStart) {
    const QuietXMLLog quiet;
    wxMemoryInputStream stream(bytes.data(), bytes.size());
    // White space is kept because keys may begin with it, or consist of it.
    if (!isHarmless(bytes) || !document_.Load(stream, "UTF-8", wxXMLDOC_KEEP_WHITESPACE_NODES))
        throw CError(errorStart_ + "invalid XML.");
}

wxXmlNode* AnswerDocument::getRoot() const {
    wxXmlNode* const root = document_.GetRoot();
    if (!root) throw CError(errorStart_ + "no root element.");
    return root;
}

const wxXmlNode* getFirstElement(const wxXmlNode& parent) { return skipToElement(parent.GetChildren()); }

const wxXmlNode* getNextElement(const wxXmlNode& element) { return skipToElement(element.GetNext()); }

String getElementText(const wxXmlNode& element) {
    String text;
    for (const wxXmlNode* node = element.GetChildren(); node; node = node->GetNext())
        if (isText(*node)) text.append({node->GetContent().wx_str(), node->GetContent().length()});
    return text;
}

std::string_view toAnswerBytes(const char* data, int size) noexcept {
    return data && size > 0 ? std::string_view(data, static_cast<std::size_t>(size)) : std::string_view();
}

} // namespace vantra
