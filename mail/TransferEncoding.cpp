#include "vantra/MimeEncoding.h"

#include <sigil/Base64.h>

#include <array>
#include <cstddef>

namespace vantra {

using kel::P;
using kel::TBuffer;

namespace {

/// Writes quoted-printable text line by line.
class QuotedPrintableWriter {
public:
    explicit QuotedPrintableWriter(TBuffer<unsigned char>& out) : out_(out) {}

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
