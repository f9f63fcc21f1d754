#include "vantra/MultiPartMimeMessage.h"

#include "Bytes.h"
#include "mail/Boundary.h"
#include "Thrown.h"

#include <kel/MTRand.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace vantra::test {

namespace {

using kel::P;
using kel::PC;
using kel::String;
using kel::uint64;

P<CMimeMessage> makeText(const std::string& text) {
    P<CMimeMessage> part = new CMimeMessage("text/plain");
    part->setBody(makeBuffer(text), "");
    return part;
}

const std::string partHeader = "Content-Type: text/plain\r\nMIME-Version: 1.0\r\n\r\n";

std::string boundaryOf(const CMultiPartMimeMessage& message) { return message.getBoundary().toUTF8(); }

TEST(MultiPartMimeMessage, StoresItsHeaderBlockAndNothingElseWithoutParts) {
    const P<CMultiPartMimeMessage> message = new CMultiPartMimeMessage();
    EXPECT_EQ(storeMessage(*message), "Content-Type: multipart/mixed; boundary=" + boundaryOf(*message) +
                                          "\r\nMIME-Version: 1.0\r\n\r\n");
}

TEST(MultiPartMimeMessage, StoresASinglePartBetweenItsDelimiters) {
    const P<CMultiPartMimeMessage> message = new CMultiPartMimeMessage();
    message->addPart(makeText("one"));
    const std::string b = boundaryOf(*message);
    EXPECT_EQ(storeBodyOf(*message), "--" + b + "\r\n" + partHeader + "one\r\n--" + b + "--\r\n");
}

TEST(MultiPartMimeMessage, StoresItsPartsInTheOrderInWhichTheyWereAdded) {
    const P<CMultiPartMimeMessage> message = new CMultiPartMimeMessage();
    message->addPart(makeText("one"));
    message->addPart(makeText("two\r\n"));
    message->addPart(makeText(""));
    const std::string b = boundaryOf(*message);
    EXPECT_EQ(storeBodyOf(*message), "--" + b + "\r\n" + partHeader + "one" +             //
                                         "\r\n--" + b + "\r\n" + partHeader + "two\r\n" + //
                                         "\r\n--" + b + "\r\n" + partHeader +             //
                                         "\r\n--" + b + "--\r\n");
}

TEST(MultiPartMimeMessage, StoresItsHeaderBlockBeforeItsParts) {
    const P<CMultiPartMimeMessage> message = new CMultiPartMimeMessage("alternative");
    message->getHeaders()["Subject"] = "\u00fc";
    message->addPart(makeText("one"));
    const std::string b = boundaryOf(*message);
    EXPECT_EQ(storeMessage(*message), "Content-Type: multipart/alternative; boundary=" + b +
                                          "\r\nMIME-Version: 1.0\r\nSubject: =?utf-8?q?=C3=BC?=\r\n\r\n--" +
                                          b + "\r\n" + partHeader + "one\r\n--" + b + "--\r\n");
}

TEST(MultiPartMimeMessage, StoresAMultipartInsideWithItsOwnBoundaryAndHeaderBlock) {
    const P<CMultiPartMimeMessage> outer = new CMultiPartMimeMessage();
    const P<CMultiPartMimeMessage> inner = new CMultiPartMimeMessage("alternative");
    inner->addPart(makeText("plain"));
    outer->addPart(inner);
    outer->addPart(makeText("tail"));
    const std::string b = boundaryOf(*outer);
    const std::string i = boundaryOf(*inner);
    EXPECT_NE(b, i);
    EXPECT_EQ(storeBodyOf(*outer), "--" + b + "\r\n" +                                                 //
                                       "Content-Type: multipart/alternative; boundary=" + i +          //
                                       "\r\nMIME-Version: 1.0\r\n\r\n" +                               //
                                       "--" + i + "\r\n" + partHeader + "plain\r\n--" + i + "--\r\n" + //
                                       "\r\n--" + b + "\r\n" + partHeader + "tail" +                   //
                                       "\r\n--" + b + "--\r\n");
}

TEST(MultiPartMimeMessage, IsMixedByDefault) {
    const P<CMultiPartMimeMessage> message = new CMultiPartMimeMessage();
    EXPECT_TRUE(message->getHeaders().lookup("Content-Type").startsWith(L"multipart/mixed; boundary="));
    EXPECT_EQ(message->getHeaders().lookup("Content-Type"),
              "multipart/mixed; boundary=" + message->getBoundary());
}

TEST(MultiPartMimeMessage, SharesItsParts) {
    const P<CMultiPartMimeMessage> message = new CMultiPartMimeMessage();
    const P<CMimeMessage> part = makeText("old");
    message->addPart(part);
    message->addPart(part);
    part->setBody(makeBuffer("new"), "");
    const std::string b = boundaryOf(*message);
    EXPECT_EQ(storeBodyOf(*message), "--" + b + "\r\n" + partHeader + "new\r\n--" + b + "\r\n" + partHeader +
                                         "new\r\n--" + b + "--\r\n");
}

TEST(MultiPartMimeMessage, TakesNoBody) {
    const P<CMimeMessage> message = new CMultiPartMimeMessage();
    const Thrown expected = plainError("CMultiPartMimeMessage::setBody should not be used.");
    EXPECT_EQ(expected.code, -1);
    EXPECT_EQ(thrownBy([&] { message->setBody(makeBuffer("x"), "7bit"); }), expected);
    EXPECT_EQ(thrownBy([&] { message->setBody(nullptr, ""); }), expected);
    EXPECT_FALSE(message->getHeaders().contains("Content-Transfer-Encoding"));
}

TEST(MultiPartMimeMessage, TakesNoNullPart) {
    const P<CMultiPartMimeMessage> message = new CMultiPartMimeMessage();
    EXPECT_EQ(thrownBy([&] { message->addPart(nullptr); }),
              invalidArgError("CMultiPartMimeMessage::addPart", "part must not be null"));
    EXPECT_EQ(storeBodyOf(*message), "");
}

TEST(MultiPartMimeMessage, HasABoundaryOfItsOwn) {
    std::vector<String> boundaries;
    for (int i = 0; i < 1000; ++i) {
        const P<CMultiPartMimeMessage> message = new CMultiPartMimeMessage();
        boundaries.push_back(message->getBoundary());
    }
    std::sort(boundaries.begin(), boundaries.end());
    EXPECT_EQ(std::adjacent_find(boundaries.begin(), boundaries.end()), boundaries.end());
}

TEST(MultiPartMimeMessage, TakesItsBoundaryFromTheGlobalGenerator) {
    const kel::CMutexLock lock(kel::CMTRand::getGlobalMutex());
    kel::CMTRand::getGlobal().setSeed(1);
    kel::CMTRand twin(1);
    const P<CMultiPartMimeMessage> message = new CMultiPartMimeMessage();
    EXPECT_EQ(message->getBoundary(), makeBoundary([&] { return twin.rand64(); }));
    kel::CMTRand::getGlobal() = kel::CMTRand();
}

std::string boundaryFrom(std::vector<uint64> numbers) {
    std::size_t used = 0;
    const std::string boundary = makeBoundary([&] { return numbers.at(used++); }).toUTF8();
    EXPECT_EQ(used, numbers.size());
    return boundary;
}

TEST(Boundary, IsOneNumberInLowerCaseHexadecimal) {
    EXPECT_EQ(boundaryFrom({0x0123456789ABCDEFU}), "123456789abcdef");
    EXPECT_EQ(boundaryFrom({0xFEDCBA9876543210U}), "fedcba9876543210");
    EXPECT_EQ(boundaryFrom({0x1000000000U}), "1000000000");
}

TEST(Boundary, GetsMoreNumbersUntilItHasTenDigits) {
    EXPECT_EQ(boundaryFrom({0xFFFFFFFFFU, 0xFFFFFFFFFFFFFFFFU}), "fffffffffffffffffffffffff");
    EXPECT_EQ(boundaryFrom({0xABCU, 0xDEU, 0x12345U}), "abcde12345");
    EXPECT_EQ(boundaryFrom({0, 0, 0, 0, 0, 0, 0, 0, 0, 0}), "0000000000");
}

} // namespace

} // namespace vantra::test
