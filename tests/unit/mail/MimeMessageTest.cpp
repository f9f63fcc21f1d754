#include "vantra/MimeMessage.h"

#include "Bytes.h"

#include <kel/Error.h>

#include <gtest/gtest.h>

namespace vantra::test {

namespace {

using kel::IOutStream;
using kel::P;
using kel::String;

TEST(MimeMessage, StoresItsTwoFieldsAndNothingElseWhenNew) {
    const P<CMimeMessage> message = new CMimeMessage("text/plain");
    EXPECT_EQ(storeMessage(*message), "Content-Type: text/plain\r\nMIME-Version: 1.0\r\n\r\n");
}

TEST(MimeMessage, HasNoContentTypeWithoutOne) {
    const P<CMimeMessage> message = new CMimeMessage("");
    EXPECT_EQ(storeMessage(*message), "MIME-Version: 1.0\r\n\r\n");
}

TEST(MimeMessage, EndsItsHeaderBlockEvenWithoutFields) {
    const P<CMimeMessage> message = new CMimeMessage("");
    message->getHeaders().clear();
    EXPECT_EQ(storeMessage(*message), "\r\n");
}

TEST(MimeMessage, StoresItsBodyAsItIs) {
    const P<CMimeMessage> message = new CMimeMessage("text/plain");
    const std::string bytes("a\r\n.\r\n\0\xff\n", 9);
    message->setBody(makeBuffer(bytes), "binary");
    EXPECT_EQ(storeMessage(*message), "Content-Transfer-Encoding: binary\r\n"
                                      "Content-Type: text/plain\r\n"
                                      "MIME-Version: 1.0\r\n"
                                      "\r\n" +
                                          bytes);
}

TEST(MimeMessage, SharesItsBodyWithTheCaller) {
    const P<CMimeMessage> message = new CMimeMessage("text/plain");
    const P<ByteBuffer> body = makeBuffer("old");
    message->setBody(body, "");
    body->append(reinterpret_cast<const unsigned char*>("er"), 2);
    EXPECT_EQ(storeBodyOf(*message), "older");
}

TEST(MimeMessage, ForgetsTheTransferEncodingWithABodyThatHasNone) {
    const P<CMimeMessage> message = new CMimeMessage("text/plain");
    message->setBody(makeBuffer("Zm9v"), "base64");
    EXPECT_EQ(message->getHeaders().lookup("Content-Transfer-Encoding"), "base64");
    message->setBody(makeBuffer("foo"), "");
    EXPECT_FALSE(message->getHeaders().contains("Content-Transfer-Encoding"));
    EXPECT_EQ(storeMessage(*message), "Content-Type: text/plain\r\nMIME-Version: 1.0\r\n\r\nfoo");
}

TEST(MimeMessage, StoresNoBodyOnceItIsTakenBack) {
    const P<CMimeMessage> message = new CMimeMessage("text/plain");
    message->setBody(makeBuffer("foo"), "7bit");
    message->setBody(nullptr, "");
    EXPECT_EQ(storeMessage(*message), "Content-Type: text/plain\r\nMIME-Version: 1.0\r\n\r\n");
}

TEST(MimeMessage, NamesTheTransferEncodingOfNoBodyToo) {
    const P<CMimeMessage> message = new CMimeMessage("");
    message->setBody(nullptr, "7bit");
    EXPECT_EQ(storeMessage(*message), "Content-Transfer-Encoding: 7bit\r\nMIME-Version: 1.0\r\n\r\n");
}

TEST(MimeMessage, StoresItsFieldsInTheOrderOfTheirCharacterCodes) {
    const P<CMimeMessage> message = new CMimeMessage("text/plain");
    for (const char* name : {"subject", "Subject", "to", "To", "X-a", "X-B", "date"})
        message->getHeaders()[name] = "v";
    message->setBody(nullptr, "7bit");
    EXPECT_EQ(storeMessage(*message), "Content-Transfer-Encoding: 7bit\r\n"
                                      "Content-Type: text/plain\r\n"
                                      "MIME-Version: 1.0\r\n"
                                      "Subject: v\r\n"
                                      "To: v\r\n"
                                      "X-B: v\r\n"
                                      "X-a: v\r\n"
                                      "date: v\r\n"
                                      "subject: v\r\n"
                                      "to: v\r\n"
                                      "\r\n");
}

TEST(MimeMessage, LeavesAValueOfPlainASCIIAsItIs) {
    const P<CMimeMessage> message = new CMimeMessage("");
    message->getHeaders()["Subject"] = "Hello, =?world?= \"a\\b\" \x7f";
    EXPECT_EQ(storeMessage(*message), "MIME-Version: 1.0\r\nSubject: Hello, =?world?= \"a\\b\" \x7f\r\n\r\n");
}

TEST(MimeMessage, EncodesAValueWithOneAccentedLetterAsAWhole) {
    const P<CMimeMessage> message = new CMimeMessage("");
    message->getHeaders()["Subject"] = "A caf\u00e9 in Rome";
    EXPECT_EQ(storeMessage(*message),
              "MIME-Version: 1.0\r\nSubject: =?utf-8?q?A=20caf=C3=A9=20in=20Rome?=\r\n\r\n");
}

TEST(MimeMessage, EncodesFromTheFirstCodeBeyondASCIIOn) {
    const P<CMimeMessage> message = new CMimeMessage("");
    message->getHeaders()["A"] = "\u007f";
    message->getHeaders()["B"] = "\u0080";
    EXPECT_EQ(storeMessage(*message), "A: \x7f\r\nB: =?utf-8?q?=C2=80?=\r\nMIME-Version: 1.0\r\n\r\n");
}

TEST(MimeMessage, DoesNotFoldALongPlainValue) {
    const P<CMimeMessage> message = new CMimeMessage("");
    const std::string words(2000, 'w');
    message->getHeaders()["Subject"] = String(words);
    EXPECT_EQ(storeMessage(*message), "MIME-Version: 1.0\r\nSubject: " + words + "\r\n\r\n");
}

TEST(MimeMessage, WritesANameInLatin1) {
    const P<CMimeMessage> message = new CMimeMessage("");
    message->getHeaders()["X-\u00e9"] = "v";
    EXPECT_EQ(storeMessage(*message), "MIME-Version: 1.0\r\nX-\xe9: v\r\n\r\n");
}

TEST(MimeMessage, WritesAQuestionMarkForWhatLatin1LacksInAName) {
    const P<CMimeMessage> message = new CMimeMessage("");
    message->getHeaders()["X-\u20ac\U0001F600"] = "v";
    EXPECT_EQ(storeMessage(*message), "MIME-Version: 1.0\r\nX-??: v\r\n\r\n");
}

TEST(MimeMessage, KeepsTheLineBreakThatAValueHolds) {
    const P<CMimeMessage> message = new CMimeMessage("");
    message->getHeaders()["Subject"] = "a\r\n b";
    EXPECT_EQ(storeMessage(*message), "MIME-Version: 1.0\r\nSubject: a\r\n b\r\n\r\n");
}

class CShoutingMessage : public CMimeMessage {
public:
    CShoutingMessage() : CMimeMessage("") {}
    using CMimeMessage::makeHeaderField;

    void storeHeader(IOutStream& out) const override { out.write("HEADER\n", 7); }
    void storeBody(IOutStream& out) const override { out.write("BODY\n", 5); }
};

TEST(MimeMessage, StoresWhatASubclassWrites) {
    const P<CMimeMessage> message = new CShoutingMessage();
    EXPECT_EQ(storeMessage(*message), "HEADER\nBODY\n");
}

TEST(MimeMessage, MakesAFieldOfNameAndValue) {
    EXPECT_EQ(CShoutingMessage::makeHeaderField("Name", "value"), "Name: value");
    EXPECT_EQ(CShoutingMessage::makeHeaderField("", ""), ": ");
    EXPECT_EQ(CShoutingMessage::makeHeaderField("Name", "\u00fc"), "Name: =?utf-8?q?=C3=BC?=");
}

/// Takes a number of writes and refuses the next one.
class CFullStream : public kel::CBase, public IOutStream {
public:
    explicit CFullStream(int room) : room_(room) {}
    void write(const void* /*data*/, std::size_t /*length*/) override {
        if (room_-- == 0) throw kel::CError("The stream is full.");
    }
    void flush() override {}

private:
    int room_;
};

TEST(MimeMessage, PassesOnWhatTheStreamThrows) {
    const P<CMimeMessage> message = new CMimeMessage("text/plain");
    message->setBody(makeBuffer("foo"), "");
    for (const int room : {0, 1}) {
        const P<CFullStream> stream = new CFullStream(room);
        EXPECT_THROW(message->store(*stream), kel::CError) << room;
    }
    const P<CFullStream> stream = new CFullStream(2);
    EXPECT_NO_THROW(message->store(*stream));
}

TEST(QuotedString, PutsABackslashBeforeADoubleQuote) {
    EXPECT_EQ(CMimeMessage::toQuotedString("a\"b"), "\"a\\\"b\"");
}

TEST(QuotedString, PutsABackslashBeforeABackslash) {
    EXPECT_EQ(CMimeMessage::toQuotedString("a\\b"), "\"a\\\\b\"");
    EXPECT_EQ(CMimeMessage::toQuotedString("\\\""), "\"\\\\\\\"\"");
}

TEST(QuotedString, PutsABackslashBeforeACarriageReturnOnly) {
    EXPECT_EQ(CMimeMessage::toQuotedString("a\r\nb"), "\"a\\\r\nb\"");
}

TEST(QuotedString, KeepsEverythingElse) {
    EXPECT_EQ(CMimeMessage::toQuotedString(""), "\"\"");
    EXPECT_EQ(CMimeMessage::toQuotedString("J\u00fcrgen 'J' <\U0001F600>\t"),
              "\"J\u00fcrgen 'J' <\U0001F600>\t\"");
}

} // namespace

} // namespace vantra::test
