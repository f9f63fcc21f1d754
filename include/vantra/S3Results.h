/// @file vantra/S3Results.h
/// Answers of Amazon S3.
///
///     P<CS3ListObjectsResult> page = client->listObjects(request, "bucket", "photos/", "", "", 100);
///     for (const P<CS3ListObjectsElement>& object : page->getObjects()) use(object->getKey());
///
/// A field's value is the text in its element; of a field that occurs twice the last one counts, and elements
/// of other names are ignored. What makes a document invalid beside its syntax is the same as for
/// CS3ErrorResponse.
#pragma once

#include "vantra/Export.h"
#include "vantra/S3Error.h"

#include <kel/Array.h>
#include <kel/Base.h>
#include <kel/Buffer.h>
#include <kel/Int64.h>
#include <kel/P.h>
#include <kel/String.h>

class wxXmlNode;

namespace vantra {

/// One object of a listing.
///
/// Thread safety, here and below: not changed after it was made; any thread may read it.
class VANTRA_API CS3ListObjectsElement : public kel::CBase {
public:
    /// Reads a "Contents" element, which stays the caller's.
    /// @throws kel::CError "Invalid Amazon S3 list objects element: 'Key' field not defined." for an absent
    /// or empty key and for null; as kel::parseInt64 for a size that is no number.
    explicit CS3ListObjectsElement(const wxXmlNode* node);
    CS3ListObjectsElement(const CS3ListObjectsElement&);
    CS3ListObjectsElement(CS3ListObjectsElement&&) noexcept;
    CS3ListObjectsElement& operator=(const CS3ListObjectsElement&);
    CS3ListObjectsElement& operator=(CS3ListObjectsElement&&) noexcept;
    ~CS3ListObjectsElement() override;

    /// The object's name; never empty.
    [[nodiscard]] const kel::String& getKey() const noexcept { return key_; }
    /// The time as the service wrote it, such as "2009-10-12T17:50:30.000Z"; empty when it did not.
    [[nodiscard]] const kel::String& getLastModified() const noexcept { return lastModified_; }
    /// As the service wrote it, quotation marks included; empty when it did not.
    [[nodiscard]] const kel::String& getETag() const noexcept { return eTag_; }
    /// In bytes; 0 when the service named no size.
    [[nodiscard]] kel::int64 getSize() const noexcept { return size_; }

private:
    kel::String key_;
    kel::String lastModified_;
    kel::String eTag_;
    kel::int64 size_ = 0;
};

/// One page of a listing.
class VANTRA_API CS3ListObjectsResult : public kel::CBase {
public:
    /// Reads the answer in a buffer, usually a request's default receive buffer.
    /// @throws kel::CInvalidArgError "data must not be null"; as the form for bytes.
    explicit CS3ListObjectsResult(const kel::TBuffer<unsigned char>* data);
    /// Reads the answer in `size` bytes at `data`.
    /// @throws kel::CError "Error parsing Amazon S3 'list objects' result: invalid XML.", the same with "no
    /// root element.", or as the form for a node.
    CS3ListObjectsResult(const char* data, int size);
    /// Reads a "ListBucketResult" element, which stays the caller's; null counts as a missing root element.
    /// @throws kel::CError "Error parsing Amazon S3 'list objects' result: root element is not
    /// ListBucketResult."; "Bad value for 'IsTruncated' S3 list objects result element: 'TEXT'" unless that
    /// is "true" or "false" in any case; as CS3ListObjectsElement.
    explicit CS3ListObjectsResult(wxXmlNode* root);
    CS3ListObjectsResult(const CS3ListObjectsResult&);
    CS3ListObjectsResult(CS3ListObjectsResult&&) noexcept;
    CS3ListObjectsResult& operator=(const CS3ListObjectsResult&);
    CS3ListObjectsResult& operator=(CS3ListObjectsResult&&) noexcept;
    ~CS3ListObjectsResult() override;

    /// Whether more follows; false when the service does not say.
    [[nodiscard]] bool isTruncated() const noexcept { return truncated_; }
    /// Where the next page starts. The service names it only in listings with a delimiter; empty otherwise.
    [[nodiscard]] kel::String getDelimiteredNextMarker() const { return delimiteredNextMarker_; }
    /// In the order of the answer, which is that of their keys' UTF-8 bytes.
    [[nodiscard]] const kel::TArray<kel::P<CS3ListObjectsElement>>& getObjects() const noexcept {
        return objects_;
    }
    /// In the order of the answer: what the keys up to and including the delimiter have in common. The
    /// objects under them are not listed.
    [[nodiscard]] const kel::TArray<kel::String>& getCommonPrefixes() const noexcept {
        return commonPrefixes_;
    }

protected:
    /// Reads the element, for all constructors.
    void construct(wxXmlNode* root);
    /// Appends the prefixes of a "CommonPrefixes" element.
    void parseCommonPrefixes(wxXmlNode* node);

private:
    bool truncated_ = false;
    kel::String delimiteredNextMarker_;
    kel::TArray<kel::P<CS3ListObjectsElement>> objects_;
    kel::TArray<kel::String> commonPrefixes_;
};

/// The answer to a copy, which may be an error in spite of an HTTP status of success.
class VANTRA_API CS3CopyObjectResult : public kel::CBase {
public:
    /// Reads the answer in a buffer, usually a request's default receive buffer.
    /// @throws kel::CInvalidArgError "data must not be null"; as the form for bytes.
    explicit CS3CopyObjectResult(const kel::TBuffer<unsigned char>* data);
    /// Reads the answer in `size` bytes at `data`.
    /// @throws kel::CError "Error parsing Amazon S3 'copy object' result: invalid XML.", the same with "no
    /// root element.", or as the form for a node.
    CS3CopyObjectResult(const char* data, int size);
    /// Reads a "CopyObjectResult" or an "Error" element, which stays the caller's; null counts as a missing
    /// root element.
    /// @throws kel::CError "Error parsing Amazon S3 'copy object' result: unknown root element 'NAME'."
    explicit CS3CopyObjectResult(wxXmlNode* root);
    CS3CopyObjectResult(const CS3CopyObjectResult&);
    CS3CopyObjectResult(CS3CopyObjectResult&&) noexcept;
    CS3CopyObjectResult& operator=(const CS3CopyObjectResult&);
    CS3CopyObjectResult& operator=(CS3CopyObjectResult&&) noexcept;
    ~CS3CopyObjectResult() override;

    /// Whether the answer was an error document.
    [[nodiscard]] bool hadError() const noexcept { return errorResponse_ != nullptr; }
    /// Null when there was no error.
    [[nodiscard]] kel::P<CS3ErrorResponse> getErrorResponse() const { return errorResponse_; }
    /// Of the copy, as the service wrote it; empty with an error.
    [[nodiscard]] kel::String getLastModified() const { return lastModified_; }
    /// Of the copy, as the service wrote it; empty with an error.
    [[nodiscard]] kel::String getETag() const { return eTag_; }

protected:
    /// Reads the element, for all constructors.
    void construct(wxXmlNode* root);

private:
    kel::P<CS3ErrorResponse> errorResponse_;
    kel::String lastModified_;
    kel::String eTag_;
};

} // namespace vantra
