/// @file RandomText.h
/// Texts of every kind of character, the same in each run.
#pragma once

#include <kel/String.h>

#include <cstddef>
#include <random>
#include <string>

namespace encodingtest {

/// Makes texts of ASCII (control characters and NUL included), of the characters that mean something in URLs
/// and of characters of every length in UTF-8.
class RandomText {
public:
    kel::String next(std::size_t maxLength) {
        std::u32string text(pick(maxLength + 1), U'\0');
        for (char32_t& c : text) c = nextCharacter();
        return kel::String::fromUTF32(text);
    }

private:
    std::size_t pick(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(engine_);
    }

    char32_t nextBetween(char32_t first, char32_t last) {
        return first + static_cast<char32_t>(pick(last - first + 1));
    }

    char32_t nextCharacter() {
        static constexpr std::u32string_view special = U"%+&=; /?#%%2fF0\"<>";
        switch (pick(7)) {
        case 0:
            return nextBetween(0, 0x7F);
        case 1:
            return nextBetween(0x80, 0x7FF);
        case 2:
            return nextBetween(0x800, 0xD7FF);
        case 3:
            return nextBetween(0xE000, 0xFFFF);
        case 4:
            return nextBetween(0x10000, 0x10FFFF);
        case 5:
            return special[pick(special.size())];
        default:
            return nextBetween(U'a', U'z');
        }
    }

    std::mt19937 engine_{20190401};
};

} // namespace encodingtest
