#include "mail/Boundary.h"

#include <array>
#include <charconv>
#include <string>

namespace vantra {

using kel::String;
using kel::uint64;

namespace {

void appendHexadecimal(std::string& text, uint64 number) {
    constexpr std::size_t mostDigits = 16;
    std::array<char, mostDigits> digits;
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16);
    text.append(digits.data(), result.ptr);
}

} // namespace

String makeBoundary(const std::function<uint64()>& rand64) {
    constexpr std::size_t fewestDigits = 10;
    std::string boundary;
    do {
        appendHexadecimal(boundary, rand64());
    } while (boundary.size() < fewestDigits);
    return String(boundary);
}

} // namespace vantra
