#include "vantra/S3Results.h"

#include "s3/AnswerDocument.h"

#include <kel/Error.h>
#include <kel/Number.h>

namespace vantra {

using kel::CError;
using kel::CInvalidArgError;
using kel::P;
using kel::String;
using kel::TBuffer;

namespace {

constexpr const char* listErrorStart = "Error parsing Amazon S3 'list objects' result: ";
constexpr const char* copyErrorStart = "Error parsing Amazon S3 'copy object' result: ";

std::string_view toBytes(const TBuffer<unsigned char>* data, const char* function) {
    if (!data) throw CInvalidArgError(function, "data must not be null");
    return {reinterpret_cast<const char*>(data->getData()), data->getUsed()};
}

bool parseIsTruncated(const String& text) {
    const String value = text.toLower();
    if (value == "true") return true;
    if (value == "false") return false;
    throw CError("Bad value for 'IsTruncated' S3 list objects result element: '" + value + "'");
}

} // namespace

CS3ListObjectsElement::CS3ListObjectsElement(const wxXmlNode* node) {
    const wxXmlNode* field = node ? getFirstElement(*node) : nullptr;
    for (; field; field = getNextElement(*field)) {
        const wxString& name = field->GetName();
        if (name == wxS("Key")) {
            key_ = getElementText(*field);
        } else if (name == wxS("LastModified")) {
            lastModified_ = getElementText(*field);
        } else if (name == wxS("ETag")) {
            eTag_ = getElementText(*field);
        } else if (name == wxS("Size")) {
            size_ = kel::parseInt64(getElementText(*field), false);
        }
    }
    if (key_.isEmpty()) throw CError("Invalid Amazon S3 list objects element: 'Key' field not defined.");
}

CS3ListObjectsElement::CS3ListObjectsElement(const CS3ListObjectsElement&) = default;
CS3ListObjectsElement::CS3ListObjectsElement(CS3ListObjectsElement&&) noexcept = default;
CS3ListObjectsElement& CS3ListObjectsElement::operator=(const CS3ListObjectsElement&) = default;
CS3ListObjectsElement& CS3ListObjectsElement::operator=(CS3ListObjectsElement&&) noexcept = default;
CS3ListObjectsElement::~CS3ListObjectsElement() = default;

CS3ListObjectsResult::CS3ListObjectsResult(const TBuffer<unsigned char>* data) {
    construct(AnswerDocument(toBytes(data, "CS3ListObjectsResult::CS3ListObjectsResult"), listErrorStart)
                  .getRoot());
}

CS3ListObjectsResult::CS3ListObjectsResult(const char* data, int size) {
    construct(AnswerDocument(toAnswerBytes(data, size), listErrorStart).getRoot());
}

CS3ListObjectsResult::CS3ListObjectsResult(wxXmlNode* root) { construct(root); }

CS3ListObjectsResult::CS3ListObjectsResult(const CS3ListObjectsResult&) = default;
CS3ListObjectsResult::CS3ListObjectsResult(CS3ListObjectsResult&&) noexcept = default;
CS3ListObjectsResult& CS3ListObjectsResult::operator=(const CS3ListObjectsResult&) = default;
CS3ListObjectsResult& CS3ListObjectsResult::operator=(CS3ListObjectsResult&&) noexcept = default;
CS3ListObjectsResult::~CS3ListObjectsResult() = default;

void CS3ListObjectsResult::construct(wxXmlNode* root) {
    if (!root) throw CError(String(listErrorStart) + "no root element.");
    if (root->GetName() != wxS("ListBucketResult"))
        throw CError(String(listErrorStart) + "root element is not ListBucketResult.");
    for (wxXmlNode* child = root->GetChildren(); child; child = child->GetNext()) {
        if (child->GetType() != wxXML_ELEMENT_NODE) continue;
        const wxString& name = child->GetName();
        if (name == wxS("Contents")) {
            objects_.push_back(new CS3ListObjectsElement(child));
        } else if (name == wxS("CommonPrefixes")) {
            parseCommonPrefixes(child);
        } else if (name == wxS("IsTruncated")) {
            truncated_ = parseIsTruncated(getElementText(*child));
        } else if (name == wxS("NextMarker")) {
            delimiteredNextMarker_ = getElementText(*child);
        }
    }
}

void CS3ListObjectsResult::parseCommonPrefixes(wxXmlNode* node) {
    for (const wxXmlNode* child = getFirstElement(*node); child; child = getNextElement(*child))
        if (child->GetName() == wxS("Prefix")) commonPrefixes_.push_back(getElementText(*child));
}

CS3CopyObjectResult::CS3CopyObjectResult(const TBuffer<unsigned char>* data) {
    construct(
        AnswerDocument(toBytes(data, "CS3CopyObjectResult::CS3CopyObjectResult"), copyErrorStart).getRoot());
}

CS3CopyObjectResult::CS3CopyObjectResult(const char* data, int size) {
    construct(AnswerDocument(toAnswerBytes(data, size), copyErrorStart).getRoot());
}

CS3CopyObjectResult::CS3CopyObjectResult(wxXmlNode* root) { construct(root); }

CS3CopyObjectResult::CS3CopyObjectResult(const CS3CopyObjectResult&) = default;
CS3CopyObjectResult::CS3CopyObjectResult(CS3CopyObjectResult&&) noexcept = default;
CS3CopyObjectResult& CS3CopyObjectResult::operator=(const CS3CopyObjectResult&) = default;
CS3CopyObjectResult& CS3CopyObjectResult::operator=(CS3CopyObjectResult&&) noexcept = default;
CS3CopyObjectResult::~CS3CopyObjectResult() = default;

void CS3CopyObjectResult::construct(wxXmlNode* root) {
    if (!root) throw CError(String(copyErrorStart) + "no root element.");
    if (root->GetName() == wxS("Error")) {
        errorResponse_ = new CS3ErrorResponse(root);
        return;
    }
    if (root->GetName() != wxS("CopyObjectResult"))
        throw CError(String(copyErrorStart) + "unknown root element '" + String(root->GetName()) + "'.");
    for (const wxXmlNode* field = getFirstElement(*root); field; field = getNextElement(*field)) {
        if (field->GetName() == wxS("LastModified")) {
            lastModified_ = getElementText(*field);
        } else if (field->GetName() == wxS("ETag")) {
            eTag_ = getElementText(*field);
        }
    }
}

} // namespace vantra
