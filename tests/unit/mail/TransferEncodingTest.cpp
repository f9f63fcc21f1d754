#include "vantra/MimeEncoding.h"

#include "Bytes.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace vantra::test {

namespace {

std::string base64(const std::string& bytes) { return toString(*encodeBase64Lines(*makeBuffer(bytes))); }

std::string quotedPrintable(const std::string& bytes) {
    return toString(*encodeQuotedPrintable(*makeBuffer(bytes)));
}

/// The rules of RFC 2045 §6.7 read backwards.
std::string decodeQuotedPrintable(const std::string& text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '=') {
            bytes += text[i];
            continue;
        }
        const std::string escape = text.substr(i + 1, 2);
        if (escape != "\r\n") bytes += static_cast<char>(std::stoi(escape, nullptr, 16));
        i += 2;
    }
    return bytes;
}

TEST(Base64Body, HasLinesOf76Characters) {
    EXPECT_EQ(base64(""), "");
    EXPECT_EQ(base64("foobar"), "Zm9vYmFy");
    const std::string line = std::string(76, 'A');
    EXPECT_EQ(base64(std::string(57, '\0')), line);
    EXPECT_EQ(base64(std::string(58, '\0')), line + "\r\nAA==");
    EXPECT_EQ(base64(std::string(114, '\0')), line + "\r\n" + line);
    EXPECT_EQ(base64(std::string(116, '\0')), line + "\r\n" + line + "\r\nAAA=");
}

TEST(QuotedPrintableBody, KeepsPrintableASCIIButTheEqualsSign) {
    std::string printable;
    for (char c = '!'; c <= '~'; ++c)
        if (c != '=') printable += c;
    EXPECT_EQ(quotedPrintable(printable.substr(0, 70)), printable.substr(0, 70));
    EXPECT_EQ(quotedPrintable(printable.substr(70)), printable.substr(70));
    EXPECT_EQ(quotedPrintable("a=b"), "a=3Db");
}

TEST(QuotedPrintableBody, EncodesEveryOtherByteInUpperCase) {
    EXPECT_EQ(quotedPrintable("caf\u00e9"), "caf=C3=A9");
    EXPECT_EQ(quotedPrintable(std::string("\0\x1f\x7f\xff", 4)), "=00=1F=7F=FF");
}

TEST(QuotedPrintableBody, KeepsLineBreaksAndEncodesHalfOnes) {
    EXPECT_EQ(quotedPrintable(""), "");
    EXPECT_EQ(quotedPrintable("a\r\nb\r\n"), "a\r\nb\r\n");
    EXPECT_EQ(quotedPrintable("\r\n\r\n"), "\r\n\r\n");
    EXPECT_EQ(quotedPrintable("a\nb\rc"), "a=0Ab=0Dc");
    EXPECT_EQ(quotedPrintable("a\r\r\n"), "a=0D\r\n");
    EXPECT_EQ(quotedPrintable("\n\r"), "=0A=0D");
    EXPECT_EQ(quotedPrintable("\r"), "=0D");
}

TEST(QuotedPrintableBody, EncodesBlanksOnlyWhereALineEnds) {
    EXPECT_EQ(quotedPrintable("a b\tc"), "a b\tc");
    EXPECT_EQ(quotedPrintable("a \r\nb\t\r\n"), "a=20\r\nb=09\r\n");
    EXPECT_EQ(quotedPrintable("a  \r\n"), "a =20\r\n");
    EXPECT_EQ(quotedPrintable("a "), "a=20");
    EXPECT_EQ(quotedPrintable(" \n"), " =0A");
}

TEST(QuotedPrintableBody, BreaksLinesOfMoreThan76Characters) {
    const std::string full(76, 'a');
    EXPECT_EQ(quotedPrintable(full), full);
    EXPECT_EQ(quotedPrintable(full + "\r\n"), full + "\r\n");
    EXPECT_EQ(quotedPrintable(full + "a"), std::string(75, 'a') + "=\r\naa");
    EXPECT_EQ(quotedPrintable(full + full),
              std::string(75, 'a') + "=\r\n" + std::string(75, 'a') + "=\r\naa");
}

TEST(QuotedPrintableBody, NeverBreaksAnEscape) {
    EXPECT_EQ(quotedPrintable(std::string(73, 'a') + "="), std::string(73, 'a') + "=3D");
    EXPECT_EQ(quotedPrintable(std::string(74, 'a') + "="), std::string(74, 'a') + "=\r\n=3D");
    EXPECT_EQ(quotedPrintable(std::string(72, 'a') + "=b"), std::string(72, 'a') + "=3Db");
    EXPECT_EQ(quotedPrintable(std::string(73, 'a') + "=b"), std::string(73, 'a') + "=\r\n=3Db");
}

TEST(QuotedPrintableBody, KeepsABlankBeforeTheMarkOfABrokenLine) {
    EXPECT_EQ(quotedPrintable(std::string(74, 'a') + " bc"), std::string(74, 'a') + " =\r\nbc");
}

TEST(QuotedPrintableBody, DecodesToTheSameBytesWhateverTheyAre) {
    std::mt19937 random(8);
    static constexpr std::string_view likely = "\r\n\r\n =\t.abc";
    for (int round = 0; round < 2000; ++round) {
        std::string bytes(random() % 300, '\0');
        for (char& byte : bytes)
            byte = random() % 2 ? likely[random() % likely.size()] : static_cast<char>(random() % 256);
        const std::string text = quotedPrintable(bytes);
        ASSERT_EQ(decodeQuotedPrintable(text), bytes);
        for (std::size_t start = 0; start < text.size();) {
            const std::size_t end = std::min(text.find("\r\n", start), text.size());
            ASSERT_LE(end - start, 76U) << text;
            if (end > start) {
                ASSERT_NE(text[end - 1], ' ') << text;
                ASSERT_NE(text[end - 1], '\t') << text;
            }
            start = end + 2;
        }
    }
}

} // namespace

} // namespace vantra::test
