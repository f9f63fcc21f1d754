#include "options/LoginOptions.h"

#include "arguments/ArgumentText.h"
#include "arguments/FileArgument.h"
#include "arguments/RefusedSecret.h"
#include "Errors.h"
#include "options/PasswordFile.h"

#include <CLI/CLI.hpp>

namespace vantra::tool {

using kel::String;

void CLoginOptions::addTo(CLI::App& verb) {
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
    verb.add_option_function<std::string>(
            "--password-file",
            [this](const std::string& argument) {
                passwordFile_ = parseFileArgument("--password-file", argument);
            },
            "File whose only line is the password; - for standard input")
        ->type_name("FILE")
        ->needs(user);
    addRefusedSecret(verb, "--password", "--password-file");
}

void CLoginOptions::checkFor(const CURLArgument& url) const {
    if (url.getUser() && user_) throw CUsageError("--user: the URL names a user already");
}

std::optional<Login> CLoginOptions::getLogin(const CURLArgument& url) const {
    return url.getUser() ? Login{*url.getUser(), String()} : getLogin();
}

std::optional<Login> CLoginOptions::getLogin() const {
    if (!user_) return std::nullopt;
    if (!login_) login_ = Login{*user_, passwordFile_ ? readPasswordFile(*passwordFile_) : String()};
    return login_;
}

} // namespace vantra::tool
