#include "MailServer.h"

#include <gmock/gmock.h>

#include <random>

using kel::P;
using kel::String;
using kel::TArray;
using testing::ElementsAre;
using testing::IsEmpty;
using vantra::CMimeMessage;
using vantra::CMultiPartMimeMessage;
using vantra::CSMTPClient;
using vantra::CSMTPParams;

namespace {

constexpr auto unencrypted = CSMTPParams::ConnectTypeUnencrypted;

/// Lines of letters with CR LF at their ends.
std::string makeLines(std::size_t size) {
    std::string text;
    std::mt19937 random(3);
    while (text.size() < size) {
        const std::size_t length = random() % 70;
        for (std::size_t i = 0; i < length; ++i)
            text += static_cast<char>(random() % 8 ? 'a' + random() % 26 : '.');
        text += "\r\n";
    }
    return text;
}

TEST_F(Mail, ArrivesAsItWasGiven) {
    const std::string message = "Subject: x\r\n\r\nhello\r\n";
    makeClient(unencrypted, false)->sendMail("jane@example.org", {"joe@example.org"}, *makeBuffer(message));
    const auto mails = takeMails();
    ASSERT_EQ(mails.size(), 1U);
    EXPECT_EQ(mails[0].bytes, message);
    EXPECT_EQ(mails[0].from, "jane@example.org");
    EXPECT_THAT(mails[0].recipients, ElementsAre("joe@example.org"));
    EXPECT_THAT(mails[0].options, IsEmpty());
}

TEST_F(Mail, ReachesFiftyRecipientsInOrder) {
    TArray<String> recipients;
    std::vector<std::string> expected;
    for (int i = 0; i < 50; ++i) {
        expected.push_back("joe" + std::to_string(i) + "@example.org");
        recipients.push_back(String(expected.back()));
    }
    makeClient(unencrypted, false)->sendMail("jane@example.org", recipients, *makeBuffer("x\r\n"));
    const auto mails = takeMails();
    ASSERT_EQ(mails.size(), 1U);
    EXPECT_EQ(mails[0].recipients, expected);
}

TEST_F(Mail, KeepsLinesThatBeginWithADot) {
    const P<CSMTPClient> client = makeClient(unencrypted, false);
    const std::vector<std::string> messages{
        ".\r\n",       "..\r\n", ".first\r\n", "a\r\n.\r\n.\r\n..\r\n...\r\n", "a\r\n.b\r\n\r\n.\r\n\r\n",
        "a.\r\nb.\r\n"};
    for (const std::string& message : messages) sendMail(*client, message);
    std::vector<std::string> arrived;
    for (const auto& mail : takeMails()) arrived.push_back(mail.bytes);
    EXPECT_EQ(arrived, messages);
}

TEST_F(Mail, MayHoldBytesOutsideASCII) {
    std::string message;
    for (int byte = 1; byte < 256; ++byte)
        if (byte != '\r' && byte != '\n') message += static_cast<char>(byte);
    message += "\r\n";
    sendMail(*makeClient(unencrypted, false), message);
    EXPECT_EQ(takeMails().at(0).bytes, message);
}

TEST_F(Mail, GetsALineEndWhereTheLastLineHasNone) {
    sendMail(*makeClient(unencrypted, false), "Subject: x\r\n\r\nhello");
    EXPECT_EQ(takeMails().at(0).bytes, "Subject: x\r\n\r\nhello\r\n");
}

TEST_F(Mail, MayBeLargeWithoutAndWithTLS) {
    const std::string part = makeLines(1 << 20);
    std::string message;
    for (int i = 0; i < 20; ++i) message += part;
    for (const bool withTLS : {false, true}) {
        const auto type = withTLS ? CSMTPParams::ConnectTypeSSL : unencrypted;
        sendMail(*makeClient(type, false), message);
        const auto mails = takeMails();
        ASSERT_EQ(mails.size(), 1U);
        EXPECT_TRUE(mails[0].bytes == message) << mails[0].bytes.size() << " bytes";
    }
}

TEST_F(Mail, MayGoToAddressesOutsideASCII) {
    makeClient(unencrypted, false)
        ->sendMail("j\u00fcrgen@example.org", {"zo\u00eb@example.org"}, *makeBuffer("x\r\n"));
    const auto mails = takeMails();
    ASSERT_EQ(mails.size(), 1U);
    EXPECT_EQ(mails[0].from, "j\u00fcrgen@example.org");
    EXPECT_THAT(mails[0].recipients, ElementsAre("zo\u00eb@example.org"));
    EXPECT_THAT(mails[0].options, testing::Contains("SMTPUTF8"));
}

TEST_F(Mail, MayHaveNoSender) {
    makeClient(unencrypted, false)->sendMail("", {"joe@example.org"}, *makeBuffer("x\r\n"));
    EXPECT_EQ(takeMails().at(0).from, "<>");
}

TEST_F(Mail, OfOneClientGoesOverOneConnection) {
    const P<CSMTPClient> client = makeClient(unencrypted, false);
    for (int i = 0; i < 3; ++i) sendMail(*client, "mail " + std::to_string(i) + "\r\n");
    const auto mails = takeMails();
    ASSERT_EQ(mails.size(), 3U);
    EXPECT_EQ(mails[2].bytes, "mail 2\r\n");
    EXPECT_EQ(mails[0].clientPort, mails[1].clientPort);
    EXPECT_EQ(mails[0].clientPort, mails[2].clientPort);
}

TEST_F(Mail, WithoutRecipientsIsRefusedBeforeAnythingIsSent) {
    const P<CSMTPClient> client = makeClient(unencrypted, false);
    EXPECT_THROW(client->sendMail("jane@example.org", {}, *makeBuffer("x\r\n")), kel::CInvalidArgError);
    EXPECT_THAT(takeMails(), IsEmpty());
    sendMail(*client, "y\r\n");
    EXPECT_EQ(takeMails().at(0).bytes, "y\r\n");
}

TEST_F(Mail, OfManyPartsArrivesAsItIsStored) {
    const P<CMultiPartMimeMessage> message = new CMultiPartMimeMessage();
    message->getHeaders()["Subject"] = "Gr\u00fc\u00dfe";
    const P<CMimeMessage> text = new CMimeMessage("text/plain; charset=utf-8");
    text->setBody(vantra::encodeQuotedPrintable(*makeBuffer("sch\u00f6n\r\n.\r\n")), "quoted-printable");
    message->addPart(text);
    message->addPart(vantra::makeAttachment("\u00fc.bin", "", *makeBuffer(std::string(5000, '\xff'))));
    const P<kel::CMemoryStream> stored = new kel::CMemoryStream();
    message->store(*stored);
    makeClient(unencrypted, false)->sendMail("jane@example.org", {"joe@example.org"}, *stored->getBuffer());
    EXPECT_EQ(takeMails().at(0).bytes, std::string(stored->getBuffer()->begin(), stored->getBuffer()->end()));
}

} // namespace
