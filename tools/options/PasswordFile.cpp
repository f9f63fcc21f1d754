#include "options/PasswordFile.h"

#include "arguments/ArgumentText.h"
#include "files/Input.h"

#include <kel/Error.h>
#include <kel/Path.h>

#include <array>
#include <string>

namespace vantra::tool {

using kel::CError;
using kel::CPath;
using kel::IInStream;
using kel::P;
using kel::String;

namespace {

constexpr std::size_t maxBytes = 4096;

using Block = std::array<char, maxBytes + 3>; // with a line end, and one to see that there is more

std::string readBlock(const String& file) {
    const P<IInStream> input = openInput(file);
    Block block;
    std::size_t length = 0;
    while (length < block.size()) {
        const std::size_t count = input->read(block.data() + length, block.size() - length);
        if (count == 0) break;
        length += count;
    }
    return {block.data(), length};
}

void dropLineEnd(std::string& line) {
    if (!line.ends_with('\n')) return;
    line.pop_back();
    if (line.ends_with('\r')) line.pop_back();
}

} // namespace

String readPasswordFile(const String& file) {
    const String shownName = file == "-" ? String("standard input") : "'" + CPath(file).getText() + "'";
    std::string bytes = readBlock(file);
    dropLineEnd(bytes);
    if (bytes.size() > maxBytes) throw CError("The password in " + shownName + " is longer than 4096 bytes.");
    String password;
    if (!String::tryFromUTF8(bytes, password))
        throw CError("The password in " + shownName + " is not valid UTF-8.");
    if (hasControlCharacters(password))
        throw CError("The password in " + shownName + " contains line breaks or other control characters.");
    return password;
}

} // namespace vantra::tool
