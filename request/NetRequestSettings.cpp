#include "request/OptionSetter.h"
#include "vantra/NetRequest.h"
#include "vantra/ProxySettings.h"

#include <algorithm>
#include <limits>

namespace vantra {

using kel::CInvalidArgError;
using kel::CTimeSpan;
using kel::int64;
using kel::String;

namespace {

/// The blocks of a hundred that libcurl numbers its options in tell the type of their value.
enum class OptionValue { Long, Pointer, Offset };

OptionValue getOptionValue(CURLoption option) {
    const int block = static_cast<int>(option) / 10000 * 10000;
    if (block == CURLOPTTYPE_LONG) return OptionValue::Long;
    if (block == CURLOPTTYPE_OFF_T) return OptionValue::Offset;
    return OptionValue::Pointer;
}

/// Whether the option's value is a text that libcurl copies. Any other pointer it keeps as it is, and would
/// use when the text is gone.
bool takesText(CURLoption option) {
    if (getOptionValue(option) != OptionValue::Pointer) return false;
    const curl_easyoption* description = curl_easy_option_by_id(option);
    return !description || description->type == CURLOT_STRING; // libcurl itself refuses what it does not know
}

/// libcurl would take a text only up to a NUL, and so, say, another host than the caller named.
void checkText(const String& text) {
    if (text.view().find(L'\0') != std::wstring_view::npos)
        throw CInvalidArgError("CNetRequest::setOptionString", "text contains a NUL character");
}

/// `long` has 32 bits on some platforms: a longer time is as good as their longest.
long toLong(int64 value) {
    return static_cast<long>(
        std::clamp<int64>(value, std::numeric_limits<long>::min(), std::numeric_limits<long>::max()));
}

bool startsWithScheme(const String& lowerCasedURL, std::wstring_view scheme) {
    return lowerCasedURL.startsWith(scheme);
}

/// Long enough for every scheme this library tells apart, so that a long URL need not be copied.
String getLowerCasedURLStart(const String& url) { return url.substr(0, 8).toLower(); }

} // namespace

void CNetRequest::setURL(const String& url) {
    setText(CURLOPT_URL, url);
    url_ = url;
    const String start = getLowerCasedURLStart(url);
    isHTTP_ = startsWithScheme(start, L"http:") || startsWithScheme(start, L"https:");
}

String CNetRequest::getResponseCodeDomain() const {
    const String start = getLowerCasedURLStart(url_);
    if (startsWithScheme(start, L"http:") || startsWithScheme(start, L"https:")) return "http";
    if (startsWithScheme(start, L"ftp:") || startsWithScheme(start, L"ftps:") ||
        startsWithScheme(start, L"sftp:"))
        return "ftp";
    if (startsWithScheme(start, L"smtp:") || startsWithScheme(start, L"smtps:")) return "smtp";
    return "";
}

void CNetRequest::setHTTPMethod(const String& method) {
    const bool isGet = method == "GET";
    const bool isHead = method == "HEAD";
    const bool isPut = method == "PUT";
    const bool isPost = method == "POST";
    const bool isStandard = isGet || isHead || isPut || isPost || method.isEmpty();
    checkText(method); // before anything is changed
    if (isStandard) setOption(CURLOPT_CUSTOMREQUEST, static_cast<const char*>(nullptr));
    if (!isGet) setOption(CURLOPT_HTTPGET, 0L);
    if (!isHead) setOption(CURLOPT_NOBODY, 0L);
    if (!isPut) {
        setOption(CURLOPT_UPLOAD, 0L);
        upload_ = false;
    }
    if (!isPost) {
        setOption(CURLOPT_POST, 0L);
        setOption(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(0));
    }
    if (isPut) {
        setOption(CURLOPT_UPLOAD, 1L);
        upload_ = true;
    } else if (isPost) {
        setOption(CURLOPT_POST, 1L);
        setOption(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(sendDataSize_));
    } else if (isGet) {
        setOption(CURLOPT_HTTPGET, 1L);
    } else if (isHead) {
        setOption(CURLOPT_NOBODY, 1L);
    } else if (!isStandard) {
        setText(CURLOPT_CUSTOMREQUEST, method);
    }
    method_ = method;
}

void CNetRequest::setTimeoutOption(CURLoption option, const CTimeSpan& timeout) {
    // libcurl would read a negative number as an enormous one.
    if (timeout < CTimeSpan()) throwError(CURLE_BAD_FUNCTION_ARGUMENT, "", -1, "the time is negative");
    setOption(option, timeout.isInfinite() ? 0L : toLong(timeout.getMilliseconds()));
}

void CNetRequest::setConnectTimeout(const CTimeSpan& timeout) {
    setTimeoutOption(CURLOPT_CONNECTTIMEOUT_MS, timeout);
}

void CNetRequest::setFullRequestTimeout(const CTimeSpan& timeout) {
    setTimeoutOption(CURLOPT_TIMEOUT_MS, timeout);
}

void CNetRequest::setLowSpeedLimit(int bytesPerSecond, const CTimeSpan& time) {
    constexpr int64 microsecondsPerSecond = 1000000;
    const int64 microseconds = time.isInfinite() ? 0 : time.getMicroseconds();
    const int64 wholeSeconds = microseconds / microsecondsPerSecond;
    const int64 startedSecond = microseconds % microsecondsPerSecond > 0 ? 1 : 0;
    setOption(CURLOPT_LOW_SPEED_LIMIT, static_cast<long>(bytesPerSecond));
    // libcurl counts in milliseconds, in a `long` too.
    constexpr int64 longestTime = std::numeric_limits<long>::max() / 1000;
    setOption(CURLOPT_LOW_SPEED_TIME, toLong(std::min(wholeSeconds + startedSecond, longestTime)));
}

void CNetRequest::setFollowRedirects(bool follow) { setOption(CURLOPT_FOLLOWLOCATION, follow ? 1L : 0L); }

void CNetRequest::setKeepPostOnRedirect(bool keep) {
    setOption(CURLOPT_POSTREDIR, keep ? static_cast<long>(CURL_REDIR_POST_ALL) : 0L);
}

void CNetRequest::setSSLVerifyPeer(bool verify) { setOption(CURLOPT_SSL_VERIFYPEER, verify ? 1L : 0L); }

void CNetRequest::setRootCertBundlePath(const kel::TPathImpl<kel::CWindowsPathTraits>& path) {
    setText(CURLOPT_CAINFO, path.getText());
}

void CNetRequest::setHTTPAuthMethods(unsigned int methods) {
    // CURLAUTH_ONLY is the topmost bit of 32: as a `long` of 32 bits it is negative, which is what libcurl
    // expects.
    setOption(CURLOPT_HTTPAUTH, static_cast<long>(methods));
}

void CNetRequest::setUserName(const String& name) { setText(CURLOPT_USERNAME, name); }

void CNetRequest::setUserPassword(const String& password) { setText(CURLOPT_PASSWORD, password); }

void CNetRequest::setProxy(const String& proxy) { setText(CURLOPT_PROXY, proxy); }

void CNetRequest::setProxyForCurrentURLFromUserSettings() {
    setProxy(CProxySettings::getUserSettings()->getProxyForURL(url_));
}

void CNetRequest::setUpload(bool upload) {
    setOption(CURLOPT_UPLOAD, upload ? 1L : 0L);
    upload_ = upload;
}

void CNetRequest::setFTPUseSSL(int level) { setOptionInt(CURLOPT_USE_SSL, level); }

void CNetRequest::setFTPCreateMissingDirs(int mode) { setOptionInt(CURLOPT_FTP_CREATE_MISSING_DIRS, mode); }

void CNetRequest::setFTPFileMethod(int method) { setOptionInt(CURLOPT_FTP_FILEMETHOD, method); }

void CNetRequest::setFTPListOverrideCommand(const String& command) {
    if (command.isEmpty()) {
        setOption(CURLOPT_CUSTOMREQUEST, static_cast<const char*>(nullptr));
    } else {
        setText(CURLOPT_CUSTOMREQUEST, command);
    }
}

void CNetRequest::setFTPCustomPreCommands(CNetStringList* commands) {
    setOption(CURLOPT_PREQUOTE, commands ? commands->getSList() : nullptr);
    ftpPreCommands_ = commands;
}

void CNetRequest::setFTPCustomPostCommands(CNetStringList* commands) {
    setOption(CURLOPT_POSTQUOTE, commands ? commands->getSList() : nullptr);
    ftpPostCommands_ = commands;
}

void CNetRequest::setOptionInt(CURLoption option, int value) { setOptionInt64(option, value); }

void CNetRequest::setOptionInt64(CURLoption option, int64 value) {
    switch (getOptionValue(option)) {
    case OptionValue::Long:
        setOption(option, toLong(value));
        if (option == CURLOPT_FORBID_REUSE) forbidsReuse_ = value != 0;
        break;
    case OptionValue::Offset:
        setOption(option, static_cast<curl_off_t>(value));
        break;
    case OptionValue::Pointer:
        throwError(CURLE_BAD_FUNCTION_ARGUMENT, "", -1, "the option takes no number");
    }
}

void CNetRequest::setOptionPtr(CURLoption option, void* value) {
    if (getOptionValue(option) != OptionValue::Pointer)
        throwError(CURLE_BAD_FUNCTION_ARGUMENT, "", -1, "the option takes no pointer");
    setOption(option, value);
}

void CNetRequest::setOptionString(CURLoption option, const String& value) {
    if (option == CURLOPT_POSTFIELDS || option == CURLOPT_COPYPOSTFIELDS) {
        // The text's own length holds: libcurl would read on behind its end for one set before that is
        // longer.
        checkText(value);
        setOption(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(-1));
        setText(CURLOPT_COPYPOSTFIELDS, value);
        return;
    }
    if (!takesText(option)) throwError(CURLE_BAD_FUNCTION_ARGUMENT, "", -1, "the option takes no text");
    setText(option, value);
}

void CNetRequest::setText(CURLoption option, const String& value) {
    checkText(value);
    setOption(option, value.toUTF8().c_str());
}

void CNetRequest::setSendDataSize(int64 size) {
    setOption(CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(size));
    if (method_ == "POST") setOption(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(size));
    sendDataSize_ = size;
}

} // namespace vantra
