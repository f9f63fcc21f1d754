#include "ftp/FTPChangeVerbs.h"

#include "display/TerminalText.h"
#include "Errors.h"
#include "files/StandardFiles.h"

#include <vantra/FTPGetInfoResult.h>

#include <CLI/CLI.hpp>

#include <iostream>
#include <string>

namespace vantra::tool {

using kel::CError;
using kel::String;

namespace {

/// The address's path for commands, without the slashes at its end, which servers take amiss in the name of a
/// directory.
String getPathFor(CEscapingFTPClient& client, CNetRequest& request, const CFTPAddress& address) {
    const String path = client.toPathFromRoot(request, address.getPath());
    std::size_t length = path.length();
    while (length > 1 && path[length - 1] == L'/') --length;
    return path.substr(0, length);
}

} // namespace

CFTPMakeDirVerb::CFTPMakeDirVerb(CLI::App& group)
    : CFTPVerb(group, "mkdir", "Create a directory",
               {"vantra ftp mkdir --create-dirs --user jane --password-file pw.txt "
                "ftp://ftp.example.com/2026/may"}) {
    addCreateDirsOption();
    addCommonOptions();
}

void CFTPMakeDirVerb::runWith(CEscapingFTPClient& client, CNetRequest& request) {
    client.createDir(request, getPathFor(client, request, getAddress()), createsDirs());
}

CFTPRemoveDirVerb::CFTPRemoveDirVerb(CLI::App& group)
    : CFTPVerb(group, "rmdir", "Remove an empty directory",
               {"vantra ftp rmdir --user jane --password-file pw.txt ftp://ftp.example.com/2026/may"}) {
    addCommonOptions();
}

void CFTPRemoveDirVerb::runWith(CEscapingFTPClient& client, CNetRequest& request) {
    client.removeDir(request, getPathFor(client, request, getAddress()));
}

CFTPRemoveVerb::CFTPRemoveVerb(CLI::App& group)
    : CFTPVerb(group, "rm", "Delete a file",
               {"vantra ftp rm --user jane --password-file pw.txt ftp://ftp.example.com/notes.txt"}) {
    addCommonOptions();
}

void CFTPRemoveVerb::runWith(CEscapingFTPClient& client, CNetRequest& request) {
    client.deleteFile(request, client.toPathFromRoot(request, getAddress().getPath()));
}

CFTPMoveVerb::CFTPMoveVerb(CLI::App& group)
    : CFTPVerb(group, "mv", "Move a file or directory to another name or directory",
               {"vantra ftp mv --user jane --password-file pw.txt ftp://ftp.example.com/a "
                "ftp://ftp.example.com/b"}) {
    getParser()
        .add_option_function<std::string>(
            "NEWURL", [this](const std::string& argument) { target_.emplace("NEWURL", argument); },
            "Its new address on the same server")
        ->type_name("")
        ->required();
    addCreateDirsOption();
    addCommonOptions();
}

void CFTPMoveVerb::check() {
    if (target_->getHost() != getAddress().getHost() ||
        target_->hasImplicitTLS() != getAddress().hasImplicitTLS())
        throw CUsageError("NEWURL: must be on the same server");
    if (target_->getURL().getUser()) throw CUsageError("NEWURL: must not hold a login");
    getResult().setText("newUrl", target_->getURL().getText());
}

void CFTPMoveVerb::runWith(CEscapingFTPClient& client, CNetRequest& request) {
    const String from = getPathFor(client, request, getAddress());
    const String to = getPathFor(client, request, *target_);
    bool isDirectory = false;
    if (createsDirs()) {
        client.prepareGetInfoRequest(request, from);
        request.perform();
        isDirectory = CFTPGetInfoResult(request.getResponseInfo()).getInfo()->getType() ==
                      kel::IFileInfoBase::Directory;
    }
    if (isDirectory) {
        client.prepareMoveDirRequest(request, from, to, true);
    } else {
        client.prepareMoveFileRequest(request, from, to, createsDirs());
    }
    request.perform();
}

CFTPRemoveTreeVerb::CFTPRemoveTreeVerb(CLI::App& group)
    : CFTPVerb(group, "rmtree", "Remove a directory with all its contents",
               {"vantra ftp rmtree --yes --user jane --password-file pw.txt ftp://ftp.example.com/2026"}) {
    getParser().add_flag("--yes", isAgreed_, "Do not ask before anything is removed");
    addCommonOptions();
}

void CFTPRemoveTreeVerb::check() {
    if (!isAgreed_) askUser();
}

void CFTPRemoveTreeVerb::askUser() const {
    const String& url = getAddress().getURL().getText();
    writeStandardError("Remove " + toTerminalLine(url) + " with all its contents? [y/N] ");
    std::string answer;
    std::getline(std::cin, answer);
    if (!std::cin) writeStandardError("\n");
    if (answer != "y" && answer != "Y" && answer != "yes") throw CError(url + ": nothing was removed.");
}

void CFTPRemoveTreeVerb::runWith(CEscapingFTPClient& client, CNetRequest& request) {
    client.deleteDirWithAllContents(request, getPathFor(client, request, getAddress()));
}

} // namespace vantra::tool
