#include <curl/curl.h>

#include "vantra/NetStringList.h"

#include <kel/Error.h>

namespace vantra {

using kel::P;
using kel::String;

CNetStringList::CNetStringList(const CNetStringList& other) : CBase(other) {
    for (const curl_slist* node = other.slist_; node; node = node->next) addUTF8(node->data);
}

CNetStringList::~CNetStringList() {
    try {
        curl_slist_free_all(slist_);
    } catch (...) {
        kel::onExceptionInDestructorIgnored("vantra::CNetStringList");
    }
}

void CNetStringList::add(const String& entry) { addUTF8(entry.toUTF8()); }

void CNetStringList::addUTF8(std::string_view entry) {
    // libcurl wants a terminated text; short lines, the usual case, are terminated on the stack.
    char terminated[256];
    std::string longEntry;
    const char* text = terminated;
    if (entry.size() < sizeof terminated) {
        terminated[entry.copy(terminated, entry.size())] = 0;
    } else {
        longEntry = entry;
        text = longEntry.c_str();
    }

    // Appending to the last node spares libcurl the walk from the first.
    curl_slist* appendedTo = curl_slist_append(last_, text);
    if (!appendedTo) {
        curl_slist_free_all(slist_);
        slist_ = last_ = nullptr;
        return;
    }
    if (!slist_) slist_ = appendedTo;
    last_ = appendedTo->next ? appendedTo->next : appendedTo;
}

P<CNetStringList::CIterator> CNetStringList::createIterator() const { return new CIterator(slist_); }

CNetStringList::CIterator::~CIterator() = default;

bool CNetStringList::CIterator::next() {
    if (atStart_) {
        atStart_ = false;
    } else if (current_) {
        current_ = current_->next;
    }
    if (!current_) {
        entry_.clear();
        return false;
    }
    if (!String::tryFromUTF8(current_->data, entry_)) entry_ = String::fromUTF8Lax(current_->data);
    return true;
}

void CNetStringList::CIterator::reset() {
    current_ = head_;
    atStart_ = true;
}

} // namespace vantra
