#include "RandomMessage.h"

#include "MessageReader.h"

#include <algorithm>

using kel::P;
using kel::String;
using vantra::CMimeMessage;
using vantra::CMultiPartMimeMessage;

namespace {

using ByteBuffer = kel::TBuffer<unsigned char>;

constexpr int deepest = 3;
constexpr std::size_t largestFile = 1 << 20;

P<ByteBuffer> makeBuffer(const std::string& bytes) {
    return new ByteBuffer(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

std::string describeHead(const CMimeMessage& message, int depth) {
    std::string text = "entity " + std::to_string(depth) + "\n";
    for (const auto& [name, value] : message.getHeaders())
        text += "header " + name.toUTF8() + ": " + MessageReader::plain(value.toUTF8()) + "\n";
    return text;
}

std::string describeBody(const std::string& body) {
    return "body " + std::to_string(body.size()) + "\n" + body + "\n";
}

} // namespace

std::size_t RandomMessages::pick(std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_);
}

char32_t RandomMessages::pickCharacter(bool onlyASCII) {
    static constexpr std::u32string_view special = U"\"\\()<>@,;:. _=?'%/*";
    const auto between = [this](char32_t first, char32_t last) {
        return first + static_cast<char32_t>(pick(last - first + 1));
    };
    switch (pick(onlyASCII ? 3 : 7)) {
    case 0:
        return special[pick(special.size())];
    case 1:
    case 2:
        return between(U'a', U'z');
    case 3:
        return between(0xA1, 0x7FF);
    case 4:
        return between(0x800, 0xD7FF);
    case 5:
        return between(0xE000, 0xFFFF);
    default:
        return between(0x10000, 0x10FFFF);
    }
}

String RandomMessages::pickText(std::size_t maxLength, bool onlyASCII) {
    // White space at the ends of a field's value is not part of it.
    std::u32string text(1, U'x');
    for (std::size_t length = pick(maxLength); length > 0; --length) text += pickCharacter(onlyASCII);
    return String::fromUTF32(text + U'x');
}

std::string RandomMessages::pickBytes() {
    // As many of each order of magnitude, and the smallest and the largest size for certain.
    constexpr std::size_t orders = 20;
    const std::size_t order = pick(orders + 2);
    std::size_t size = order > orders ? 0 : std::size_t{1} << order;
    if (order < orders) size += pick(size);
    std::string bytes(std::min(size, largestFile), '\0');
    for (std::size_t done = 0; done < bytes.size();) {
        const auto word = random_();
        done += std::string_view(reinterpret_cast<const char*>(&word), sizeof word)
                    .copy(&bytes[done], bytes.size() - done);
    }
    return bytes;
}

std::string RandomMessages::pickTextBody() {
    std::string body;
    for (std::size_t lines = pick(20); lines > 0; --lines)
        body += pickText(200, pick(2) == 0).toUTF8() + (pick(4) ? "\r\n" : " \t\r\n");
    return body;
}

P<CMimeMessage> RandomMessages::makeText(std::string& body) {
    P<CMimeMessage> text = new CMimeMessage("text/plain; charset=utf-8");
    body = pickTextBody();
    if (pick(2)) {
        text->setBody(vantra::encodeQuotedPrintable(*makeBuffer(body)), "quoted-printable");
    } else {
        text->setBody(vantra::encodeBase64Lines(*makeBuffer(body)), "base64");
    }
    return text;
}

P<CMimeMessage> RandomMessages::makeFile(String& name, std::string& body) {
    name = pickText(pick(20) ? 40 : 400, pick(2) == 0);
    body = pickBytes();
    if (pick(4)) return vantra::makeAttachment(name, pick(2) ? "image/png" : "", *makeBuffer(body));
    // Bytes that are no text must survive the encoding for texts too.
    body.resize(std::min<std::size_t>(body.size(), 5000));
    P<CMimeMessage> file = vantra::makeAttachment(name, "text/x-log", ByteBuffer());
    file->setBody(vantra::encodeQuotedPrintable(*makeBuffer(body)), "quoted-printable");
    return file;
}

P<CMimeMessage> RandomMessages::makeMultipart(int depth, std::string& description) {
    static const char* const subtypes[] = {"mixed", "alternative", "related"};
    P<CMultiPartMimeMessage> multipart = new CMultiPartMimeMessage(subtypes[pick(3)]);
    for (std::size_t parts = 1 + pick(3); parts > 0; --parts) {
        const bool isMultipart = depth + 1 < deepest && pick(3) == 0;
        multipart->addPart(makeEntity(depth + 1, isMultipart, description));
    }
    return multipart;
}

P<CMimeMessage> RandomMessages::makeEntity(int depth, bool isMultipart, std::string& description) {
    std::string inside;
    P<CMimeMessage> entity;
    String fileName;
    const bool isFile = !isMultipart && pick(2) == 0;
    if (isMultipart) {
        entity = makeMultipart(depth, inside);
    } else {
        std::string body;
        entity = isFile ? makeFile(fileName, body) : makeText(body);
        inside = describeBody(body);
    }
    std::string head;
    if (depth == 0) {
        const String name = pickText(40, pick(2) == 0);
        entity->getHeaders()["From"] = CMimeMessage::toQuotedString(name) + " <jane@example.org>";
        entity->getHeaders()["Subject"] = pickText(120, pick(4) == 0);
        head = "address " + MessageReader::plain(name.toUTF8()) + " <jane@example.org>\n";
    }
    if (isFile) head += "file " + MessageReader::plain(fileName.toUTF8()) + "\n";
    description += describeHead(*entity, depth) + head + inside;
    return entity;
}

GeneratedMessage RandomMessages::next() {
    GeneratedMessage generated;
    generated.message = makeEntity(0, pick(4) != 0, generated.expected);
    return generated;
}
