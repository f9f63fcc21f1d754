/// @file kel/XMLElement.h
/// A small tree for writing XML.
#pragma once

#include "kel/Array.h"
#include "kel/Base.h"
#include "kel/P.h"
#include "kel/String.h"

#include <string>
#include <utility>
#include <vector>

namespace kel {

/// An element with attributes in the order they were added, a text, and child elements.
///
/// Thread safety: one thread at a time, or any number of readers.
class KEL_API CXMLElement : public CBase {
public:
    /// Name and value.
    using Attribute = std::pair<String, String>;

    /// @param name must be an XML name; it is written as it is.
    explicit CXMLElement(const String& name);
    ~CXMLElement() override;

    /// As the constructor was given it.
    [[nodiscard]] const String& getName() const noexcept { return name_; }
    /// Adds an attribute, or replaces the value of the one of that name.
    void addAttribute(const String& name, const String& value);
    /// The value, or the empty text when there is no such attribute.
    [[nodiscard]] String getAttribute(const String& name) const;
    /// Whether there is an attribute of that name, the empty one included.
    [[nodiscard]] bool hasAttribute(const String& name) const;
    /// All of them, in the order in which their names were added.
    [[nodiscard]] const std::vector<Attribute>& getAttributes() const noexcept { return attributes_; }
    /// Replaces the text, which stands before the children.
    void setText(const String& text) { text_ = text; }
    /// Empty when none was set.
    [[nodiscard]] const String& getText() const noexcept { return text_; }
    /// Keeps a reference. The tree must stay a tree: no element may come to stand below itself.
    /// @throws CInvalidArgError if `child` is null.
    void addChild(CXMLElement* child);
    /// In the order in which they were added.
    [[nodiscard]] const TArray<P<CXMLElement>>& getChildren() const noexcept { return children_; }

    /// The element and all below it as XML 1.0: text first, then the children; each element starts on a line
    /// of its own, indented by two blanks a level; no line end follows the last. The result is well-formed
    /// for any text and attribute value: characters that XML 1.0 cannot hold become U+FFFD, and a carriage
    /// return is written as a reference.
    [[nodiscard]] String toXML() const;
    /// toXML() as a UTF-8 document: the XML declaration, the element, and a line end after each.
    [[nodiscard]] std::string toDocumentUTF8() const;

private:
    [[nodiscard]] const String* findAttribute(const String& name) const noexcept;
    void appendTo(String& out, int depth) const;

    String name_;
    std::vector<Attribute> attributes_;
    String text_;
    TArray<P<CXMLElement>> children_;
};

} // namespace kel
