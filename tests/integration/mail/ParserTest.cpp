#include "MessageReader.h"
#include "RandomMessage.h"

#include <gtest/gtest.h>

#include <algorithm>

using kel::CMemoryStream;
using kel::P;

namespace {

std::string store(const vantra::CMimeMessage& message) {
    const P<CMemoryStream> stream = new CMemoryStream();
    message.store(*stream);
    const auto& buffer = *stream->getBuffer();
    return {reinterpret_cast<const char*>(buffer.getData()), buffer.getUsed()};
}

/// Both texts from shortly before the place where they begin to differ.
std::string tellDifference(const std::string& found, const std::string& expected) {
    const auto differing = std::mismatch(found.begin(), found.end(), expected.begin(), expected.end());
    const auto at = static_cast<std::size_t>(differing.first - found.begin());
    const std::size_t start = at - std::min<std::size_t>(at, 200);
    return "found: ..." + MessageReader::plain(found.substr(start, 400)) + "\nexpected: ..." +
           MessageReader::plain(expected.substr(start, 400));
}

TEST(AnIndependentParser, FindsEverythingInTwoThousandMessages) {
    RandomMessages messages;
    MessageReader reader;
    for (int number = 0; number < 2000; ++number) {
        const GeneratedMessage generated = messages.next();
        const std::string found = reader.describe(store(*generated.message));
        ASSERT_TRUE(found == generated.expected) << number << "\n"
                                                 << tellDifference(found, generated.expected);
    }
}

TEST(AnIndependentParser, FindsThePartsOfAMultipartInsideOthers) {
    const P<vantra::CMultiPartMimeMessage> outer = new vantra::CMultiPartMimeMessage("mixed");
    const P<vantra::CMultiPartMimeMessage> middle = new vantra::CMultiPartMimeMessage("related");
    const P<vantra::CMultiPartMimeMessage> inner = new vantra::CMultiPartMimeMessage("alternative");
    const P<vantra::CMimeMessage> text = new vantra::CMimeMessage("text/plain");
    inner->addPart(text);
    middle->addPart(inner);
    outer->addPart(middle);
    const auto multipart = [](int depth, const vantra::CMultiPartMimeMessage& message) {
        return "entity " + std::to_string(depth) +
               "\nheader Content-Type: " + message.getHeaders().lookup("Content-Type").toUTF8() +
               "\nheader MIME-Version: 1.0\n";
    };
    EXPECT_EQ(MessageReader().describe(store(*outer)),
              multipart(0, *outer) + multipart(1, *middle) + multipart(2, *inner) +
                  "entity 3\nheader Content-Type: text/plain\nheader MIME-Version: 1.0\nbody 0\n\n");
}

TEST(AnIndependentParser, ReportsWhatIsWrong) {
    EXPECT_EQ(MessageReader().describe("Content-Type: multipart/mixed\r\n\r\nx"),
              "entity 0\ndefect NoBoundaryInMultipartDefect\ndefect MultipartInvariantViolationDefect\n"
              "header Content-Type: multipart/mixed\nbody 1\nx\n");
}

} // namespace
