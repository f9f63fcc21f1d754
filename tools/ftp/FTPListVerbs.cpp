#include "ftp/FTPListVerbs.h"

#include "display/TerminalText.h"
#include "files/Output.h"

#include <vantra/FTPGetInfoResult.h>

#include <kel/Time.h>

#include <algorithm>
#include <optional>
#include <string>

namespace vantra::tool {

using kel::CTime;
using kel::CTimeFields;
using kel::IFileInfoBase;
using kel::P;
using kel::String;

namespace {

constexpr std::size_t typeWidth = 5;
constexpr std::size_t sizeWidth = 12;
constexpr std::size_t timeWidth = 20;

String describeType(const CFTPDirEntry& entry) {
    switch (entry.getType()) {
    case IFileInfoBase::File:
        return "file";
    case IFileInfoBase::Directory:
        return "dir";
    case IFileInfoBase::Unknown:
        break;
    }
    return "other";
}

String describeSize(const CFTPDirEntry& entry) {
    return entry.getType() == IFileInfoBase::File ? String::fromInt(entry.getSize()) : String("-");
}

/// "-" for what the server did not tell.
String describeTime(const CFTPDirEntry& entry) {
    const CTime time = entry.getModifiedTime();
    return time == CTime() ? String("-") : CTimeFields(time).toISODateTime(0) + "Z";
}

String blanks(std::size_t width, const String& beside) {
    return String(std::wstring(width - std::min(width, beside.length()), L' '));
}

std::string describe(const CFTPDirEntry& entry, bool isForTerminal) {
    const String type = describeType(entry);
    const String size = describeSize(entry);
    const String time = describeTime(entry);
    const String facts = type + blanks(typeWidth, type) + " " + blanks(sizeWidth, size) + size + "  " + time +
                         blanks(timeWidth, time) + "  ";
    const String name = entry.getName();
    return facts.toUTF8() + (isForTerminal ? toTerminalLine(name) : name.toUTF8()) + "\n";
}

/// The same for programs; what the server did not tell is left out.
void addEntry(CJSONObject& result, const CFTPDirEntry& entry) {
    result.setText("name", entry.getName());
    result.setText("type", describeType(entry));
    if (entry.getType() == IFileInfoBase::File) result.setInteger("size", entry.getSize());
    if (entry.getModifiedTime() != CTime()) result.setText("modified", describeTime(entry));
}

std::string describeForPrograms(const CFTPDirEntry& entry, bool isForTerminal) {
    CJSONObject object;
    addEntry(object, entry);
    return object.toLine(isForTerminal);
}

} // namespace

CFTPListVerb::CFTPListVerb(CLI::App& group)
    : CFTPVerb(
          group, "ls", "List a directory: type, size, time (UTC) and name of each entry",
          {"vantra ftp ls ftp://ftp.example.com/pub/",
           "vantra ftp ls --json --tls explicit --user jane --password-file pw.txt ftp://ftp.example.com/"}) {
    addCommonOptions();
}

void CFTPListVerb::runWith(CEscapingFTPClient& client, CNetRequest& request) {
    const P<CFTPListDirResult> listing = client.listDir(request, getAddress().getPath());
    const std::unique_ptr<IOutput> output = openOutput(std::nullopt);
    std::string text;
    const auto describeEntry = wantsJSON() ? &describeForPrograms : &describe;
    for (const P<CFTPDirEntry>& entry : listing->getEntries()) {
        if (entry->getName() != "." && entry->getName() != "..")
            text += describeEntry(*entry, output->isTerminal());
    }
    output->write(text);
    output->commit();
    getResult().clear(); // which the lines are already
}

CFTPStatVerb::CFTPStatVerb(CLI::App& group)
    : CFTPVerb(group, "stat", "Tell type, size, time (UTC) and name of a file or directory",
               {"vantra ftp stat ftp://ftp.example.com/pub/notes.txt"}) {
    addCommonOptions();
}

void CFTPStatVerb::runWith(CEscapingFTPClient& client, CNetRequest& request) {
    client.prepareGetInfoRequest(request, client.toPathFromRoot(request, getAddress().getPath()));
    request.perform();
    const CFTPGetInfoResult result(request.getResponseInfo());
    if (wantsJSON()) {
        addEntry(getResult(), *result.getInfo());
        return;
    }
    const std::unique_ptr<IOutput> output = openOutput(std::nullopt);
    output->write(describe(*result.getInfo(), output->isTerminal()));
    output->commit();
}

} // namespace vantra::tool
