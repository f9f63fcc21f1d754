#include "RequestOptions.h"

#include "ArgumentText.h"
#include "Errors.h"
#include "PasswordFile.h"
#include "TimeoutArgument.h"

#include <CLI/CLI.hpp>

#include <kel/FileStream.h>
#include <vantra/Version.h>

namespace vantra::tool {

using kel::CFileInStream;
using kel::P;
using kel::String;

namespace {

void checkReadable(const String& file) { const P<CFileInStream> opened = new CFileInStream(file); }

void applyTransferPolicy(CNetRequest& request) {
    constexpr int maxRedirects = 50; // libcurl itself would follow a circle for ever
    request.setOptionInt(CURLOPT_MAXREDIRS, maxRedirects);
    request.setOptionString(CURLOPT_PROTOCOLS_STR, "http,https,ftp,ftps");
    request.setOptionString(CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    request.setOptionString(CURLOPT_USERAGENT, "vantra/" VANTRA_VERSION);
}

} // namespace

void CRequestOptions::addTo(CLI::App& verb) {
    addHeaderOption(verb);
    addTLSOptions(verb);
    addTimeoutOption(verb);
    addLoginOptions(verb);
}

void CRequestOptions::addHeaderOption(CLI::App& verb) {
    verb.add_option_function<std::vector<std::string>>(
            "--header",
            [this](const std::vector<std::string>& arguments) {
                for (const std::string& argument : arguments)
                    headers_.push_back(parseHeaderArgument("--header", argument));
            },
            "Header to send, as 'Name: value'; any number of them.\nWith an empty value the header of that "
            "name that\nwould be sent otherwise is left out. HTTP only")
        ->type_name("'N: V'")
        ->allow_extra_args(false);
}

void CRequestOptions::addTLSOptions(CLI::App& verb) {
    verb.add_flag("--insecure", insecure_, "Do not verify the server's certificate and host name");
    verb.add_option_function<std::string>(
            "--cacert",
            [this](const std::string& argument) {
                caFile_ = toArgumentText("--cacert", argument);
                if (caFile_->isEmpty()) throw CUsageError("--cacert: must not be empty");
            },
            "Trust the root certificates in this file (PEM) and no\nothers. Default: those of libcurl")
        ->type_name("FILE");
}

void CRequestOptions::addTimeoutOption(CLI::App& verb) {
    verb.add_option_function<std::string>(
            "--timeout",
            [this](const std::string& argument) { timeout_ = parseTimeoutArgument("--timeout", argument); },
            "Longest time for the whole request, such as 2.5.\nDefault: no limit. In any case 30 seconds "
            "without a\nconnection or 60 without data end it")
        ->type_name("SECONDS");
}

void CRequestOptions::addLoginOptions(CLI::App& verb) {
    CLI::Option* user =
        verb.add_option_function<std::string>(
                "--user",
                [this](const std::string& argument) {
                    user_ = toArgumentText("--user", argument);
                    refuseControlCharacters("--user", *user_);
                    if (user_->contains(":"))
                        throw CUsageError(
                            "--user: must not contain ':'; give the password with --password-file");
                },
                "Name to log in with (HTTP: basic authentication).\nWithout a password an empty one is sent")
            ->type_name("NAME");
    CLI::Option* password =
        verb.add_option_function<std::string>(
                "--password",
                [this](const std::string& argument) {
                    password_ = toArgumentText("--password", argument);
                    refuseControlCharacters("--password", *password_);
                },
                "Password to log in with. Other users of this machine\nmay see it, so prefer --password-file")
            ->type_name("TEXT")
            ->needs(user);
    verb.add_option_function<std::string>(
            "--password-file",
            [this](const std::string& argument) {
                passwordFile_ = toArgumentText("--password-file", argument);
                if (passwordFile_->isEmpty()) throw CUsageError("--password-file: must not be empty");
            },
            "File whose only line is the password; - for standard input")
        ->type_name("FILE")
        ->needs(user)
        ->excludes(password);
}

void CRequestOptions::checkFor(const CURLArgument& url) const {
    if (!url.isHTTP() && !headers_.empty()) throw CUsageError("--header: needs an http or https URL");
    if (url.getLogin() && user_) throw CUsageError("--user: the URL holds a login already");
}

void CRequestOptions::applyTo(CNetRequest& request, const CURLArgument& url) const {
    applyTransferPolicy(request);
    request.setURL(url.getText());
    if (timeout_) request.setFullRequestTimeout(*timeout_);
    applyTLS(request);
    applyHeaders(request);
    applyLogin(request, url);
}

void CRequestOptions::applyTLS(CNetRequest& request) const {
    if (insecure_) {
        request.setSSLVerifyPeer(false);
        request.setOptionInt(CURLOPT_SSL_VERIFYHOST, 0);
    }
    if (!caFile_) return;
    checkReadable(*caFile_);
    request.setRootCertBundlePath(*caFile_);
    // libcurl may have been built with a folder of roots, which would go on being trusted beside the file.
    request.setOptionPtr(CURLOPT_CAPATH, nullptr);
}

void CRequestOptions::applyHeaders(CNetRequest& request) const {
    if (headers_.empty()) return;
    const P<CNetHeaders> headers = new CNetHeaders();
    for (const HeaderArgument& header : headers_) headers->add(header.name, header.value);
    request.setCustomHTTPHeaders(headers);
}

void CRequestOptions::applyLogin(CNetRequest& request, const CURLArgument& url) const {
    const std::optional<Login> login = url.getLogin() ? url.getLogin() : getLogin();
    if (!login) return;
    request.setUserName(login->user);
    request.setUserPassword(login->password);
}

std::optional<Login> CRequestOptions::getLogin() const {
    if (!user_) return std::nullopt;
    return Login{*user_, passwordFile_ ? readPasswordFile(*passwordFile_) : password_.value_or(String())};
}

} // namespace vantra::tool
