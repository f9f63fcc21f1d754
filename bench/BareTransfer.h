/// @file BareTransfer.h
/// The same transfers on libcurl alone, for comparison.
#pragma once

#include <curl/curl.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// A libcurl easy handle with the callbacks and options that a request of the library has, doing the least
/// that can be of use to a caller: the body goes into a buffer or is dropped, header lines are counted.
class BareTransfer {
public:
    explicit BareTransfer(const std::string& url);
    BareTransfer(const BareTransfer&) = delete;
    BareTransfer& operator=(const BareTransfer&) = delete;

    void dropBody() { keepsBody_ = false; }
    /// To be called before each transfer.
    void prepare();
    /// Performs the transfer and throws std::runtime_error unless it gives status 200.
    void perform();
    /// Throws std::runtime_error unless the last transfer gave status 200.
    void check(CURLcode result) const;

    CURL* getHandle() const noexcept { return handle_.get(); }
    std::size_t getBodySize() const noexcept { return bodySize_; }

private:
    struct HandleDeleter {
        void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
    };

    static std::size_t onWrite(char* data, std::size_t size, std::size_t nmemb, void* self) noexcept;
    static std::size_t onRead(char* buffer, std::size_t size, std::size_t nmemb, void* self) noexcept;
    static int onSeek(void* self, curl_off_t offset, int origin) noexcept;
    static std::size_t onHeader(char* line, std::size_t size, std::size_t nmemb, void* self) noexcept;
    static int onDebug(CURL* handle, curl_infotype type, char* data, std::size_t size, void* self) noexcept;

    std::unique_ptr<CURL, HandleDeleter> handle_;
    char errorBuffer_[CURL_ERROR_SIZE] = {};
    std::vector<char> body_;
    std::size_t bodySize_ = 0;
    std::size_t headerLines_ = 0;
    bool keepsBody_ = true;
};

} // namespace bench
