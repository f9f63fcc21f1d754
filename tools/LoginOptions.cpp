#include "LoginOptions.h"

#include "ArgumentText.h"
#include "Errors.h"
#include "PasswordFile.h"

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

std::optional<Login> CLoginOptions::getLogin() const {
    if (!user_) return std::nullopt;
    if (!login_)
        login_ =
            Login{*user_, passwordFile_ ? readPasswordFile(*passwordFile_) : password_.value_or(String())};
    return login_;
}

} // namespace vantra::tool
