#include "fuzz/Fuzz.h"
#include "vantra/ServerInfo.h"

using kel::String;
using vantra::CHTTPServerHeader;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const CHTTPServerHeader header(fuzz::toText(data, size));
    String plainest;
    for (const auto& [name, version] : header.getComponentVersionMap()) {
        fuzz::check(!name.contains(" ") && !name.contains("/"), "a name ends at the slash or blank");
        fuzz::check(!version.contains(" "), "a version ends at the blank");
        fuzz::check(header.hasComponent(name), "a component is found by its name");
        fuzz::check(header.getComponentVersion(name) == version,
                    "a version is found by its component's name");
        plainest += name + "/" + version + " ";
    }
    fuzz::check(CHTTPServerHeader(plainest).getComponentVersionMap() == header.getComponentVersionMap(),
                "what was read can be written and read again");
    const CHTTPServerHeader copy(header);
    fuzz::check(copy.getComponentVersionMap() == header.getComponentVersionMap(), "a copy says the same");
    return 0;
}
