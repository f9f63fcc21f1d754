#include "mail/ContentType.h"

#include <array>

namespace vantra::tool {

using kel::String;

namespace {

struct Ending {
    const char* ending;
    const char* type;
};

constexpr std::array<Ending, 17> endings{{{"csv", "text/csv"},
                                          {"gif", "image/gif"},
                                          {"gz", "application/gzip"},
                                          {"htm", "text/html"},
                                          {"html", "text/html"},
                                          {"jpeg", "image/jpeg"},
                                          {"jpg", "image/jpeg"},
                                          {"json", "application/json"},
                                          {"mp3", "audio/mpeg"},
                                          {"mp4", "video/mp4"},
                                          {"pdf", "application/pdf"},
                                          {"png", "image/png"},
                                          {"svg", "image/svg+xml"},
                                          {"txt", "text/plain"},
                                          {"wav", "audio/wav"},
                                          {"xml", "application/xml"},
                                          {"zip", "application/zip"}}};

} // namespace

String guessContentType(const String& fileName) {
    const std::size_t dot = fileName.findLast(L'.');
    if (dot != String::npos) {
        const String wanted = fileName.substr(dot + 1);
        for (const Ending& known : endings)
            if (wanted.equalsNoCase(known.ending)) return known.type;
    }
    return "application/octet-stream";
}

} // namespace vantra::tool
