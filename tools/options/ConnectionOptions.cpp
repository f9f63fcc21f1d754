#include "options/ConnectionOptions.h"

#include "arguments/FileArgument.h"
#include "arguments/TimeoutArgument.h"

#include <CLI/CLI.hpp>

#include <kel/FileStream.h>
#include <kel/ResourceManager.h>
#include <vantra/GlobalInit.h>
#include <vantra/Version.h>

namespace vantra::tool {

using kel::CFileInStream;
using kel::CPath;
using kel::CResourceManager;
using kel::P;
using kel::String;
using kel::TArray;

namespace {

void checkReadable(const String& file) { const P<CFileInStream> opened = new CFileInStream(file); }

void applyTransferPolicy(CNetRequest& request) {
    constexpr int maxRedirects = 50; // libcurl itself would follow a circle for ever
    request.setOptionInt(CURLOPT_MAXREDIRS, maxRedirects);
    request.setOptionString(CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    request.setOptionString(CURLOPT_USERAGENT, "vantra/" VANTRA_VERSION);
}

/// The bundle shipped beside the library. Where there is none, the place it is missing from: libcurl names
/// that in its error, and only when a transfer needs root certificates.
CPath getShippedRoots() {
    constexpr const char* name = "vantra/ca-bundle.crt";
    const P<CResourceManager> resources = CResourceManager::get();
    if (!resources->findResource(name).isEmpty()) return getRootCertBundlePath();
    const TArray<CPath> folders = resources->getFolders();
    return folders.empty() ? CPath(name) : folders.back() / name;
}

/// Distributions build libcurl with the place of the system's roots; elsewhere it knows of none.
bool hasLibcurlRoots() {
    const curl_version_info_data* const libcurl = curl_version_info(CURLVERSION_NOW);
    return libcurl->cainfo || libcurl->capath;
}

} // namespace

void CConnectionOptions::addTo(CLI::App& verb) {
    addTLSOptions(verb);
    addTimeoutOption(verb);
    addProxyOption(verb);
}

void CConnectionOptions::addTLSOptions(CLI::App& verb) {
    verb.add_flag("--insecure", insecure_, "Do not verify the server's certificate and host name");
    verb.add_option_function<std::string>(
            "--cacert",
            [this](const std::string& argument) { caFile_ = parseFileArgument("--cacert", argument); },
            "Trust the root certificates in this file (PEM) and no\nothers. Default: those of libcurl; on "
            "Windows those\nthat come with vantra")
        ->type_name("FILE");
}

void CConnectionOptions::addTimeoutOption(CLI::App& verb) {
    verb.add_option_function<std::string>(
            "--timeout",
            [this](const std::string& argument) { timeout_ = parseTimeoutArgument("--timeout", argument); },
            "Longest time for the whole request, such as 2.5.\nDefault: no limit. In any case 30 seconds "
            "without a\nconnection or 60 without data end it")
        ->type_name("SECONDS");
}

void CConnectionOptions::addProxyOption(CLI::App& verb) {
    verb.add_option_function<std::string>(
            "--proxy", [this](const std::string& argument) { proxy_.emplace("--proxy", argument); },
            "Proxy to go through: system for what the system\nsettings say (see vantra proxy), none, or an "
            "address\nsuch as http://gate.example:3128. Default: the\nenvironment's (http_proxy and so on)")
        ->type_name("PROXY");
}

void CConnectionOptions::applyTo(CNetRequest& request) const {
    applyTransferPolicy(request);
    if (timeout_) request.setFullRequestTimeout(*timeout_);
    if (proxy_) proxy_->applyTo(request);
    applyTLS(request);
}

void CConnectionOptions::applyTLS(CNetRequest& request) const {
    if (insecure_) {
        request.setSSLVerifyPeer(false);
        request.setOptionInt(CURLOPT_SSL_VERIFYHOST, 0);
    }
    if (!caFile_) {
        if (!insecure_ && !hasLibcurlRoots()) request.setRootCertBundlePath(getShippedRoots());
        return;
    }
    checkReadable(*caFile_);
    request.setRootCertBundlePath(*caFile_);
    // libcurl may have been built with a folder of roots, which would go on being trusted beside the file.
    request.setOptionPtr(CURLOPT_CAPATH, nullptr);
}

} // namespace vantra::tool
