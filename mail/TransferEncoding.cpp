#include "vantra/MimeEncoding.h"

#include <sigil/Base64.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace vantra {

using kel::P;
using kel::TBuffer;

namespace {

/// Writes quoted-printable text line by line.
class QuotedPrintableWriter {
public:
    explicit QuotedPrintableWriter(TBuffer<unsigned char>& out) : out_(out) {}

    /// How many bytes fit on the line that need not be its last.
    [[nodiscard]] std::size_t getRoom() const noexcept {
        return lineLength - 1 - std::min(length_, lineLength - 1);
    }

    /// @param length up to getRoom().
    void writeLiterals(const unsigned char* bytes, std::size_t length) {
        std::memcpy(line_.data() + length_, bytes, length);
        length_ += length;
    }

    /// @param endsLine whether a line break or the end of the data follows, so that no "=" needs room.
    void writeLiteral(unsigned char byte, bool endsLine) {
        makeRoom(1, endsLine);
        put(byte);
    }

    void writeEscaped(unsigned char byte, bool endsLine) {
        static constexpr char digits[] = "0123456789ABCDEF";
        makeRoom(3, endsLine);
        put('=');
        put(static_cast<unsigned char>(digits[byte >> 4U]));
        put(static_cast<unsigned char>(digits[byte & 0xFU]));
    }

    void breakLine() {
        put('\r');
        put('\n');
        flush();
    }

    void flush() {
        out_.append(line_.data(), length_);
        length_ = 0;
    }

private:
    static constexpr std::size_t lineLength = 76;

    void makeRoom(std::size_t count, bool endsLine) {
        if (length_ + count <= (endsLine ? lineLength : lineLength - 1)) return;
        put('=');
        breakLine();
    }

    void put(unsigned char byte) { line_[length_++] = byte; }

    TBuffer<unsigned char>& out_;
    std::array<unsigned char, lineLength + 2> line_{}; // with its CR LF
    std::size_t length_ = 0;
};

constexpr bool isPrintable(unsigned char byte) noexcept { return byte > ' ' && byte <= '~' && byte != '='; }

constexpr bool isBlank(unsigned char byte) noexcept { return byte == ' ' || byte == '\t'; }

/// Bytes that stand for themselves in the middle of a line.
constexpr std::array<bool, 256> literalBytes = [] {
    std::array<bool, 256> literal{};
    for (std::size_t i = 0; i < literal.size(); ++i) {
        const auto byte = static_cast<unsigned char>(i);
        literal[i] = isPrintable(byte) || isBlank(byte);
    }
    return literal;
}();

/// The number of bytes, up to `most`, that are literal wherever the line ends: a blank is not the last one.
std::size_t measureLiterals(const unsigned char* bytes, std::size_t most) noexcept {
    std::size_t length = 0;
    while (length < most && literalBytes[bytes[length]]) ++length;
    while (length > 0 && isBlank(bytes[length - 1])) --length;
    return length;
}

} // namespace

P<TBuffer<unsigned char>> encodeBase64Lines(const TBuffer<unsigned char>& bytes) {
    P<TBuffer<unsigned char>> lines = new TBuffer<unsigned char>();
    sigil::appendBase64Lines(*lines, bytes.getData(), bytes.getUsed());
    return lines;
}

P<TBuffer<unsigned char>> encodeQuotedPrintable(const TBuffer<unsigned char>& bytes) {
    P<TBuffer<unsigned char>> text = new TBuffer<unsigned char>();
    text->reserve(bytes.getUsed());
    QuotedPrintableWriter writer(*text);
    const unsigned char* at = bytes.begin();
    const unsigned char* const end = bytes.end();
    const auto isLineBreak = [end](const unsigned char* position) {
        return end - position >= 2 && position[0] == '\r' && position[1] == '\n';
    };
    while (at != end) {
        const std::size_t room = std::min(writer.getRoom(), static_cast<std::size_t>(end - at));
        if (const std::size_t literals = measureLiterals(at, room); literals > 0) {
            writer.writeLiterals(at, literals);
            at += literals;
            continue;
        }
        if (isLineBreak(at)) {
            writer.breakLine();
            at += 2;
            continue;
        }
        const unsigned char byte = *at++;
        const bool endsLine = at == end || isLineBreak(at);
        if (isPrintable(byte) || (isBlank(byte) && !endsLine)) {
            writer.writeLiteral(byte, endsLine);
        } else {
            writer.writeEscaped(byte, endsLine);
        }
    }
    writer.flush();
    return text;
}

} // namespace vantra
