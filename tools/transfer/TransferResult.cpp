#include "transfer/TransferResult.h"

#include "arguments/HiddenPassword.h"

namespace vantra::tool {

using kel::String;

namespace {

curl_off_t getInfo(const CNetRequest& request, CURLINFO info) {
    curl_off_t value = 0;
    curl_easy_getinfo(request.getHandle(), info, &value);
    return value;
}

} // namespace

CTransferResult::~CTransferResult() {
    try {
        if (request_.getResponseCode() != 0) result_.setInteger("status", request_.getResponseCode());
        if (request_.getResponseCodeDomain() == "http") addHTTP();
        addAmounts();
    } catch (...) {
        // Memory ran out; the verb itself is about to find out.
    }
}

void CTransferResult::addHTTP() {
    const char* url = nullptr;
    curl_easy_getinfo(request_.getHandle(), CURLINFO_EFFECTIVE_URL, &url);
    if (url) result_.setText("finalUrl", hidePasswords(String::fromUTF8Lax(url)));
    setHeaders(result_, request_);
}

void CTransferResult::addAmounts() {
    constexpr double microsecondsPerSecond = 1e6;
    result_.setInteger("sent", getInfo(request_, CURLINFO_SIZE_UPLOAD_T));
    result_.setInteger("received", getInfo(request_, CURLINFO_SIZE_DOWNLOAD_T));
    result_.setReal("seconds",
                    static_cast<double>(getInfo(request_, CURLINFO_TOTAL_TIME_T)) / microsecondsPerSecond);
}

void setHeaders(CJSONObject& result, const CNetRequest& request) {
    CJSONObject headers;
    for (const auto& [name, value] : request.getResponseHeaderMap())
        headers.setText(name.toUTF8().c_str(), value);
    if (!headers.isEmpty()) result.setObject("headers", headers);
}

} // namespace vantra::tool
