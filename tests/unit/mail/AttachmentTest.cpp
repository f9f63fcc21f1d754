#include "vantra/MimeEncoding.h"

#include "Bytes.h"
#include "Thrown.h"

#include <gtest/gtest.h>

#include <string>

namespace vantra::test {

namespace {

using kel::String;

std::string dispositionOf(const String& name) {
    return makeAttachment(name, "text/plain", ByteBuffer())
        ->getHeaders()
        .lookup("Content-Disposition")
        .toUTF8();
}

std::string repeat(const std::string& text, std::size_t count) {
    std::string repeated;
    for (std::size_t i = 0; i < count; ++i) repeated += text;
    return repeated;
}

TEST(Attachment, IsAPartReadyToStore) {
    EXPECT_EQ(storeMessage(*makeAttachment("a b.png", "image/png", *makeBuffer(std::string(58, '\0')))),
              "Content-Disposition: attachment; filename=\"a b.png\"\r\n"
              "Content-Transfer-Encoding: base64\r\n"
              "Content-Type: image/png\r\n"
              "MIME-Version: 1.0\r\n"
              "\r\n" +
                  std::string(76, 'A') + "\r\nAA==");
}

TEST(Attachment, MayBeEmpty) {
    EXPECT_EQ(storeMessage(*makeAttachment("a", "image/png", ByteBuffer())),
              "Content-Disposition: attachment; filename=\"a\"\r\n"
              "Content-Transfer-Encoding: base64\r\n"
              "Content-Type: image/png\r\n"
              "MIME-Version: 1.0\r\n"
              "\r\n");
}

TEST(Attachment, KeepsACopyOfItsBytes) {
    const kel::P<ByteBuffer> bytes = makeBuffer("foo");
    const kel::P<CMimeMessage> part = makeAttachment("a", "text/plain", *bytes);
    (*bytes)[0] = 'g';
    EXPECT_EQ(storeBodyOf(*part), "Zm9v");
}

TEST(Attachment, IsOfUnknownTypeByDefault) {
    EXPECT_EQ(makeAttachment("a", "", ByteBuffer())->getHeaders().lookup("Content-Type"),
              "application/octet-stream");
}

TEST(Attachment, QuotesANameOfPrintableASCII) {
    EXPECT_EQ(dispositionOf("report.pdf"), "attachment; filename=\"report.pdf\"");
    EXPECT_EQ(dispositionOf("a\"b\\c;d.txt"), "attachment; filename=\"a\\\"b\\\\c;d.txt\"");
}

TEST(Attachment, MayHaveNoName) { EXPECT_EQ(dispositionOf(""), "attachment"); }

TEST(Attachment, ExtendsANameOutsideASCII) {
    EXPECT_EQ(dispositionOf("Gr\u00fc\u00dfe.txt"), "attachment; filename*=UTF-8''Gr%C3%BC%C3%9Fe.txt");
    EXPECT_EQ(dispositionOf("\U0001F600 1.png"), "attachment; filename*=UTF-8''%F0%9F%98%80%201.png");
}

TEST(Attachment, EscapesWhatAnExtendedNameCannotHold) {
    EXPECT_EQ(dispositionOf("\u00e9!#$&+-.^_`{|}~azAZ09"),
              "attachment; filename*=UTF-8''%C3%A9!#$&+-.^_`{|}~azAZ09");
    EXPECT_EQ(dispositionOf("\u00e9*'%() ;=\"\\/,:<>?@[]"),
              "attachment; filename*=UTF-8''%C3%A9%2A%27%25%28%29%20%3B%3D%22%5C%2F%2C%3A%3C%3E%3F%40%5B%5D");
}

TEST(Attachment, CannotBreakItsHeaderBlockByItsName) {
    EXPECT_EQ(dispositionOf("a\r\nBcc: x@y.z"), "attachment; filename*=UTF-8''a%0D%0ABcc%3A%20x%40y.z");
    EXPECT_EQ(dispositionOf("\t\x7f"), "attachment; filename*=UTF-8''%09%7F");
    EXPECT_EQ(dispositionOf(String(L"a\0b", 3)), "attachment; filename*=UTF-8''a%00b");
}

TEST(Attachment, CannotBreakItsHeaderBlockByItsType) {
    for (const char* const type : {"text/plain\r\nBcc: x@y.z", "text/plain\n", "\r"}) {
        EXPECT_EQ(thrownBy([&] { (void)makeAttachment("a", type, ByteBuffer()); }),
                  invalidArgError("makeAttachment", "content type contains a line break"));
    }
}

TEST(Attachment, HasALongNameOnOneLine) {
    EXPECT_EQ(dispositionOf(String(std::string(300, 'a'))),
              "attachment; filename=\"" + std::string(300, 'a') + "\"");
    EXPECT_EQ(dispositionOf(String(std::string(301, 'a'))),
              "attachment; filename*=UTF-8''" + std::string(301, 'a'));
    EXPECT_EQ(dispositionOf(String(repeat("\u00e9", 150))),
              "attachment; filename*=UTF-8''" + repeat("%C3%A9", 150));
}

TEST(Attachment, FoldsANameThatIsTooLongForALine) {
    const std::string tenLetters = repeat("%C3%A9", 10);
    std::string expected = "attachment;\r\n filename*0*=UTF-8''" + tenLetters;
    for (int section = 1; section < 15; ++section)
        expected += ";\r\n filename*" + std::to_string(section) + "*=" + tenLetters;
    EXPECT_EQ(dispositionOf(String(repeat("\u00e9", 151))), expected + ";\r\n filename*15*=%C3%A9");
}

TEST(Attachment, NeverFoldsInsideACharacter) {
    const auto withLettersBefore = [](const std::string& letters) {
        return dispositionOf(String(letters + repeat("\u00e9", 151)));
    };
    for (const char* const letters : {"a", "aa", "aaa", "aaaa", "aaaaa"}) {
        EXPECT_TRUE(withLettersBefore(letters).starts_with(
            std::string("attachment;\r\n filename*0*=UTF-8''") + letters + repeat("%C3%A9", 9) +
            ";\r\n filename*1*=" + repeat("%C3%A9", 10) + ";\r\n filename*2*="))
            << letters;
    }
    EXPECT_TRUE(withLettersBefore("aaaaaa").starts_with("attachment;\r\n filename*0*=UTF-8''aaaaaa" +
                                                        repeat("%C3%A9", 9) + ";\r\n filename*1*="));
}

} // namespace

} // namespace vantra::test
