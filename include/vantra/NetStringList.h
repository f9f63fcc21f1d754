/// @file vantra/NetStringList.h
/// A list of text lines in the form in which libcurl takes them.
///
///     P<CNetStringList> commands = new CNetStringList();
///     commands->add("SITE UMASK 022");
///     request->setFTPCustomPreCommands(commands);
#pragma once

#include "vantra/Export.h"

#include <kel/Base.h>
#include <kel/P.h>
#include <kel/String.h>

#include <string_view>

struct curl_slist;

namespace vantra {

/// An ordered list of lines, kept as UTF-8 in a libcurl `curl_slist`. What is no character on the way in or
/// out (an unpaired surrogate, bytes that are no UTF-8) shows as U+FFFD.
///
/// Thread safety: a list and its iterators belong to one thread at a time.
class VANTRA_API CNetStringList : public kel::CBase {
public:
    class CIterator;

    CNetStringList() = default;
    CNetStringList& operator=(const CNetStringList&) = delete;
    ~CNetStringList() override;

    /// Appends a line. A line ends at its first NUL character. When libcurl has no memory for it, the list is
    /// empty afterwards.
    void add(const kel::String& entry);
    /// The same for a line that is UTF-8 already; nothing is checked or converted.
    void addUTF8(std::string_view entry);

    /// The list itself, still owned by this object; null when it is empty. The first add() changes it.
    [[nodiscard]] curl_slist* getSList() const noexcept { return slist_; }

    /// Walks the list as it is now. The list must not be changed or destroyed while the iterator is in use.
    [[nodiscard]] kel::P<CIterator> createIterator() const;

protected:
    /// Copies the lines, so that no two lists own one `curl_slist`.
    CNetStringList(const CNetStringList& other);

private:
    curl_slist* slist_ = nullptr;
    curl_slist* last_ = nullptr; // the end of the list, so that appending need not walk it
};

/// Visits the lines of a list in order.
///
///     P<CNetStringList::CIterator> lines = list->createIterator();
///     while (lines->next()) use(lines->getEntry());
class VANTRA_API CNetStringList::CIterator : public kel::CBase {
public:
    /// @param head not owned; may be null. The nodes must outlive the iterator.
    explicit CIterator(curl_slist* head) : head_(head), current_(head) {}
    CIterator(const CIterator&) = default;
    CIterator(CIterator&&) = default;
    CIterator& operator=(const CIterator&) = default;
    CIterator& operator=(CIterator&&) = default;
    ~CIterator() override;

    /// Goes to the first line, then to each next one. False at the end, as often as it is asked.
    bool next();
    /// Lets the following next() visit the first line again.
    void reset();
    /// The line visited last; empty before the first next() and after the end.
    [[nodiscard]] const kel::String& getEntry() const noexcept { return entry_; }

private:
    curl_slist* head_;
    curl_slist* current_;
    bool atStart_ = true;
    kel::String entry_;
};

} // namespace vantra
