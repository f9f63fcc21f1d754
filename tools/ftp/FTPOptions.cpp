#include "ftp/FTPOptions.h"

#include "Errors.h"

#include <CLI/CLI.hpp>

#include <map>

namespace vantra::tool {

using kel::P;
using kel::String;

namespace {

/// The value that the user has chosen by its name.
template <class Value>
Value choose(const std::string& option, const std::string& argument,
             const std::map<std::string, Value>& values) {
    const auto found = values.find(argument);
    if (found != values.end()) return found->second;
    String names;
    for (const auto& [name, value] : values) names += (names.isEmpty() ? "" : ", ") + String(name);
    throw CUsageError(String(option) + ": must be one of " + names);
}

} // namespace

void CFTPOptions::addTo(CLI::App& verb) {
    login_.addTo(verb);
    verb.add_option_function<std::string>(
            "--tls",
            [this](const std::string& argument) {
                connectType_ =
                    choose<CFTPClient::ConnectType>("--tls", argument,
                                                    {{"none", CFTPClient::ConnectUnencrypted},
                                                     {"explicit", CFTPClient::ConnectExplicitTLS},
                                                     {"implicit", CFTPClient::ConnectImplicitTLS}});
            },
            "none, explicit (asked for on a plain connection, and\nrequired) or implicit (from the first "
            "byte "
            "on).\nDefault: none for ftp URLs, implicit for ftps")
        ->type_name("KIND");
    verb.add_option_function<std::string>(
            "--cwd",
            [this](const std::string& argument) {
                cwdType_ = choose<CFTPClient::CWDType>("--cwd", argument,
                                                       {{"steps", CFTPClient::CWDSteps},
                                                        {"direct", CFTPClient::CWDDirect},
                                                        {"none", CFTPClient::CWDNone}});
            },
            "How to get to a directory: steps (one by one), direct\n(at once) or none (whole paths in "
            "commands). Default:\nsteps with --create-dirs, otherwise none")
        ->type_name("WAY");
    connection_.addTo(verb);
}

Login CFTPOptions::getLogin(const CFTPAddress& address) const {
    login_.checkFor(address.getURL());
    return login_.getLogin(address.getURL()).value_or(Login{"anonymous", "ftp@example.com"});
}

CFTPClient::ConnectType CFTPOptions::getConnectType(const CFTPAddress& address) const {
    if (!address.hasImplicitTLS()) return connectType_.value_or(CFTPClient::ConnectUnencrypted);
    if (connectType_.value_or(CFTPClient::ConnectImplicitTLS) != CFTPClient::ConnectImplicitTLS)
        throw CUsageError("--tls: an ftps URL means implicit TLS");
    return CFTPClient::ConnectImplicitTLS;
}

P<CEscapingFTPClient> CFTPOptions::makeClient(const CFTPAddress& address, CTransferMonitor& monitor) const {
    P<CEscapingFTPClient> client = new CEscapingFTPClient(address.getHost(), getLogin(address),
                                                          getConnectType(address), connection_, monitor);
    client->setOverrideCWDType(cwdType_);
    return client;
}

} // namespace vantra::tool
