#include "vantra/NetRequest.h"

#include <charconv>

namespace vantra {

namespace {

/// Whether the transfer's present connection is encrypted.
bool hasTLS(CURL* handle) {
    const curl_tlssessioninfo* session = nullptr;
    return curl_easy_getinfo(handle, CURLINFO_TLS_SSL_PTR, &session) == CURLE_OK && session &&
           session->internals;
}

/// The code of a reply's last line that refuses something (RFC 959 §4.2), or 0.
int getRefusalCode(std::string_view reply) {
    const bool isRefusal = reply.size() > 3 && (reply[0] == '4' || reply[0] == '5') && reply[3] == ' ';
    int code = 0;
    if (isRefusal) std::from_chars(reply.data(), reply.data() + 3, code);
    return code;
}

/// Has libcurl go on at once. When the server tells the port of a data connection as quickly as it is asked
/// for it, libcurl 7.88 waits for nothing until it connects, which in curl_easy_perform takes a second.
void hurry(CURL* handle) {
    curl_easy_pause(handle, CURLPAUSE_RECV);
    curl_easy_pause(handle, CURLPAUSE_CONT);
}

} // namespace

/// libcurl 7.88 takes a refused transfer over TLS, whose data connection ends before it begins, for a failure
/// to open that connection, tries once more, and keeps a control connection on which one reply too many is
/// waiting. The next transfer would take the refusal of one command for the answer to another, and could
/// store a file in the wrong directory. So that connection is not kept.
void CNetRequest::watchFTPReply(std::string_view line) {
    if (!url_.startsWith(L"ftp")) return;
    if (line.starts_with("227 ") || line.starts_with("229 ")) {
        hasFTPDataConnection_ = true;
        hurry(handle_.get());
    }
    const int refusalCode = hasFTPDataConnection_ && ftpRefusalCode_ == 0 ? getRefusalCode(line) : 0;
    if (refusalCode == 0 || !hasTLS(handle_.get())) return;
    if (curl_easy_setopt(handle_.get(), CURLOPT_FORBID_REUSE, 1L) == CURLE_OK) ftpRefusalCode_ = refusalCode;
}

void CNetRequest::letConnectionBeReused() {
    hasFTPDataConnection_ = false;
    if (ftpRefusalCode_ == 0) return;
    ftpRefusalCode_ = 0;
    curl_easy_setopt(handle_.get(), CURLOPT_FORBID_REUSE, forbidsReuse_ ? 1L : 0L);
}

} // namespace vantra
