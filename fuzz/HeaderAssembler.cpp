#include "vantra/HeaderAssembler.h"
#include "fuzz/Fuzz.h"

using kel::CError;
using kel::CInvalidArgError;
using kel::P;
using kel::String;
using vantra::CHeaderAssembler;
using vantra::CServerInfo;

namespace {

using Headers = kel::TMap<String, String>;

void handle(CHeaderAssembler& assembler, const String& line) {
    try {
        assembler.handleHeaderLine(line);
    } catch (const CInvalidArgError& error) {
        fuzz::check(
            error.getFunction() == "CNetHeaders::splitEntry" &&
                (error.getMessage() == "entry contains no ':'" || error.getMessage() == "name is empty"),
            "only the documented errors are thrown for a line");
    } catch (const CError& error) {
        fuzz::check(error.getMessage() == "Error parsing HTTP header: first line starts with whitespace.",
                    "only the documented errors are thrown for a continuation");
    }
}

void checkHeaders(const Headers& headers) {
    for (const auto& [name, value] : headers) {
        fuzz::check(!name.isEmpty() && fuzz::isTrimmed(name), "a name is trimmed and not empty");
        fuzz::check(fuzz::isLower(name), "a name is in lower case");
        fuzz::check(!name.contains(":"), "a name ends at the colon");
    }
}

} // namespace

/// Each line feed ends a line, as in what libcurl hands over.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view rest = fuzz::toBytes(data, size);
    const P<CServerInfo> server = new CServerInfo();
    CHeaderAssembler assembler;
    assembler.setServerInfoToUpdate(server);
    bool complete = false;
    std::size_t lineCount = 0;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, fuzz::takeLine(rest).size() + 1);
        // Copied only where it is looked at, since most of the time would go there.
        const Headers before = complete ? assembler.getHeaderMap() : Headers();
        handle(assembler, fuzz::toText(line));
        const Headers& headers = assembler.getHeaderMap();
        fuzz::check(!complete || headers == before, "a complete block takes no more lines");
        fuzz::check(headers.size() <= ++lineCount, "a line gives one header at most");
        complete = complete || line == "\r\n";
    }
    const Headers& headers = assembler.getHeaderMap();
    checkHeaders(headers);
    fuzz::check(server->getServerHeader() == (complete ? headers.lookup("server") : String()),
                "the server record is told of a complete block");
    assembler.reset();
    fuzz::check(assembler.getHeaderMap().empty(), "nothing is left after a reset");
    return 0;
}
