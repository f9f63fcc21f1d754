/// @file AnswerDocument.h
/// S3's XML answers as wxWidgets reads them.
#pragma once

#include <kel/String.h>

#include <string_view>

#include <wx/xml/xml.h>

namespace vantra {

/// An answer of the service, loaded.
///
/// What no answer of the service needs and a hostile one could do harm with counts as invalid: a document
/// type declaration, with the entities that it could declare; elements nested more than 100 deep, which could
/// exhaust the stack; and a text of more than 2048 line ends and references, or of some 1 MiB, which would
/// take wxWidgets a time that grows with the square of its length.
class AnswerDocument {
public:
    /// @param errorStart what the messages of both errors begin with.
    /// @throws kel::CError errorStart + "invalid XML."
    AnswerDocument(std::string_view bytes, const kel::String& errorStart);

    /// The outermost element, owned by this object. @throws kel::CError errorStart + "no root element."
    [[nodiscard]] wxXmlNode* getRoot() const;

private:
    kel::String errorStart_;
    wxXmlDocument document_;
};

/// The first, or the next, child node that is an element, null at the end.
[[nodiscard]] const wxXmlNode* getFirstElement(const wxXmlNode& parent);
[[nodiscard]] const wxXmlNode* getNextElement(const wxXmlNode& element);

/// The text directly in an element, put together where comments, CDATA sections or elements divide it.
[[nodiscard]] kel::String getElementText(const wxXmlNode& element);

/// The bytes of a public interface that gives their number as an `int`; none when it is negative.
[[nodiscard]] std::string_view toAnswerBytes(const char* data, int size) noexcept;

} // namespace vantra
