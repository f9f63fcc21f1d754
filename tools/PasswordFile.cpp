#include "PasswordFile.h"

#include "ArgumentText.h"

#include <kel/Error.h>
#include <kel/FileStream.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>

namespace vantra::tool {

using kel::CError;
using kel::CFileInStream;
using kel::P;
using kel::String;

namespace {

constexpr std::size_t maxBytes = 4096;

using Block = std::array<char, maxBytes + 3>; // with a line end, and one to see that there is more

std::string readFile(const String& file) {
    const P<CFileInStream> stream = new CFileInStream(file);
    Block block;
    std::size_t length = 0;
    while (length < block.size()) {
        const std::size_t count = stream->read(block.data() + length, block.size() - length);
        if (count == 0) break;
        length += count;
    }
    return {block.data(), length};
}

std::string readStandardInput() {
    Block block;
    const std::size_t length = std::fread(block.data(), 1, block.size(), stdin);
    if (std::ferror(stdin))
        throw CError("Error reading standard input: " + String(std::generic_category().message(errno)) + ".");
    return {block.data(), length};
}

void dropLineEnd(std::string& line) {
    if (!line.ends_with('\n')) return;
    line.pop_back();
    if (line.ends_with('\r')) line.pop_back();
}

} // namespace

String readPasswordFile(const String& file) {
    const bool isStandardInput = file == "-";
    const String shownName = isStandardInput ? String("standard input") : "'" + file + "'";
    std::string bytes = isStandardInput ? readStandardInput() : readFile(file);
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
