// Mails the text on standard input with a file attached, over TLS.
//
//     send_mail mail.example.org 587 jane@example.org joe@example.org "The report" report.pdf <letter.txt
//
// The login is in SMTP_USER and SMTP_PASSWORD.
#include "Environment.h"

#include <vantra/vantra.h>

#include <kel/FileStream.h>
#include <kel/Number.h>

#include <iostream>
#include <iterator>

namespace {

using kel::P;
using kel::String;
using vantra::CMimeMessage;
using vantra::CNetRequest;
using vantra::CSMTPClient;
using vantra::CSMTPParams;
using Bytes = kel::TBuffer<unsigned char>;

P<Bytes> toBytes(const std::string& text) {
    return new Bytes(reinterpret_cast<const unsigned char*>(text.data()), text.size());
}

P<CMimeMessage> makeText(const std::string& utf8) {
    // Lines end with CR LF in a mail.
    const String text = String(utf8).replaceAll("\r\n", "\n").replaceAll("\n", "\r\n");
    P<CMimeMessage> part = new CMimeMessage("text/plain; charset=utf-8");
    part->setBody(vantra::encodeQuotedPrintable(*toBytes(text.toUTF8())), "quoted-printable");
    return part;
}

P<CMimeMessage> attachFile(const kel::CPath& path) {
    const P<kel::CFileInStream> stream = new kel::CFileInStream(path);
    Bytes bytes;
    unsigned char block[65536];
    while (const std::size_t length = stream->read(block, sizeof block)) bytes.append(block, length);
    return vantra::makeAttachment(path.getFileName(), "", bytes);
}

/// Whatever goes into a header must not hold a line break, which would begin another header.
String checkLine(const String& text) {
    if (text.contains("\r") || text.contains("\n")) throw kel::CError("The subject holds a line break.");
    return text;
}

String checkAddress(const String& address) {
    if (!vantra::isValidEmailAddress(address)) throw kel::CError("'" + address + "' is no mail address.");
    return address;
}

} // namespace

int main(int argc, char** argv) try {
    if (argc != 7) {
        std::cerr << "usage: send_mail HOST PORT FROM TO SUBJECT FILE <TEXT\n";
        return 2;
    }
    const CSMTPParams server(argv[1], static_cast<int>(kel::parseInt64(argv[2])),
                             CSMTPParams::ConnectTypeStartTLS, requireSetting("SMTP_USER"),
                             requireSetting("SMTP_PASSWORD"));
    const String from = checkAddress(argv[3]);
    const String to = checkAddress(argv[4]);

    const P<vantra::CMultiPartMimeMessage> mail = new vantra::CMultiPartMimeMessage();
    mail->getHeaders()["From"] = from;
    mail->getHeaders()["To"] = to;
    mail->getHeaders()["Subject"] = checkLine(argv[5]);
    mail->getHeaders()["Date"] = CSMTPClient::getDateHeaderString(kel::CTimeFields(kel::CTime::now()));
    mail->addPart(makeText({std::istreambuf_iterator<char>(std::cin), {}}));
    mail->addPart(attachFile(argv[6]));
    const P<kel::CMemoryStream> stored = new kel::CMemoryStream();
    mail->store(*stored);
    stored->seek(0);

    const P<CNetRequest> request = new CNetRequest();
    CSMTPClient::makeSendMailRequest(*request, server, from, {to}, stored);
    request->setSSLVerifyPeer(true); // a password goes only to a server that somebody vouches for
    applyTrustedRoots(*request);
    request->perform();
    std::cout << "sent\n";
    return 0;
} catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
}
