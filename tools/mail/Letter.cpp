#include "mail/Letter.h"

#include "files/Input.h"
#include "mail/ContentType.h"

#include <vantra/MimeEncoding.h>
#include <vantra/MultiPartMimeMessage.h>
#include <vantra/SMTPClient.h>

#include <kel/Buffer.h>
#include <kel/Error.h>
#include <kel/MTRand.h>
#include <kel/Number.h>
#include <kel/Path.h>

#include <algorithm>
#include <string_view>

namespace vantra::tool {

using kel::CError;
using kel::CMTRand;
using kel::CMutexLock;
using kel::CPath;
using kel::CTimeFields;
using kel::P;
using kel::String;
using kel::TArray;
using kel::TBuffer;

namespace {

bool isASCII(const String& text) {
    const std::wstring_view view = text.view();
    return std::all_of(view.begin(), view.end(), [](wchar_t c) { return c <= L'\x7F'; });
}

std::string_view viewOf(const TBuffer<unsigned char>& bytes) {
    return {reinterpret_cast<const char*>(bytes.getData()), bytes.getUsed()};
}

void append(TBuffer<unsigned char>& target, std::string_view bytes) {
    target.append(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

/// The text with CR LF where it has LF alone.
P<TBuffer<unsigned char>> withMailLineEnds(std::string_view text) {
    P<TBuffer<unsigned char>> lines = new TBuffer<unsigned char>();
    lines->reserve(text.size());
    while (!text.empty()) {
        const std::size_t lineFeed = text.find('\n');
        const std::string_view line = text.substr(0, lineFeed);
        append(*lines, line);
        if (lineFeed == std::string_view::npos) break;
        append(*lines, line.ends_with('\r') ? "\n" : "\r\n");
        text.remove_prefix(lineFeed + 1);
    }
    return lines;
}

P<CMimeMessage> makeText(const String& file, const String& contentType) {
    const P<TBuffer<unsigned char>> bytes = readInput(file);
    String text;
    if (!String::tryFromUTF8(viewOf(*bytes), text))
        throw CError("The text in " +
                     (file == "-" ? String("standard input") : "'" + CPath(file).getText() + "'") +
                     " is not valid UTF-8.");
    P<CMimeMessage> part = new CMimeMessage(contentType + "; charset=utf-8");
    part->setBody(encodeQuotedPrintable(*withMailLineEnds(viewOf(*bytes))), "quoted-printable");
    return part;
}

P<CMimeMessage> makeAttachedFile(const String& file) {
    const String name = CPath(file).getFileName();
    return makeAttachment(name, guessContentType(name), *readInput(file));
}

/// What the reader sees first: the text, the HTML, or both as alternatives of which readers take the last
/// one that they can show.
P<CMimeMessage> makeContent(const Letter& letter) {
    if (!letter.htmlFile) return makeText(*letter.textFile, "text/plain");
    if (!letter.textFile) return makeText(*letter.htmlFile, "text/html");
    P<CMultiPartMimeMessage> alternatives = new CMultiPartMimeMessage("alternative");
    alternatives->addPart(makeText(*letter.textFile, "text/plain"));
    alternatives->addPart(makeText(*letter.htmlFile, "text/html"));
    return alternatives;
}

P<CMimeMessage> makeContentWithAttachments(const Letter& letter) {
    P<CMimeMessage> content = makeContent(letter);
    if (letter.attachedFiles.empty()) return content;
    P<CMultiPartMimeMessage> mixed = new CMultiPartMimeMessage("mixed");
    mixed->addPart(content);
    for (const String& file : letter.attachedFiles) mixed->addPart(makeAttachedFile(file));
    return mixed;
}

/// On a line for each, since servers refuse lines that are too long. (Addresses outside ASCII make a field of
/// encoded words, which has lines of its own.)
String joinAddresses(const TArray<String>& addresses) {
    const bool canFold = std::all_of(addresses.begin(), addresses.end(), &isASCII);
    String joined;
    for (const String& address : addresses) {
        if (!joined.isEmpty()) joined += canFold ? ",\r\n " : ", ";
        joined += address;
    }
    return joined;
}

/// In encoded words too if a reader would take it for some, or if it is too long for one line.
String makeSubject(const String& subject) {
    constexpr std::size_t longestLine = 900;
    const bool needsEncoding = subject.length() > longestLine || subject.contains("=?");
    return needsEncoding ? CMimeMessage::toEncodedWord(subject) : subject;
}

String makeMessageID(const String& from) {
    const String domain = from.substr(from.findLast(L'@') + 1);
    kel::uint64 numbers[2];
    {
        const CMutexLock lock(CMTRand::getGlobalMutex());
        for (kel::uint64& number : numbers) number = CMTRand::getGlobal().rand64();
    }
    return "<" + kel::hexEncode(numbers, sizeof numbers) + "@" + (isASCII(domain) ? domain : "localhost") +
           ">";
}

} // namespace

P<CMimeMessage> makeMessage(const Letter& letter, const CTimeFields& date) {
    P<CMimeMessage> message = makeContentWithAttachments(letter);
    auto& headers = message->getHeaders();
    headers["Date"] = CSMTPClient::getDateHeaderString(date);
    headers["From"] = letter.from;
    headers["Message-ID"] = makeMessageID(letter.from);
    headers["Subject"] = makeSubject(letter.subject);
    headers["To"] = joinAddresses(letter.recipients);
    return message;
}

} // namespace vantra::tool
