/// How a request tells libcurl its options. Private to the library.
#pragma once

#include "vantra/NetRequest.h"

namespace vantra {

template <class Value>
void CNetRequest::setOption(CURLoption option, Value value) {
    clearErrorBuffer();
    const CURLcode result = curl_easy_setopt(handle_.get(), option, value);
    if (result != CURLE_OK) throwError(result, "", -1, "");
}

} // namespace vantra
