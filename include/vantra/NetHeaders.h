/// @file vantra/NetHeaders.h
/// A list of header fields, as a request sends them.
///
///     P<CNetHeaders> headers = new CNetHeaders();
///     headers->add("Accept", "text/plain");
///     request->setCustomHTTPHeaders(headers);
#pragma once

#include "vantra/Export.h"
#include "vantra/NetStringList.h"

#include <kel/Base.h>
#include <kel/Map.h>
#include <kel/P.h>
#include <kel/String.h>

namespace vantra {

/// An ordered list of header lines "Name: value", in UTF-8 as CNetStringList keeps them. White space is what
/// kel::isWhiteSpace says, and lower-casing changes ASCII letters only. Making one starts the library
/// (CGlobalInit).
///
/// Thread safety: a collection and its iterators belong to one thread at a time.
class VANTRA_API CNetHeaders : public kel::CBase {
public:
    class CIterator;

    CNetHeaders();
    CNetHeaders& operator=(const CNetHeaders&) = delete;
    ~CNetHeaders() override;

    /// Appends the line "name: value", both trimmed of white space at their ends. Nothing is checked: an
    /// empty name only fails when the line is split, one that holds ":" is split at it, and the line ends at
    /// its first NUL character. A value that is empty makes libcurl leave the header out of the request (or
    /// suppress its own header of that name).
    void add(const kel::String& name, const kel::String& value);

    /// The lines, still owned by this object; null when there are none (CURLOPT_HTTPHEADER).
    [[nodiscard]] curl_slist* getSList() const noexcept { return list_.getSList(); }

    /// Walks the fields as they are now. The collection must not be changed while the iterator is in use.
    [[nodiscard]] kel::P<CIterator> createIterator() const;

    /// Merges the fields into `map` under their lower-cased names; a field whose name is there already is
    /// appended to the value after a ",". @throws kel::CInvalidArgError as splitEntry, with the fields before
    /// the bad one merged.
    void fillMap(kel::TMap<kel::String, kel::String>& map) const;

    /// Splits a header line at its first ":" into name and value, both trimmed.
    /// @throws kel::CInvalidArgError "entry contains no ':'" or "name is empty"; the outputs are unchanged
    /// then.
    static void splitEntry(const kel::String& entry, kel::String& name, kel::String& value);

protected:
    CNetHeaders(const CNetHeaders& other);

private:
    CNetStringList list_;
};

/// Visits the fields of a collection in order.
class VANTRA_API CNetHeaders::CIterator : public kel::CBase {
public:
    /// @param head not owned; may be null. The nodes must outlive the iterator.
    explicit CIterator(curl_slist* head) : lines_(head) {}
    CIterator(const CIterator&) = default;
    CIterator(CIterator&&) = default;
    CIterator& operator=(const CIterator&) = default;
    CIterator& operator=(CIterator&&) = default;
    ~CIterator() override;

    /// Goes to the first field, then to each next one; false at the end, with name and value empty.
    /// @throws kel::CInvalidArgError as CNetHeaders::splitEntry, with name and value as before; the following
    /// next() goes on behind the bad line.
    bool next();
    /// Lets the following next() visit the first field again; name and value stay until then.
    void reset() { lines_.reset(); }
    /// @{
    /// Of the field visited last; empty before the first next().
    [[nodiscard]] const kel::String& getName() const noexcept { return name_; }
    [[nodiscard]] const kel::String& getValue() const noexcept { return value_; }
    /// @}

private:
    CNetStringList::CIterator lines_;
    kel::String name_;
    kel::String value_;
};

} // namespace vantra
