/// What libcurl calls. Private to the library.
#pragma once

#include "vantra/NetRequest.h"

namespace vantra {

/// Functions of C shape that hand libcurl's calls to the request behind their data pointer.
struct CNetRequest::CallbackTrampolines {
    static std::size_t write(char* data, std::size_t size, std::size_t nmemb, void* request) noexcept;
    static std::size_t read(char* buffer, std::size_t size, std::size_t nmemb, void* request) noexcept;
    static int seek(void* request, curl_off_t offset, int origin) noexcept;
    static std::size_t header(char* line, std::size_t size, std::size_t nmemb, void* request) noexcept;
};

} // namespace vantra
