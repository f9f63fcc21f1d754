#include "support/FlatJson.h"

#include <charconv>
#include <stdexcept>
#include <utility>

namespace testsupport {

namespace {

/// Reads the strings and the numbers of a flat JSON object.
class FlatJsonReader {
public:
    explicit FlatJsonReader(std::string_view text) : text_(text) {}

    std::map<std::string, std::string> read() {
        std::map<std::string, std::string> fields;
        expect('{');
        do {
            std::string name = readString();
            expect(':');
            fields[std::move(name)] = peek() == '"' ? readString() : readNumber();
        } while (accept(','));
        expect('}');
        return fields;
    }

private:
    char peek() const {
        if (position_ >= text_.size()) fail();
        return text_[position_];
    }

    char next() {
        const char character = peek();
        ++position_;
        return character;
    }

    bool accept(char character) {
        if (peek() != character) return false;
        ++position_;
        return true;
    }

    void expect(char character) {
        if (!accept(character)) fail();
    }

    std::string readString() {
        std::string value;
        expect('"');
        for (char character = next(); character != '"'; character = next()) {
            value += character == '\\' ? readEscape() : character;
        }
        return value;
    }

    /// The short escapes, and \u00XX for the other control characters.
    char readEscape() {
        switch (const char kind = next()) {
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        case 'b':
            return '\b';
        case 'f':
            return '\f';
        case 'u':
            return readHexadecimal();
        default:
            return kind;
        }
    }

    char readHexadecimal() {
        constexpr std::size_t digitCount = 4;
        if (text_.size() - position_ < digitCount) fail();
        const char* first = text_.data() + position_;
        unsigned char code = 0;
        if (std::from_chars(first, first + digitCount, code, 16).ptr != first + digitCount) fail();
        position_ += digitCount;
        return static_cast<char>(code);
    }

    std::string readNumber() {
        const std::size_t end = text_.find_first_not_of("0123456789", position_);
        if (end == position_ || end == std::string_view::npos) fail();
        std::string digits(text_.substr(position_, end - position_));
        position_ = end;
        return digits;
    }

    [[noreturn]] void fail() const {
        throw std::runtime_error("not a flat JSON object: " + std::string(text_));
    }

    std::string_view text_;
    std::size_t position_ = 0;
};

} // namespace

std::map<std::string, std::string> parseFlatJson(std::string_view text) {
    return FlatJsonReader(text).read();
}

} // namespace testsupport
