#include "kel/MemoryStream.h"
#include "kel/Error.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <string_view>

namespace {

using Bytes = kel::TBuffer<unsigned char>;

kel::P<Bytes> makeBuffer(std::string_view content) {
    return new Bytes(reinterpret_cast<const unsigned char*>(content.data()), content.size());
}

std::string toText(const Bytes& buffer) {
    return {reinterpret_cast<const char*>(buffer.getData()), buffer.getUsed()};
}

std::string read(kel::IInStream& stream, std::size_t maxLength) {
    std::string text(maxLength, '?');
    text.resize(stream.read(text.data(), maxLength));
    return text;
}

template <class Stream>
void expectSeekRefused(Stream& stream, kel::int64 position) {
    const kel::int64 before = stream.getPosition();
    try {
        stream.seek(position);
        ADD_FAILURE() << "position " << position << " was not refused";
    } catch (const kel::CError& error) {
        EXPECT_EQ(error.getMessage(), "Invalid stream position: " + kel::String::fromInt(position) + ".");
    }
    EXPECT_EQ(stream.getPosition(), before);
}

template <class Stream>
void expectSeekRefusedOutside(Stream& stream, kel::int64 size) {
    expectSeekRefused(stream, -1);
    expectSeekRefused(stream, INT64_MIN);
    expectSeekRefused(stream, size + 1);
    expectSeekRefused(stream, INT64_MAX);
}

TEST(MemoryInStream, ReadsTheCallersBytesInPlace) {
    char bytes[] = "abcdef";
    const kel::P<kel::CMemoryInStream> stream = new kel::CMemoryInStream(bytes, 6);
    EXPECT_EQ(stream->getSize(), 6);
    EXPECT_EQ(stream->getPosition(), 0);
    EXPECT_EQ(read(*stream, 4), "abcd");
    EXPECT_EQ(stream->getPosition(), 4);
    bytes[4] = 'E';
    EXPECT_EQ(read(*stream, 4), "Ef");
    EXPECT_EQ(stream->getPosition(), 6);
    EXPECT_EQ(read(*stream, 4), "");
    EXPECT_EQ(stream->getPosition(), 6);
}

TEST(MemoryInStream, ReadsNulBytes) {
    kel::CMemoryInStream stream("a\0b", 3);
    EXPECT_EQ(read(stream, 10), std::string("a\0b", 3));
}

TEST(MemoryInStream, ReadsNothingWhenAskedForNothing) {
    kel::CMemoryInStream stream("abc", 3);
    EXPECT_EQ(stream.read(nullptr, 0), 0U);
    EXPECT_EQ(stream.getPosition(), 0);
}

TEST(MemoryInStream, MayBeEmpty) {
    kel::CMemoryInStream stream(nullptr, 0);
    EXPECT_EQ(stream.getSize(), 0);
    EXPECT_EQ(read(stream, 1), "");
    stream.seek(0);
    expectSeekRefusedOutside(stream, 0);
}

TEST(MemoryInStream, MovesAnywhereFromStartToEnd) {
    kel::CMemoryInStream stream("abcdef", 6);
    stream.seek(4);
    EXPECT_EQ(stream.getPosition(), 4);
    EXPECT_EQ(read(stream, 10), "ef");
    stream.seek(0);
    EXPECT_EQ(read(stream, 2), "ab");
    stream.seek(6);
    EXPECT_EQ(read(stream, 1), "");
    expectSeekRefusedOutside(stream, 6);
}

TEST(MemoryInStream, KeepsItsBuffer) {
    kel::P<Bytes> buffer = makeBuffer("abc");
    kel::CMemoryInStream stream(buffer);
    buffer = nullptr;
    EXPECT_EQ(read(stream, 10), "abc");
}

TEST(MemoryInStream, ReadsTheBufferAsItIsAtEachCall) {
    const kel::P<Bytes> buffer = makeBuffer("");
    kel::CMemoryInStream stream(buffer);
    EXPECT_EQ(stream.getSize(), 0);
    EXPECT_EQ(read(stream, 10), "");
    const std::string longText(10'000, 'x');
    buffer->append(reinterpret_cast<const unsigned char*>(longText.data()), longText.size());
    EXPECT_EQ(stream.getSize(), 10'000);
    EXPECT_EQ(read(stream, 20'000), longText);
    buffer->setUsed(3);
    EXPECT_EQ(stream.getSize(), 3);
    EXPECT_EQ(stream.getPosition(), 10'000);
    EXPECT_EQ(read(stream, 10), "") << "the end lies before the position now";
    expectSeekRefusedOutside(stream, 3);
    stream.seek(1);
    EXPECT_EQ(read(stream, 10), "xx");
}

TEST(BufferOutStream, StartsAtTheFrontOfTheBuffer) {
    const kel::P<Bytes> buffer = makeBuffer("abcdef");
    const kel::P<kel::CBufferOutStream> stream = new kel::CBufferOutStream(buffer);
    EXPECT_EQ(stream->getPosition(), 0);
    stream->write("XY", 2);
    EXPECT_EQ(toText(*buffer), "XYcdef");
    EXPECT_EQ(stream->getPosition(), 2);
    stream->flush();
    EXPECT_EQ(toText(*buffer), "XYcdef");
}

TEST(BufferOutStream, OverwritesAndThenGrows) {
    const kel::P<Bytes> buffer = makeBuffer("abc");
    kel::CBufferOutStream stream(buffer);
    stream.seek(2);
    stream.write("12345", 5);
    EXPECT_EQ(toText(*buffer), "ab12345");
    stream.write("6", 1);
    EXPECT_EQ(toText(*buffer), "ab123456");
    EXPECT_EQ(stream.getPosition(), 8);
    stream.seek(0);
    stream.write("AB", 2);
    EXPECT_EQ(toText(*buffer), "AB123456");
}

TEST(BufferOutStream, WritesNothingWhenGivenNothing) {
    const kel::P<Bytes> buffer = new Bytes();
    kel::CBufferOutStream stream(buffer);
    stream.write(nullptr, 0);
    EXPECT_EQ(buffer->getUsed(), 0U);
    EXPECT_EQ(stream.getPosition(), 0);
}

TEST(BufferOutStream, StaysWithinTheBuffer) {
    const kel::P<Bytes> buffer = makeBuffer("abc");
    kel::CBufferOutStream stream(buffer);
    stream.seek(3);
    expectSeekRefusedOutside(stream, 3);
    EXPECT_EQ(toText(*buffer), "abc");
}

TEST(BufferOutStream, StartsAnewInAnEmptiedBuffer) {
    const kel::P<Bytes> buffer = new Bytes();
    kel::CBufferOutStream stream(buffer);
    stream.write("first", 5);
    stream.seek(0);
    buffer->setUsed(0);
    stream.write("2nd", 3);
    EXPECT_EQ(toText(*buffer), "2nd");
}

TEST(BufferOutStream, FillsTheGapWithZeroBytesWhereTheBufferHasShrunk) {
    const kel::P<Bytes> buffer = new Bytes();
    kel::CBufferOutStream stream(buffer);
    stream.write("secret", 6);
    buffer->setUsed(1);
    stream.write("!", 1);
    EXPECT_EQ(toText(*buffer), std::string("s\0\0\0\0\0!", 7));
}

TEST(BufferOutStream, LeavesAllAsItIsWhenThereIsNoRoom) {
    const kel::P<Bytes> buffer = makeBuffer("abc");
    kel::CBufferOutStream stream(buffer);
    stream.seek(1);
    EXPECT_THROW(stream.write("x", SIZE_MAX), std::bad_alloc);
    EXPECT_THROW(stream.write("x", SIZE_MAX - 1), std::bad_alloc);
    EXPECT_EQ(toText(*buffer), "abc");
    EXPECT_EQ(stream.getPosition(), 1);
}

TEST(BufferOutStream, KeepsItsBuffer) {
    kel::P<Bytes> buffer = new Bytes();
    Bytes* const raw = buffer;
    kel::CBufferOutStream stream(buffer);
    buffer = nullptr;
    stream.write("abc", 3);
    EXPECT_EQ(toText(*raw), "abc");
}

TEST(MemoryStream, ReadsBackWhatWasWritten) {
    const kel::P<kel::CMemoryStream> stream = new kel::CMemoryStream();
    EXPECT_EQ(stream->getSize(), 0);
    stream->write("hello ", 6);
    stream->write("world", 5);
    stream->flush();
    EXPECT_EQ(stream->getSize(), 11);
    EXPECT_EQ(stream->getPosition(), 11);
    EXPECT_EQ(read(*stream, 10), "") << "one position serves both directions";
    stream->seek(0);
    EXPECT_EQ(read(*stream, 100), "hello world");
    EXPECT_EQ(toText(*stream->getBuffer()), "hello world");
}

TEST(MemoryStream, ReadsAndWritesAtTheSamePosition) {
    kel::CMemoryStream stream;
    stream.write("abcdef", 6);
    stream.seek(1);
    EXPECT_EQ(read(stream, 2), "bc");
    stream.write("D", 1);
    EXPECT_EQ(read(stream, 10), "ef");
    EXPECT_EQ(toText(*stream.getBuffer()), "abcDef");
}

TEST(MemoryStream, StaysWithinItsContent) {
    kel::CMemoryStream stream;
    stream.seek(0);
    expectSeekRefusedOutside(stream, 0);
    stream.write("abc", 3);
    stream.seek(3);
    expectSeekRefusedOutside(stream, 3);
}

TEST(MemoryStream, ServesAsInAndAsOutStream) {
    const kel::P<kel::CMemoryStream> stream = new kel::CMemoryStream();
    const kel::P<kel::IOutStream> out = stream.get();
    const kel::P<kel::IInStream> in = stream.get();
    out->write("abc", 3);
    in->seek(1);
    EXPECT_EQ(read(*in, 10), "bc");
}

} // namespace
