#include "System.h"

#include <iconv.h>

namespace tooltest {

std::string nullDevice() { return "/dev/null"; }

std::size_t longArgumentLength() { return 100000; }

bool isUTF8(const std::string& bytes) {
    const iconv_t converter = iconv_open("UTF-32LE", "UTF-8");
    std::string text = bytes;
    std::string converted(text.size() * 4, '\0');
    char* input = text.data();
    char* output = converted.data();
    std::size_t inputLeft = text.size();
    std::size_t outputLeft = converted.size();
    const bool isValid =
        iconv(converter, &input, &inputLeft, &output, &outputLeft) != static_cast<std::size_t>(-1);
    iconv_close(converter);
    return isValid;
}

} // namespace tooltest
