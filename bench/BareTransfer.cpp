#include "BareTransfer.h"

#include <stdexcept>

namespace bench {

BareTransfer::BareTransfer(const std::string& url) : handle_(curl_easy_init()) {
    CURL* const handle = handle_.get();
    if (!handle) throw std::runtime_error("curl_easy_init failed");
    curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, errorBuffer_);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &onWrite);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(handle, CURLOPT_READFUNCTION, &onRead);
    curl_easy_setopt(handle, CURLOPT_READDATA, this);
    curl_easy_setopt(handle, CURLOPT_SEEKFUNCTION, &onSeek);
    curl_easy_setopt(handle, CURLOPT_SEEKDATA, this);
    curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &onHeader);
    curl_easy_setopt(handle, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(handle, CURLOPT_DEBUGFUNCTION, &onDebug);
    curl_easy_setopt(handle, CURLOPT_DEBUGDATA, this);
    curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT_MS, 30000L);
    curl_easy_setopt(handle, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(handle, CURLOPT_LOW_SPEED_TIME, 60L);
    curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
}

void BareTransfer::prepare() {
    body_.clear();
    bodySize_ = 0;
    headerLines_ = 0;
}

void BareTransfer::perform() {
    prepare();
    check(curl_easy_perform(handle_.get()));
}

void BareTransfer::check(CURLcode result) const {
    if (result != CURLE_OK) throw std::runtime_error(curl_easy_strerror(result));
    long status = 0;
    curl_easy_getinfo(handle_.get(), CURLINFO_RESPONSE_CODE, &status);
    if (status != 200) throw std::runtime_error("HTTP status " + std::to_string(status));
}

std::size_t BareTransfer::onWrite(char* data, std::size_t size, std::size_t nmemb, void* self) noexcept {
    auto* const transfer = static_cast<BareTransfer*>(self);
    const std::size_t length = size * nmemb;
    if (transfer->keepsBody_) transfer->body_.insert(transfer->body_.end(), data, data + length);
    transfer->bodySize_ += length;
    return length;
}

std::size_t BareTransfer::onRead(char* /*buffer*/, std::size_t /*size*/, std::size_t /*nmemb*/,
                                 void* /*self*/) noexcept {
    return 0;
}

int BareTransfer::onSeek(void* /*self*/, curl_off_t /*offset*/, int /*origin*/) noexcept {
    return CURL_SEEKFUNC_FAIL;
}

std::size_t BareTransfer::onHeader(char* /*line*/, std::size_t size, std::size_t nmemb, void* self) noexcept {
    ++static_cast<BareTransfer*>(self)->headerLines_;
    return size * nmemb;
}

int BareTransfer::onDebug(CURL* /*handle*/, curl_infotype /*type*/, char* /*data*/, std::size_t /*size*/,
                          void* /*self*/) noexcept {
    return 0;
}

} // namespace bench
